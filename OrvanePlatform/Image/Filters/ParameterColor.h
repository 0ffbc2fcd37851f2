#pragma once

#include "CIImage.h"

#include <array>
#include <cmath>

namespace orvane {

/// The sRGB decoding (IEC 61966-2-1) of one component, odd-symmetric, in double precision.
inline double decodedComponent(double x)
{
    const double magnitude = std::abs(x);
    return std::copysign(
        magnitude <= 0.04045 ? magnitude / 12.92 : std::pow((magnitude + 0.055) / 1.055, 2.4), x);
}

/// A colour given as a parameter, as pixels hold it: linear and premultiplied R G B A.
inline std::array<float, 4> workingColor(const CIColor& color)
{
    const double alpha = color.alpha;
    return {float(decodedComponent(color.red) * alpha),
            float(decodedComponent(color.green) * alpha),
            float(decodedComponent(color.blue) * alpha), float(alpha)};
}

} // namespace orvane
