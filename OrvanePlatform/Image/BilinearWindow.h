#pragma once

#include "TilePlanes.h"

namespace orvane {

/// Planes rearranged for bilinear sampling: the four channels of a pixel side by side, so that a
/// sample is four loads whatever the picture's turn, within a rim of transparent pixels, so that
/// samples at and beyond the edge need no other code.
class BilinearWindow {
public:
    BilinearWindow(const TilePlanes& planes, TileArena& arena);

    /// Which channels of a sample are wanted.
    struct Output {
        float* plane[4] = {}; ///< null: not wanted
    };

    /// Samples at positions in the planes' own continuous coordinates, pixel centres at +0.5. What
    /// is not a number, or further than a pixel away from the planes, is transparent. The
    /// arithmetic is the same at every position, without fused steps.
    void sample(const double* xs, const double* ys, int count, const Output& out) const;

private:
    using Pixel = float __attribute__((vector_size(16)));

    PixelRect m_rect;
    std::ptrdiff_t m_stride; ///< in pixels
    const Pixel* m_origin; ///< of the rectangle's first pixel
};

} // namespace orvane
