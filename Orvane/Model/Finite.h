#pragma once

#include "CGGeometry.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvane {

// No store can hold what is not finite: an image that got one such number from a gesture over an
// empty view could never be saved again. So the operations leave such values alone.

template <class... Numbers> bool areFinite(Numbers... numbers)
{
    return (std::isfinite(numbers) && ...);
}

inline bool areFinite(const CGRect& rect)
{
    return areFinite(rect.minX(), rect.minY(), rect.width(), rect.height());
}

inline bool areFinite(const std::vector<CGPoint>& points)
{
    return std::all_of(points.begin(), points.end(),
                       [](const CGPoint& p) { return areFinite(p.x, p.y); });
}

} // namespace orvane
