#pragma once

#include "StoredImage.h"
#include "TilePlanes.h"

namespace orvane {

/// Full-size rows of a blur from its cells (BlurGrid.h).
///
/// A row is put together down the columns of cells first, from the three rows of cells that have a
/// say in it, and then doubled across until it is as wide as the pixels: all that is read and
/// written on the way are a few short rows in the first-level cache. (Doubling whole planes level
/// by level reads and writes 4 bytes a pixel and channel of the second-level cache, which the five
/// blurs of a variable one overflow.)
class EnlargedBlur {
public:
    /// `blurred` holds all cells that the pixels of `rect` are made of.
    EnlargedBlur(const StoredImage& blurred, int factor, const PixelRect& rect, TileArena& arena);

    /// Planes for the pixels of the rectangle, or for one row of them.
    TilePlanes planes(TileArena& arena) const;
    TilePlanes rowPlanes(TileArena& arena) const;
    /// Row y into such planes. Rows of planes are drawn from the lowest on.
    void drawRow(int y, const TilePlanes& planes) const;
    /// What it needs while it draws.
    const TilePlanes& scratch() const { return m_scratch; }

private:
    PixelRect writtenRect() const;
    TilePlanes shifted(TilePlanes planes) const;

    /// One doubling of a row: which of the cells there are go into it.
    struct Doubling {
        int skipped = 0;
        int count = 0;
    };
    static constexpr int mostLevels = 16;

    const StoredImage* m_blurred;
    int m_levels;
    PixelRect m_rect;
    PixelRect m_cells;
    Doubling m_doublings[mostLevels];
    int m_half; ///< of a row of scratch memory, in floats
    TilePlanes m_scratch; ///< of each channel, the row to be doubled and the doubled one
};

} // namespace orvane
