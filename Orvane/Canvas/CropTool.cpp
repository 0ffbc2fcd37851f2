#include "CropTool.h"

#include "AppModel.h"
#include "CropRatio.h"
#include "OverlayPainter.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>
#include <map>

namespace orvane {

namespace {

constexpr double step = 0.005;
constexpr double largeStep = 0.02;
constexpr QColor shade(0, 0, 0, 0x90);
// View points.
constexpr double handleLength = 20;
constexpr double handleWidth = 3;

QRectF onScreen(const OverlayPainter& painter, const CGRect& crop)
{
    return {painter.at(crop.origin), painter.at({crop.maxX(), crop.maxY()})};
}

CGRect inView(const CGRect& crop, const CanvasView& view)
{
    const CGPoint from = viewPoint(crop.origin, view);
    const CGPoint to = viewPoint({crop.maxX(), crop.maxY()}, view);
    return {from.x, from.y, to.x - from.x, to.y - from.y};
}

/// Where a guide's lines divide the crop; none for the diagonals.
const std::vector<double>& divisions(const std::string& guide)
{
    static const std::map<std::string, std::vector<double>> all = {
        {"thirds", {1.0 / 3, 2.0 / 3}},
        {"golden", {0.381966, 0.618034}},
        {"cross", {0.5}},
        {"grid", {0.125, 0.25, 0.375, 0.5, 0.625, 0.75, 0.875}}};
    static const std::vector<double> none;
    const auto found = all.find(guide);
    return found == all.end() ? none : found->second;
}

/// What the lines of a crop cover, its handles included.
QRegion lines(const CGRect& crop, const std::string& guide)
{
    const CGPoint from = crop.origin;
    const CGPoint to{crop.maxX(), crop.maxY()};
    const auto line = [](double x0, double y0, double x1, double y1) {
        return Footprint::segment({x0, y0}, {x1, y1}, handleWidth * 2 + 2);
    };
    QRegion region = line(from.x, from.y, to.x, from.y) + line(from.x, to.y, to.x, to.y)
        + line(from.x, from.y, from.x, to.y) + line(to.x, from.y, to.x, to.y);
    for (const double division : divisions(guide)) {
        const double x = from.x + crop.width() * division;
        const double y = from.y + crop.height() * division;
        region += line(x, from.y, x, to.y) + line(from.x, y, to.x, y);
    }
    if (guide == "diagonal")
        region += line(from.x, from.y, to.x, to.y) + line(to.x, from.y, from.x, to.y);
    return region;
}

/// What is to be painted anew when one crop takes the other's place: the shade where it differs,
/// and whatever has lines.
QRegion difference(const CGRect& before, const CGRect& after, const CanvasView& view,
                   const std::string& guide)
{
    if (before == after)
        return {};
    const CGRect a = inView(before, view);
    const CGRect b = inView(after, view);
    return Footprint::area(a).xored(Footprint::area(b)) + lines(a, guide) + lines(b, guide);
}

void paintHandles(OverlayPainter& painter, const QRectF& crop)
{
    const double width = painter.points(handleWidth);
    const double length =
        std::min({painter.points(handleLength), crop.width() / 3, crop.height() / 3});
    for (const double x : {0.0, 0.5, 1.0}) {
        for (const double y : {0.0, 0.5, 1.0}) {
            if (x == 0.5 && y == 0.5)
                continue;
            // A corner's arms lead inwards, the bar of a side lies about its middle.
            const QPointF at(crop.left() + crop.width() * x, crop.top() + crop.height() * y);
            const QPointF outer(at.x() - (1 - x) * width, at.y() - (1 - y) * width);
            if (y != 0.5)
                painter.bar(
                    {outer.x() - x * length + (x == 1 ? width : 0), outer.y(), length, width});
            if (x != 0.5)
                painter.bar(
                    {outer.x(), outer.y() - y * length + (y == 1 ? width : 0), width, length});
        }
    }
}

} // namespace

bool CropTool::isActive() const
{
    return m_model.cropMode;
}

QString CropTool::description() const
{
    return QCoreApplication::translate("orvane::CIPreviewView",
                                       "Cropping. Drag the corners, or use the arrow keys to move "
                                       "and Option-arrows to resize.");
}

CGRect CropTool::shown() const
{
    return m_drag ? m_drag->crop : m_model.crop.value();
}

CropGeometry::Ratio CropTool::ratio(const CanvasView& view) const
{
    const CGSize frame = view.hasFrame() ? view.frame : view.size;
    return {CropRatio::pixelRatio(m_model.aspectId.value(), frame), frame};
}

QRegion CropTool::press(const CanvasPointer& pointer)
{
    // Also from just outside the picture, where the outer half of its handles is.
    const CGPoint held = pointer.held();
    if (std::abs(held.x - pointer.fraction.x) >= CropGeometry::reach
        || std::abs(held.y - pointer.fraction.y) >= CropGeometry::reach)
        return {};
    const CGRect crop = m_model.crop;
    m_drag = Drag{CropGeometry::grab(held, crop), crop, held, crop};
    return {};
}

QRegion CropTool::drag(const CanvasPointer& pointer)
{
    if (!m_drag)
        return {};
    const CGPoint held = pointer.held();
    const CGPoint by{held.x - m_drag->anchor.x, held.y - m_drag->anchor.y};
    const CGRect before = std::exchange(
        m_drag->crop, CropGeometry::resized(m_drag->origin, m_drag->grab, by, ratio(pointer.view)));
    return difference(before, m_drag->crop, pointer.view, m_model.cropGuide.value());
}

QRegion CropTool::release(const CanvasPointer&)
{
    if (m_drag) {
        const CGRect crop = m_drag->crop;
        m_drag.reset();
        m_model.setCropNative(crop);
    }
    return {};
}

QRegion CropTool::hover(const CanvasPointer& pointer)
{
    m_hovered = CropGeometry::grab(pointer.held(), m_model.crop);
    return {};
}

void CropTool::cancel()
{
    m_drag.reset();
}

bool CropTool::key(const QKeyEvent& event, const CanvasView& view)
{
    if (event.key() == Qt::Key_Escape) {
        m_model.cancelCrop();
        return true;
    }
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) {
        m_model.finishCrop();
        return true;
    }
    const double by = event.modifiers().testFlag(Qt::ShiftModifier) ? largeStep : step;
    CGPoint to;
    switch (event.key()) {
    case Qt::Key_Left:
        to = {-by, 0};
        break;
    case Qt::Key_Right:
        to = {by, 0};
        break;
    case Qt::Key_Up:
        to = {0, -by};
        break;
    case Qt::Key_Down:
        to = {0, by};
        break;
    default:
        return false;
    }
    const CGRect crop = m_model.crop;
    if (event.modifiers().testFlag(Qt::AltModifier))
        m_model.setCropNative(CropGeometry::grown(crop, to.x - to.y, ratio(view)));
    else
        m_model.setCropNative(CropGeometry::moved(crop, to));
    return true;
}

QCursor CropTool::cursor() const
{
    const CropGrab grab = m_drag ? m_drag->grab : m_hovered;
    switch (grab.kind) {
    case CropGrab::Kind::Corner:
        return grab.isMaxX == grab.isMaxY ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
    case CropGrab::Kind::EdgeX:
        return Qt::SizeHorCursor;
    case CropGrab::Kind::EdgeY:
        return Qt::SizeVerCursor;
    case CropGrab::Kind::Move:
        break;
    }
    return Qt::SizeAllCursor;
}

void CropTool::paint(OverlayPainter& painter) const
{
    const QRectF whole = painter.picture();
    const QRectF crop = onScreen(painter, shown());
    painter.fill({whole.topLeft(), QPointF(whole.right(), crop.top())}, shade);
    painter.fill({QPointF(whole.left(), crop.bottom()), whole.bottomRight()}, shade);
    painter.fill({QPointF(whole.left(), crop.top()), crop.bottomLeft()}, shade);
    painter.fill({crop.topRight(), QPointF(whole.right(), crop.bottom())}, shade);
    paintGuide(painter, crop);
    painter.frame(crop);
    paintHandles(painter, crop);
}

void CropTool::paintGuide(OverlayPainter& painter, const QRectF& crop) const
{
    const std::string& guide = m_model.cropGuide.value();
    if (guide == "diagonal") {
        QPainterPath path(crop.topLeft());
        path.lineTo(crop.bottomRight());
        path.moveTo(crop.topRight());
        path.lineTo(crop.bottomLeft());
        painter.path(path, OverlayPainter::Line::Faint);
        return;
    }
    std::vector<double> columns;
    std::vector<double> rows;
    for (const double division : divisions(guide)) {
        columns.push_back(crop.left() + crop.width() * division);
        rows.push_back(crop.top() + crop.height() * division);
    }
    painter.grid(crop, columns, rows);
}

} // namespace orvane
