#pragma once

#include "BlurGrid.h"
#include "StoredImage.h"
#include "TilePlanes.h"

#include <array>
#include <vector>

namespace orvane {

/// `cells` of averages, made of rows of a grid finer by some levels as they come: each row is
/// halved across while it is in the first-level cache, and four of those make one of the next
/// level, so nothing wider than a few rows of cells is kept.
class CellAverager {
public:
    /// held: the pixels, or finer cells, that there are of those behind the cells; beyond it edges
    /// decide. Nothing is taken from the arena before the first row comes: what draws the rows may
    /// begin by taking everything back.
    CellAverager(const PixelRect& cells, int levels, CoarseEdges edges, const PixelRect& held,
                 StoredImage& averages, TileArena& arena);

    /// Rows of `held`, each once and from the lowest on; they may be read up to 2 rowPadding past
    /// their end.
    void add(const TilePlanes& planes, const PixelRect& rows);
    /// Rows of `held` of finer averages, all of them.
    void add(StoredImage& finer);
    /// After the last row.
    void finish();

private:
    /// Rows of a finer grid, halved across: row y at place y mod 4.
    struct Level {
        PixelRect cells;
        TilePlanes rows;
        TilePlanes result; ///< one row
    };
    using Rows = std::array<const float*, 4>;

    void takeMemory();
    void addUpTo(int y, Rows rows);
    void addRow(size_t level, int y, const Rows& rows);
    Rows paddedRow(const TilePlanes& planes, int y) const;

    PixelRect m_cells;
    PixelRect m_wanted;
    PixelRect m_held;
    CoarseEdges m_edges;
    int m_channels;
    int m_next; ///< the row of m_wanted to come
    std::vector<Level> m_levels; ///< the finest first
    TilePlanes m_padded; ///< a row of m_wanted
    StoredImage& m_averages;
    TileArena& m_arena;
};

} // namespace orvane
