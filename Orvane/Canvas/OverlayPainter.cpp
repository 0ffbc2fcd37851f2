#include "OverlayPainter.h"

#include "ScreenPicture.h"
#include "Theme.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane {

namespace {

constexpr QColor light(0xf2, 0xf2, 0xf2);
constexpr QColor faintLight(0xf2, 0xf2, 0xf2, 0x8c);
constexpr QColor rim(0, 0, 0, 0x96);
constexpr QColor faintRim(0, 0, 0, 0x55);
/// Of curves. Opaque: the toolkit blends see-through ones in threads, piece by piece, and the main
/// thread would wait for these a hundred times in a frame.
constexpr QColor curve(0xf2, 0xf2, 0xf2);
constexpr QColor curveRim(0x26, 0x26, 0x26);
constexpr QColor faintCurve(0xb4, 0xb4, 0xb4);
constexpr QColor faintCurveRim(0x48, 0x48, 0x48);
constexpr double knobRadius = 5.5; ///< view points

} // namespace

OverlayPainter::OverlayPainter(QPainter& painter, const CanvasView& view,
                               const QTransform& toDevice)
    : m_painter(painter)
    , m_view(view)
    , m_toDevice(toDevice)
    , m_scale(toDevice.m11())
    , m_hairline(std::max(1.0, std::floor(m_scale)))
{
    m_painter.setRenderHint(QPainter::Antialiasing);
}

QRectF OverlayPainter::picture() const
{
    return {at({0, 0}).toPoint(), deviceSize(m_view, m_scale)};
}

QPointF OverlayPainter::at(const CGPoint& fraction) const
{
    const CGPoint point = viewPoint(fraction, m_view);
    return m_toDevice.map(QPointF(point.x, point.y));
}

double OverlayPainter::length(double fraction) const
{
    return imageLength(fraction, m_view) * m_scale;
}

void OverlayPainter::circle(const QPointF& centre, double radius, Line line)
{
    QPainterPath round;
    round.addEllipse(centre, radius, radius);
    stroke(round, line);
}

void OverlayPainter::path(const QPainterPath& path, Line line)
{
    stroke(path, line);
}

void OverlayPainter::stroke(const QPainterPath& path, Line line)
{
    const bool isFaint = line == Line::Faint;
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(isFaint ? faintCurveRim : curveRim, m_hairline * (isFaint ? 2.0 : 2.8),
                          Qt::SolidLine, Qt::FlatCap));
    m_painter.drawPath(path);
    QPen pen(isFaint ? faintCurve : curve, m_hairline * (isFaint ? 1.0 : 1.5), Qt::SolidLine,
             Qt::FlatCap);
    if (line == Line::Dashed)
        pen.setDashPattern({4, 3});
    m_painter.setPen(pen);
    m_painter.drawPath(path);
}

QRectF OverlayPainter::aligned(const QRectF& rect) const
{
    const QPointF from(std::round(rect.left()), std::round(rect.top()));
    return {from, QPointF(std::round(rect.right()), std::round(rect.bottom()))};
}

void OverlayPainter::fill(const QRectF& rect, const QColor& color)
{
    m_painter.fillRect(aligned(rect), color);
}

void OverlayPainter::grid(const QRectF& within, const std::vector<double>& columns,
                          const std::vector<double>& rows)
{
    const QRectF bounds = aligned(within);
    const auto column = [&](double x, double width, const QColor& color) {
        m_painter.fillRect(
            QRectF(std::round(x) - width, bounds.top(), width * 2 + m_hairline, bounds.height()),
            color);
    };
    const auto row = [&](double y, double width, const QColor& color) {
        m_painter.fillRect(
            QRectF(bounds.left(), std::round(y) - width, bounds.width(), width * 2 + m_hairline),
            color);
    };
    for (const double x : columns)
        column(x, m_hairline, faintRim);
    for (const double y : rows)
        row(y, m_hairline, faintRim);
    for (const double x : columns)
        column(x, 0, faintLight);
    for (const double y : rows)
        row(y, 0, faintLight);
}

void OverlayPainter::frame(const QRectF& rect)
{
    const QRectF inner = aligned(rect);
    const auto ring = [&](double outset, double width, const QColor& color) {
        const QRectF outer = inner.adjusted(-outset, -outset, outset, outset);
        m_painter.fillRect(QRectF(outer.left(), outer.top(), outer.width(), width), color);
        m_painter.fillRect(QRectF(outer.left(), outer.bottom() - width, outer.width(), width),
                           color);
        const double height = outer.height() - width * 2;
        m_painter.fillRect(QRectF(outer.left(), outer.top() + width, width, height), color);
        m_painter.fillRect(QRectF(outer.right() - width, outer.top() + width, width, height),
                           color);
    };
    ring(m_hairline, m_hairline, rim);
    ring(0, m_hairline, light);
    ring(-m_hairline, m_hairline, rim);
}

void OverlayPainter::knob(const QPointF& centre, bool isSelected)
{
    const double radius = points(knobRadius);
    m_painter.setPen(QPen(rim, m_hairline * 3));
    m_painter.setBrush(isSelected ? QBrush(light) : QBrush(QColor(0, 0, 0, 0x60)));
    m_painter.drawEllipse(centre, radius, radius);
    m_painter.setPen(QPen(light, m_hairline * 1.5));
    m_painter.drawEllipse(centre, radius, radius);
}

void OverlayPainter::bar(const QRectF& rect)
{
    const QRectF view =
        aligned(m_toDevice.mapRect(QRectF(0, 0, m_view.size.width, m_view.size.height)))
            .adjusted(m_hairline, m_hairline, -m_hairline, -m_hairline);
    // Only by as much as is cut off at the edge of a fitted picture; what is out of sight stays so.
    const auto inwards = [farthest = points(6)](double by) { return by <= farthest ? by : 0.0; };
    QRectF inner = aligned(rect);
    inner.translate(inwards(std::max(0.0, view.left() - inner.left()))
                        - inwards(std::max(0.0, inner.right() - view.right())),
                    inwards(std::max(0.0, view.top() - inner.top()))
                        - inwards(std::max(0.0, inner.bottom() - view.bottom())));
    m_painter.fillRect(inner.adjusted(-m_hairline, -m_hairline, m_hairline, m_hairline), rim);
    m_painter.fillRect(inner, light);
}

void OverlayPainter::ribbon(const std::vector<CGPoint>& fractions, double radius)
{
    if (fractions.empty())
        return;
    QPainterPath line(at(fractions.front()));
    // A stroke of one point is a dab: its line has no length, and only the caps show.
    line.lineTo(at(fractions.front()) + QPointF(0.01, 0));
    for (size_t i = 1; i < fractions.size(); ++i)
        line.lineTo(at(fractions[i]));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(
        QPen(QColor(Theme::accent.red(), Theme::accent.green(), Theme::accent.blue(), 0x80),
             length(radius) * 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    m_painter.drawPath(line);
}

void OverlayPainter::label(const QPointF& topLeft, const QString& text)
{
    QFont font = m_painter.font();
    font.setPixelSize(std::max(1, int(std::lround(points(11)))));
    m_painter.setFont(font);
    const QFontMetricsF metrics(font);
    const QRectF box =
        aligned(QRectF(topLeft, metrics.size(0, text)).adjusted(0, 0, points(10), points(4)));
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(QColor(0x1b, 0x1b, 0x1b, 0xd0));
    m_painter.drawRoundedRect(box, points(3), points(3));
    m_painter.setPen(light);
    m_painter.drawText(box, Qt::AlignCenter, text);
}

void OverlayPainter::image(const QPointF& centre, const QImage& image, double opacity)
{
    m_painter.setOpacity(opacity);
    m_painter.drawImage((centre - QPointF(image.width(), image.height()) / 2).toPoint(), image);
    m_painter.setOpacity(1);
}

namespace Footprint {

namespace {

/// Rims and the blur of antialiasing, in view points.
constexpr double margin = 4;

QRegion box(double left, double top, double right, double bottom)
{
    const QPoint from(int(std::floor(left - margin)), int(std::floor(top - margin)));
    const QPoint to(int(std::ceil(right + margin)), int(std::ceil(bottom + margin)));
    return QRect(from, to);
}

/// Grown to whole cells.
QRegion cells(const QRegion& box)
{
    constexpr int cell = 32;
    const QRect rect = box.boundingRect();
    const auto floored = [](int value) { return value - (value % cell + cell) % cell; };
    const int left = floored(rect.left());
    const int top = floored(rect.top());
    return QRect(left, top, floored(rect.right()) + cell - left,
                 floored(rect.bottom()) + cell - top);
}

} // namespace

QRegion point(const CGPoint& viewPoint, double radius)
{
    return box(viewPoint.x - radius, viewPoint.y - radius, viewPoint.x + radius,
               viewPoint.y + radius);
}

QRegion segment(const CGPoint& from, const CGPoint& to, double width)
{
    const double reach = width / 2;
    const auto [left, right] = std::minmax(from.x, to.x);
    const auto [top, bottom] = std::minmax(from.y, to.y);
    if (left == right || top == bottom)
        return box(left - reach, top - reach, right + reach, bottom + reach);
    // A slanted line in pieces: its bounding box could be the whole view.
    const int pieces = std::clamp(int(std::hypot(right - left, bottom - top) / 64), 1, 48);
    QRegion region;
    for (int i = 0; i < pieces; ++i) {
        const double a = double(i) / pieces;
        const double b = double(i + 1) / pieces;
        const auto [x0, x1] = std::minmax(std::lerp(from.x, to.x, a), std::lerp(from.x, to.x, b));
        const auto [y0, y1] = std::minmax(std::lerp(from.y, to.y, a), std::lerp(from.y, to.y, b));
        region += cells(box(x0 - reach, y0 - reach, x1 + reach, y1 + reach));
    }
    return region;
}

QRegion circle(const CGPoint& centre, double radius)
{
    const int pieces = std::clamp(int(radius / 8), 8, 128);
    QRegion region;
    CGPoint from{centre.x + radius, centre.y};
    for (int i = 1; i <= pieces; ++i) {
        const double angle = 2 * std::numbers::pi * i / pieces;
        const CGPoint to{centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
        // How far the arc stands out from its chord.
        const double bulge = radius * (1 - std::cos(std::numbers::pi / pieces));
        region += cells(box(std::min(from.x, to.x) - bulge, std::min(from.y, to.y) - bulge,
                            std::max(from.x, to.x) + bulge, std::max(from.y, to.y) + bulge));
        from = to;
    }
    return region;
}

QRegion area(const CGRect& rect)
{
    return box(rect.minX(), rect.minY(), rect.maxX(), rect.maxY());
}

} // namespace Footprint

} // namespace orvane
