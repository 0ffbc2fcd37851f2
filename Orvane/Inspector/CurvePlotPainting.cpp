// How the curve and its points look: a quiet grid, the curve in its channel's tint, points that are
// filled when selected and ringed when they have the keyboard.
//
//   ┌──┬──┬──┬─o
//   ├──┼──┼─●──┤
//   ├──┼─╱┼──┼──┤
//   o──┴──┴──┴──┘
#include "CurvePlot.h"

#include "Curves.h"
#include "DevicePixels.h"
#include "PlotHandle.h"
#include "Theme.h"

#include <QPainterPath>

namespace orvane {

namespace {

constexpr QColor ground(0x21, 0x21, 0x21);
constexpr QColor gridLine(0x34, 0x34, 0x34);
constexpr double pointRadius = 4;

/// The table's whole steps would show as small stairs in a flat curve: a triangle over nine entries
/// takes them out and moves the line by less than half a level.
std::array<double, 256> smoothed(const Curves::Table& table)
{
    constexpr int reach = 4;
    std::array<double, 256> result{};
    for (int i = 0; i < 256; ++i) {
        const int within = std::min({reach, i, 255 - i});
        double sum = 0;
        for (int d = -within; d <= within; ++d)
            sum += table[size_t(i + d)] * (within + 1 - std::abs(d));
        result[size_t(i)] = sum / ((within + 1) * (within + 1));
    }
    return result;
}

QPainterPath curvePath(const CurveEditing::Points& points, const QRectF& frame)
{
    const auto heights = smoothed(Curves::lut(points));
    QPainterPath path;
    for (int i = 0; i < 256; ++i) {
        const QPointF place = frame.topLeft()
            + CurveEditing::plotPosition({double(i), heights[size_t(i)]}, frame.width());
        if (i == 0)
            path.moveTo(place);
        else
            path.lineTo(place);
    }
    return path;
}

} // namespace

void CurvePlot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRectF frame = DevicePixels::aligned(painter, plot());
    paintGrid(painter, frame);

    painter.setRenderHint(QPainter::Antialiasing);
    CurveEditing::Points shown = m_points;
    if (m_isThrowing)
        shown.erase(shown.begin() + std::ptrdiff_t(*m_dragging));
    QColor line = isEnabled() ? m_tint : Theme::disabledText;
    painter.setPen(QPen(line, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(curvePath(shown, frame));
    paintPoints(painter, frame);
}

void CurvePlot::paintGrid(QPainter& painter, const QRectF& frame) const
{
    painter.fillRect(frame, ground);
    for (int quarter = 1; quarter < 4; ++quarter) {
        const double along = frame.width() * quarter / 4;
        DevicePixels::verticalLine(painter, frame.left() + along, frame.top(), frame.bottom(),
                                   gridLine);
        DevicePixels::horizontalLine(painter, frame.top() + along, frame.left(), frame.right(),
                                     gridLine);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(gridLine, 1));
    painter.drawLine(frame.bottomLeft(), frame.topRight());
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void CurvePlot::paintPoints(QPainter& painter, const QRectF& frame) const
{
    for (size_t i = 0; i < m_points.size(); ++i) {
        const QPointF centre =
            frame.topLeft() + CurveEditing::plotPosition(m_points[i], frame.width());
        const bool isHeld = m_dragging == i;
        painter.setOpacity(isHeld && m_isThrowing ? 0.4 : 1);
        if (m_handles[i]->hasFocus()) {
            painter.setPen(QPen(Theme::accent, 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawEllipse(centre, pointRadius + 3, pointRadius + 3);
        }
        const double radius = pointRadius + (isHeld || m_hovered == i ? 1 : 0);
        painter.setPen(QPen(m_tint, 1.5));
        painter.setBrush(i == m_selected ? m_tint : ground);
        painter.drawEllipse(centre, radius, radius);
    }
    painter.setOpacity(1);
}

} // namespace orvane
