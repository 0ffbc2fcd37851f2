#include "DraftPace.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

/// Milliseconds: what is aimed at, and what is left alone.
constexpr double aim = 40;
constexpr double quickest = 18;
constexpr double slowest = 55;
constexpr double farTooSlow = 150;
constexpr double smallestEdge = 640;
constexpr double steps = 16;
/// From here on it might as well be the whole picture.
constexpr double nearlyWhole = 0.9;

} // namespace

double DraftPace::scale(double pictureEdge, double screenEdge) const
{
    const double seen = std::ceil(screenEdge / pictureEdge * steps);
    const double inTime = std::floor(m_inTime * steps);
    const double scale = std::max(std::min(seen, inTime) / steps, smallestEdge / pictureEdge);
    return scale < nearlyWhole ? scale : 1;
}

void DraftPace::drew(double scale, double milliseconds)
{
    const bool isFirstOfItsSize = scale != std::exchange(m_last, scale);
    if (milliseconds >= quickest && milliseconds <= slowest)
        return;
    // The first also draws what the next ones find kept.
    if (isFirstOfItsSize && milliseconds < farTooSlow)
        return;
    const double inTime = std::min(scale * std::sqrt(aim / std::max(milliseconds, 1.0)), 1.0);
    // One that is quick because the view is small says nothing against larger ones.
    m_inTime = milliseconds < quickest ? std::max(m_inTime, inTime) : inTime;
}

} // namespace orvane
