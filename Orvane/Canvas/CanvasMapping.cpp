#include "CanvasMapping.h"

#include <algorithm>

namespace orvane {

namespace {

/// The picture before zoom and pan, in view points.
CGRect fittedRect(const CanvasView& view)
{
    const double scale = fitScale(view.size, view.frame);
    const double width = scale * view.frame.width;
    const double height = scale * view.frame.height;
    return {(view.size.width - width) * 0.5, (view.size.height - height) * 0.5, width, height};
}

bool isFraction(double value)
{
    return value >= 0 && value <= 1;
}

} // namespace

double fitScale(const CGSize& view, const CGSize& frame)
{
    return std::min(view.width / frame.width, view.height / frame.height);
}

double effectiveZoom(const CanvasView& view)
{
    return std::max(view.zoom * view.pinch, 1.0);
}

CGRect pictureRect(const CanvasView& view)
{
    if (!view.hasFrame())
        return {};
    const double zoom = effectiveZoom(view);
    const CGRect fitted = fittedRect(view);
    return {view.size.width * 0.5 - fitted.width() * zoom * 0.5 + view.pan.x,
            view.size.height * 0.5 - fitted.height() * zoom * 0.5 + view.pan.y,
            fitted.width() * zoom, fitted.height() * zoom};
}

CGPoint fractionAt(const CGPoint& viewPoint, const CanvasView& view)
{
    const double zoom = std::max(view.zoom, 1.0);
    const CGPoint centre{view.size.width * 0.5, view.size.height * 0.5};
    const CGPoint fittedPoint{centre.x + (viewPoint.x - view.pan.x - centre.x) / zoom,
                              centre.y + (viewPoint.y - view.pan.y - centre.y) / zoom};
    const CGRect fitted = fittedRect(view);
    return {(fittedPoint.x - fitted.minX()) / fitted.width(),
            (fittedPoint.y - fitted.minY()) / fitted.height()};
}

std::optional<CGPoint> normalized(const CGPoint& viewPoint, const CanvasView& view)
{
    if (!view.hasFrame())
        return {};
    const CGPoint fraction = fractionAt(viewPoint, view);
    if (!isFraction(fraction.x) || !isFraction(fraction.y))
        return {};
    return fraction;
}

CGPoint viewPoint(const CGPoint& fraction, const CanvasView& view)
{
    const CGPoint centre{view.size.width * 0.5, view.size.height * 0.5};
    if (!view.hasFrame())
        return centre;
    const double zoom = std::max(view.zoom, 1.0);
    const CGRect fitted = fittedRect(view);
    const CGPoint fittedPoint{fitted.minX() + fraction.x * fitted.width(),
                              fitted.minY() + fraction.y * fitted.height()};
    return {centre.x + (fittedPoint.x - centre.x) * zoom + view.pan.x,
            centre.y + (fittedPoint.y - centre.y) * zoom + view.pan.y};
}

double imageLength(double fraction, const CanvasView& view)
{
    if (!view.hasFrame())
        return 10;
    const double longEdge = std::max(view.frame.width, view.frame.height);
    return std::max(fraction * longEdge * fitScale(view.size, view.frame) * effectiveZoom(view),
                    3.0);
}

double actualSizeZoom(const CGSize& source, const CGSize& view)
{
    const double scale = fitScale(view, source);
    return scale <= 0.0001 ? maximumZoom : heldZoom(1 / scale);
}

double zoomedIn(double zoom)
{
    return heldZoom(zoom * 1.25);
}

double zoomedOut(double zoom)
{
    return heldZoom(zoom / 1.25);
}

double heldZoom(double zoom)
{
    return std::clamp(zoom, 1.0, maximumZoom);
}

CGPoint panKeeping(const CGPoint& point, double zoom, const CanvasView& view)
{
    const double ratio = zoom / effectiveZoom(view);
    const double x = point.x - view.size.width * 0.5;
    const double y = point.y - view.size.height * 0.5;
    return {x - (x - view.pan.x) * ratio, y - (y - view.pan.y) * ratio};
}

CGPoint heldPan(const CanvasView& view)
{
    if (effectiveZoom(view) <= 1)
        return {};
    const CGRect picture = pictureRect(view);
    const double x = picture.width() * 0.5;
    const double y = picture.height() * 0.5;
    return {std::clamp(view.pan.x, -x, x), std::clamp(view.pan.y, -y, y)};
}

} // namespace orvane
