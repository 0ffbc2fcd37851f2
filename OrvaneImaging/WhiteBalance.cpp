#include "WhiteBalance.h"

#include <algorithm>
#include <cmath>

namespace orvane::WhiteBalance {

namespace {

/// Differences on the scale 0..255 that take a slider to its end.
constexpr double temperatureReach = 84;
constexpr double tintReach = 30;

double sliderValue(double difference, double reach)
{
    if (std::isnan(difference))
        return 0;
    // The sum turns a -0 into 0: it would be shown as "-0".
    return std::clamp(std::round(difference / reach * 100), -100.0, 100.0) + 0.0;
}

} // namespace

Neutralising neutralise(double r, double g, double b)
{
    return {.temperature = sliderValue(b - r, temperatureReach),
            .tint = sliderValue((r + b) * 0.5 - g, tintReach)};
}

} // namespace orvane::WhiteBalance
