#include "LightLooks.h"

#include "OverlayPainter.h"

#include <cmath>
#include <numbers>

namespace orvane::LightLooks {

namespace {

using Line = OverlayPainter::Line;

/// Half the length of a linear light's lines over its radius, and at least that of the long edge.
constexpr double lineReach = 1.4;
constexpr double shortestReach = 0.12;
// View points.
constexpr double knobReach = 8;
constexpr double arrow = 9;
constexpr double labelReach = 60;

struct Axis {
    double x;
    double y;
};

/// Towards the full side, as it is on screen.
Axis axisOf(const EditState::Light& light)
{
    const double angle = light.angle * std::numbers::pi / 180;
    return {std::cos(angle), std::sin(angle)};
}

double halfLine(const EditState::Light& light)
{
    return std::max(light.radius * lineReach, shortestReach);
}

/// A line across the axis, `along` away from the centre.
QPainterPath across(const QPointF& centre, const Axis& axis, double along, double half)
{
    const QPointF middle(centre.x() + axis.x * along, centre.y() + axis.y * along);
    QPainterPath path(middle - QPointF(-axis.y, axis.x) * half);
    path.lineTo(middle + QPointF(-axis.y, axis.x) * half);
    return path;
}

void paintLinear(OverlayPainter& painter, const EditState::Light& light, bool isSelected)
{
    const QPointF centre = painter.at({light.x, light.y});
    const Axis axis = axisOf(light);
    const double radius = painter.length(light.radius);
    const double half = painter.length(halfLine(light));
    const Line line = isSelected ? Line::Strong : Line::Faint;
    painter.path(across(centre, axis, radius, half), line);
    painter.path(across(centre, axis, -radius, half), isSelected ? Line::Dashed : Line::Faint);
    painter.path(across(centre, axis, 0, half), Line::Faint);
    if (!isSelected)
        return;
    const QPointF tip(centre.x() + axis.x * radius, centre.y() + axis.y * radius);
    const double size = painter.points(arrow);
    const QPointF back = tip - QPointF(axis.x, axis.y) * size;
    QPainterPath path(centre);
    path.lineTo(tip);
    path.moveTo(back + QPointF(-axis.y, axis.x) * size * 0.6);
    path.lineTo(tip);
    path.lineTo(back - QPointF(-axis.y, axis.x) * size * 0.6);
    painter.path(path, Line::Strong);
    const QPointF beside(painter.points(12), painter.points(10));
    painter.label(centre + beside, QString::number(std::lround(light.angle)) + QChar(0xb0));
}

void paintRadial(OverlayPainter& painter, const EditState::Light& light, bool isSelected)
{
    const QPointF centre = painter.at({light.x, light.y});
    const double radius = painter.length(light.radius);
    painter.circle(centre, radius, isSelected ? Line::Strong : Line::Faint);
    const double full = radius * (1 - std::clamp(light.feather, 0.0, 1.0));
    if (isSelected && full > painter.points(knobReach) && full < radius - painter.points(3))
        painter.circle(centre, full, Line::Faint);
}

QRegion linearFootprint(const EditState::Light& light, const CanvasView& view)
{
    const CGPoint centre = viewPoint({light.x, light.y}, view);
    const Axis axis = axisOf(light);
    const double radius = imageLength(light.radius, view);
    const double half = imageLength(halfLine(light), view);
    QRegion region = Footprint::segment(
        centre, {centre.x + axis.x * radius, centre.y + axis.y * radius}, arrow * 2);
    for (const double along : {-radius, 0.0, radius}) {
        const CGPoint middle{centre.x + axis.x * along, centre.y + axis.y * along};
        region += Footprint::segment({middle.x + axis.y * half, middle.y - axis.x * half},
                                     {middle.x - axis.y * half, middle.y + axis.x * half}, 2);
    }
    return region + Footprint::point(centre, labelReach);
}

} // namespace

void paint(OverlayPainter& painter, const EditState::Light& light, bool isSelected)
{
    if (light.type == "linear")
        paintLinear(painter, light, isSelected);
    else
        paintRadial(painter, light, isSelected);
    painter.knob(painter.at({light.x, light.y}), isSelected);
}

QRegion footprint(const EditState::Light& light, const CanvasView& view)
{
    if (light.type == "linear")
        return linearFootprint(light, view);
    const CGPoint centre = viewPoint({light.x, light.y}, view);
    const double radius = imageLength(light.radius, view);
    const double full = radius * (1 - std::clamp(light.feather, 0.0, 1.0));
    return Footprint::circle(centre, radius) + Footprint::circle(centre, full)
        + Footprint::point(centre, knobReach);
}

} // namespace orvane::LightLooks
