#include "BrushRing.h"

#include "LightGeometry.h"
#include "OverlayPainter.h"

namespace orvane {

namespace {

/// Of the cross in the middle, in view points.
constexpr double crossReach = 5;

QRegion footprint(const std::optional<CGPoint>& at, double radius, const CanvasView& view)
{
    if (!at)
        return {};
    const CGPoint centre = viewPoint(*at, view);
    return Footprint::circle(centre, imageLength(radius, view))
        + Footprint::point(centre, crossReach);
}

} // namespace

QRegion BrushRing::hover(const CanvasPointer& pointer, double radius)
{
    const QRegion before = footprint(m_at, radius, pointer.view);
    m_at = pointer.isInside() ? std::optional(pointer.fraction) : std::nullopt;
    return before + footprint(m_at, radius, pointer.view);
}

QRegion BrushRing::begin(const CanvasPointer& pointer, double radius, double spacing)
{
    m_isDrawing = pointer.isInside();
    m_stroke.clear();
    return draw(pointer, radius, spacing);
}

QRegion BrushRing::draw(const CanvasPointer& pointer, double radius, double spacing)
{
    QRegion changed = hover(pointer, radius);
    if (!m_isDrawing || !pointer.isInside()
        || !LightGeometry::extend(m_stroke, pointer.fraction, spacing, pointer.view.frame))
        return changed;
    const CGPoint from = m_stroke.size() > 1 ? m_stroke[m_stroke.size() - 2] : m_stroke.back();
    return changed
        + Footprint::segment(viewPoint(from, pointer.view),
                             viewPoint(m_stroke.back(), pointer.view),
                             imageLength(radius, pointer.view) * 2);
}

std::vector<CGPoint> BrushRing::end()
{
    m_isDrawing = false;
    return std::exchange(m_stroke, {});
}

void BrushRing::cancel()
{
    m_at.reset();
    m_stroke.clear();
    m_isDrawing = false;
}

void BrushRing::paint(OverlayPainter& painter, double radius, Mark mark) const
{
    painter.ribbon(m_stroke, radius);
    if (!m_at)
        return;
    const QPointF centre = painter.at(*m_at);
    painter.circle(centre, painter.length(radius), OverlayPainter::Line::Strong);
    const double reach = painter.points(crossReach);
    QPainterPath cross(centre - QPointF(reach, 0));
    cross.lineTo(centre + QPointF(reach, 0));
    if (mark != Mark::Minus) {
        cross.moveTo(centre - QPointF(0, reach));
        cross.lineTo(centre + QPointF(0, reach));
    }
    painter.path(cross, OverlayPainter::Line::Strong);
}

QCursor BrushRing::cursor() const
{
    // The ring is the cursor, where there is one.
    return m_at ? Qt::BlankCursor : Qt::ArrowCursor;
}

} // namespace orvane
