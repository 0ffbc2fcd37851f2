#pragma once

#include "EditState.h"

#include <QPointF>

#include <optional>
#include <vector>

/// What a hand may do to the points of one tone curve. Points are on 0..255 with y upward,
/// ascending in x; the plot is a square of `side` view points with y downward.
namespace orvane::CurveEditing {

using Point = EditState::CurvePoint;
using Points = std::vector<Point>;

/// From corner to corner: the curve of a channel that has no points.
const Points& identity();
/// Whether any channel is anything but that.
bool isBent(const Adjustments::Curve& curves);

QPointF plotPosition(const Point& point, double side);
/// Held to the plot.
Point pointAt(const QPointF& position, double side);

/// The first point that a press takes hold of: less than 10 view points away.
std::optional<size_t> pointNear(const Points& points, const QPointF& position, double side);
/// Adds a point between the two ends and tells its index.
size_t insert(Points& points, Point point);
/// Moves a point as far as it may go: one level short of its neighbours, the ends up and down only.
void move(Points& points, size_t index, const Point& to);

/// Neither the first nor the last, which always stay.
bool isInterior(const Points& points, size_t index);
/// More than 12 view points outside the plot: letting go here throws an interior point away.
bool isThrownAway(const QPointF& position, double side);

} // namespace orvane::CurveEditing
