#pragma once

#include "CanvasMapping.h"

#include <QPainter>
#include <QPainterPath>
#include <QRegion>
#include <QTransform>

namespace orvane {

/// Paints over the picture in device pixels. Every line is light within a dark rim, so that it
/// stands out on black, on white and on what is busy. Places are fractions of the picture, or
/// device pixels made of these by at(); sizes are view points.
class OverlayPainter {
public:
    enum class Line {
        Strong,
        Faint, ///< what is not selected, and guides
        Dashed,
    };

    /// The painter's transform is the identity; `toDevice` maps view points.
    OverlayPainter(QPainter& painter, const CanvasView& view, const QTransform& toDevice);

    const CanvasView& view() const { return m_view; }
    /// The device pixels that the picture covers: whole ones.
    QRectF picture() const;
    /// The device pixels of a fraction.
    QPointF at(const CGPoint& fraction) const;
    /// The device pixels of a fraction of the picture's long edge.
    double length(double fraction) const;
    double points(double count) const { return count * m_scale; }

    void circle(const QPointF& centre, double radius, Line line);
    void path(const QPainterPath& path, Line line);
    /// Upright and level lines, exactly on the device's pixels.
    void grid(const QRectF& within, const std::vector<double>& columns,
              const std::vector<double>& rows);
    void frame(const QRectF& rect);
    void fill(const QRectF& rect, const QColor& color);
    /// A round handle.
    void knob(const QPointF& centre, bool isSelected);
    /// A bar of a handle on a straight edge, exactly on the device's pixels, and moved into the
    /// view where it would lie beyond it: a fitted picture reaches the view's edges.
    void bar(const QRectF& rect);
    /// A wide stroke, see-through.
    void ribbon(const std::vector<CGPoint>& fractions, double radius);
    void label(const QPointF& topLeft, const QString& text);
    void image(const QPointF& centre, const QImage& image, double opacity);

private:
    void stroke(const QPainterPath& path, Line line);
    QRectF aligned(const QRectF& rect) const;

    QPainter& m_painter;
    CanvasView m_view;
    QTransform m_toDevice;
    double m_scale; ///< device pixels for a view point
    double m_hairline; ///< device pixels, whole
};

/// What lines along these cover, in view points, with room for their rims.
namespace Footprint {

/// Round and slanted ones are made of cells of a grid: few rectangles, as a region is painted and
/// handed to the desktop rectangle by rectangle.
QRegion point(const CGPoint& viewPoint, double radius);
QRegion segment(const CGPoint& from, const CGPoint& to, double width);
QRegion circle(const CGPoint& centre, double radius);
QRegion area(const CGRect& rect);

} // namespace Footprint

} // namespace orvane
