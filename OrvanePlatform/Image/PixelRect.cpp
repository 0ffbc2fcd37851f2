#include "PixelRect.h"

#include <cmath>

namespace orvane {

int heldToInt(double value)
{
    if (std::isnan(value))
        return 0;
    return int(std::clamp(value, -double(farAway), double(farAway)));
}

PixelRect roundedRect(const CGRect& rect)
{
    return {heldToInt(std::floor(rect.minX() + 0.5)), heldToInt(std::floor(rect.minY() + 0.5)),
            heldToInt(std::floor(rect.maxX() + 0.5)), heldToInt(std::floor(rect.maxY() + 0.5))};
}

PixelRect roundedOutward(const CGRect& rect)
{
    constexpr double noise = 1e-6;
    return {heldToInt(std::floor(rect.minX() + noise)), heldToInt(std::floor(rect.minY() + noise)),
            heldToInt(std::ceil(rect.maxX() - noise)), heldToInt(std::ceil(rect.maxY() - noise))};
}

} // namespace orvane
