#pragma once

#include "CIImage.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane {

/// A colour parameter as pixels hold it: decoded from sRGB (IEC 61966-2-1, odd-symmetric),
/// premultiplied, r g b a.
inline std::array<float, 4> linearColor(const CIColor& color)
{
    const double encoded[] = {color.red, color.green, color.blue};
    std::array<float, 4> pixel{0, 0, 0, float(color.alpha)};
    std::transform(std::begin(encoded), std::end(encoded), pixel.begin(), [&](double value) {
        const double size = std::abs(value);
        const double linear =
            size <= 0.04045 ? size / 12.92 : std::pow((size + 0.055) / 1.055, 2.4);
        return float(std::copysign(linear, value) * color.alpha);
    });
    return pixel;
}

} // namespace orvane
