#pragma once

#include "TilePlanes.h"

namespace orvane {

/// Planes made ready for bilinear sampling: as they are where they hold all that is read, otherwise
/// with a rim of transparent pixels around them.
class BilinearWindow {
public:
    /// `planes` must not be empty. `reach` holds all positions that will be sampled and a pixel
    /// more on each side.
    BilinearWindow(const TilePlanes& planes, const PixelRect& reach, TileArena& arena);

    /// Positions come in whole vectors: `count` is rounded up to a multiple of this many.
    static constexpr int wholeRun = rowPadding;
    /// The most positions that one call takes.
    static constexpr int longestRun = 256;

    /// Which channels of a sample are wanted. Rows are written up to a multiple of wholeRun.
    struct Output {
        float* plane[4] = {}; ///< null: not wanted
    };

    /// Samples at positions in the planes' own continuous coordinates, pixel centres at +0.5. What
    /// is not a number, or further than a pixel away from the planes, is transparent. A sample
    /// depends on its position alone, not on its neighbours nor on where the planes begin; the
    /// position is rounded to the nearest 2^-18 of a pixel.
    const TilePlanes& planes() const { return m_planes; }
    void sample(const double* xs, const double* ys, int count, const Output& out) const;

private:
    bool m_rimmed;
    TilePlanes m_planes;
};

} // namespace orvane
