#pragma once

#include "CIImage.h"
#include "PixelRect.h"

#include <vector>

namespace orvane {

/// Pixels of a rectangle, four floats each, rows upwards.
struct FloatImage {
    PixelRect rect;
    std::vector<float> samples;

    explicit FloatImage(const PixelRect& r)
        : rect(r)
        , samples(size_t(r.area()) * 4)
    {
    }
    /// The four channels of a pixel within rect.
    float* at(int x, int y)
    {
        return &samples[(size_t(y - rect.y0) * size_t(rect.width()) + size_t(x - rect.x0)) * 4];
    }
    const float* at(int x, int y) const { return const_cast<FloatImage*>(this)->at(x, y); }
};

/// Draws a recipe the plain way: whole images, one thread, one pixel at a time, every formula as it
/// is written, blurs with all their weights. The oracle of the tests; slow by design.
FloatImage drawReference(const CIImage& image, const PixelRect& rect);

} // namespace orvane
