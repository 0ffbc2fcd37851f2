#include "LevelsStops.h"

#include <algorithm>
#include <cmath>

namespace orvane::LevelsStops {

namespace {

constexpr double top = 255;
constexpr double neutralGamma = 100;
constexpr double lowestReached = 14;
constexpr double highestReached = 388;

/// Of the way from black to white. Linear on either side of the middle, so that a gamma of 400
/// would stand on the black stop and one of 10 on the white one.
double gammaShare(double gamma)
{
    return gamma >= neutralGamma ? 0.5 - (gamma - neutralGamma) / 600
                                 : 0.5 + (neutralGamma - gamma) / 180;
}

double draggedGamma(double blackX, double whiteX, double x)
{
    if (whiteX <= blackX)
        return neutralGamma;
    const double share = std::clamp((x - blackX) / (whiteX - blackX), 0.02, 0.98);
    return share < 0.5 ? std::round(neutralGamma + (0.5 - share) * 2 * 300)
                       : std::round(neutralGamma - (share - 0.5) * 2 * 90);
}

/// Held clear of the other end; where there is no room the stop stays.
double heldApart(const Levels& levels, Stop stop, double level)
{
    const double low = stop == Stop::Black ? 0 : levels.blackIn + 1;
    const double high = stop == Stop::Black ? levels.whiteIn - 1 : top;
    return low <= high ? std::clamp(level, low, high) : value(levels, stop);
}

} // namespace

const char* key(Stop stop)
{
    const size_t field = stop == Stop::Black ? 0 : stop == Stop::White ? 1 : 2;
    return EditState::levelsKeys[field].data();
}

double value(const Levels& levels, Stop stop)
{
    return stop == Stop::Black ? levels.blackIn
        : stop == Stop::White  ? levels.whiteIn
                               : levels.gamma;
}

double position(const Levels& levels, Stop stop, double width)
{
    const double black = width * levels.blackIn / top;
    const double white = width * levels.whiteIn / top;
    return stop == Stop::Black ? black
        : stop == Stop::White  ? white
                               : black + (white - black) * gammaShare(levels.gamma);
}

double dragged(const Levels& levels, Stop stop, double x, double width)
{
    if (stop == Stop::Gamma)
        return draggedGamma(position(levels, Stop::Black, width),
                            position(levels, Stop::White, width), x);
    return heldApart(levels, stop, std::round(top * std::clamp(x / width, 0.0, 1.0)));
}

double stepped(const Levels& levels, Stop stop, int steps)
{
    if (stop == Stop::Gamma) // its stop moves to the right as the gamma falls
        return std::clamp(std::round(levels.gamma) - steps, lowestReached, highestReached);
    return heldApart(levels, stop, std::round(value(levels, stop)) + steps);
}

} // namespace orvane::LevelsStops
