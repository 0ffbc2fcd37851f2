#include "CurveEditing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace orvane::CurveEditing {

namespace {

constexpr double top = 255; ///< of both scales
constexpr double reach = 10;
constexpr double throwDistance = 12;

} // namespace

const Points& identity()
{
    static const Points ends = {{0, 0}, {top, top}};
    return ends;
}

bool isBent(const Adjustments::Curve& curves)
{
    return std::any_of(curves.begin(), curves.end(), [](const auto& channel) {
        return !channel.second.empty() && channel.second != identity();
    });
}

QPointF plotPosition(const Point& point, double side)
{
    return {side * point.x / top, side * (1 - point.y / top)};
}

Point pointAt(const QPointF& position, double side)
{
    return {std::clamp(top * position.x() / side, 0.0, top),
            std::clamp(top * (1 - position.y() / side), 0.0, top)};
}

std::optional<size_t> pointNear(const Points& points, const QPointF& position, double side)
{
    for (size_t i = 0; i < points.size(); ++i) {
        const QPointF away = plotPosition(points[i], side) - position;
        if (std::hypot(away.x(), away.y()) < reach)
            return i;
    }
    return {};
}

size_t insert(Points& points, Point point)
{
    // A press beside the plot lies at an end's x; the new point must not become an end itself.
    if (points.back().x - points.front().x >= 2)
        point.x = std::clamp(point.x, points.front().x + 1, points.back().x - 1);
    size_t index = 1;
    while (index + 1 < points.size() && points[index].x <= point.x)
        ++index;
    points.insert(points.begin() + std::ptrdiff_t(index), point);
    return index;
}

void move(Points& points, size_t index, const Point& to)
{
    Point& point = points[index];
    point.y = std::clamp(to.y, 0.0, top);
    if (index == 0) {
        point.x = 0;
    } else if (index + 1 == points.size()) {
        point.x = top;
    } else {
        const double low = points[index - 1].x + 1;
        const double high = points[index + 1].x - 1;
        if (low <= high)
            point.x = std::clamp(to.x, low, high);
    }
}

bool isInterior(const Points& points, size_t index)
{
    return index > 0 && index + 1 < points.size();
}

bool isThrownAway(const QPointF& position, double side)
{
    const auto isOutside = [side](double v) {
        return v < -throwDistance || v > side + throwDistance;
    };
    return isOutside(position.x()) || isOutside(position.y());
}

} // namespace orvane::CurveEditing
