#pragma once

#include "BlurGrid.h"
#include "StoredImage.h"
#include "TilePlanes.h"

#include <array>
#include <vector>

namespace orvane {

/// `cells` of averages, made of rows of a grid finer by some levels: four rows make one of the next
/// level, which is then halved across, so nothing wider than a few rows is kept. Rows in memory are
/// read where they lie; others come one after the other.
class CellAverager {
public:
    /// held: the pixels, or finer cells, that there are of those behind the cells; beyond it edges
    /// decide. Nothing is taken from the arena before the first row comes: what draws the rows may
    /// begin by taking everything back.
    CellAverager(const PixelRect& cells, int levels, CoarseEdges edges, const PixelRect& held,
                 StoredImage& averages, TileArena& arena);

    /// Rows of `held`, each once and from the lowest on.
    void add(const TilePlanes& planes, const PixelRect& rows);
    /// Rows of `held` of an image, all of them.
    void add(const StoredImage& image);
    /// After the last row.
    void finish();

private:
    struct Level {
        PixelRect cells;
        TilePlanes rows; ///< of the finer grid: row y at place y mod 4
        TilePlanes sums; ///< two rows, each of four of these summed
        TilePlanes result; ///< one row, halved across
    };

    void takeMemory();
    template <class Fill> void addUpTo(int y, const Fill& fill);
    void addRow(size_t level, int y);
    void addSums(size_t level, int j, int sums);
    bool readsInPlace() const;
    template <class Sample> void addInPlace(const StoredImage& image);
    void pad(const TilePlanes& planes, int y, int channel, float* to) const;

    PixelRect m_cells;
    PixelRect m_wanted;
    PixelRect m_held;
    CoarseEdges m_edges;
    int m_channels;
    int m_next; ///< the row of m_wanted to come
    std::vector<Level> m_levels; ///< the finest first
    StoredImage& m_averages;
    TileArena& m_arena;
};

} // namespace orvane
