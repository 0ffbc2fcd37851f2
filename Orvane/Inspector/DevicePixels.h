#pragma once

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>

/// Straight edges on the device's pixels, whatever the scale of the screen and wherever the widget
/// lies: at a scale of 1.25 most whole view points fall between two pixels.
namespace orvane::DevicePixels {

/// The rectangle with its edges on the nearest pixels, in the painter's own units.
inline QRectF aligned(const QPainter& painter, const QRectF& rect)
{
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QPointF from(std::round(device.left()), std::round(device.top()));
    const QPointF to(std::round(device.right()), std::round(device.bottom()));
    return toDevice.inverted().mapRect(QRectF(from, to));
}

/// A hairline's width, in the painter's units: a pixel of the screen for each whole scale.
inline double hairline(const QPainter& painter)
{
    const double scale = painter.deviceTransform().m11();
    return std::max(1.0, std::floor(scale)) / scale;
}

inline void verticalLine(QPainter& painter, double x, double top, double bottom,
                         const QColor& color)
{
    const double width = hairline(painter);
    painter.fillRect(aligned(painter, {x - width / 2, top, width, bottom - top}), color);
}

inline void horizontalLine(QPainter& painter, double y, double left, double right,
                           const QColor& color)
{
    const double width = hairline(painter);
    painter.fillRect(aligned(painter, {left, y - width / 2, right - left, width}), color);
}

} // namespace orvane::DevicePixels
