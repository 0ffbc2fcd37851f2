#include "RelightTool.h"

#include "AppModel.h"
#include "LightLooks.h"
#include "OverlayPainter.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

using LightGeometry::Grab;

/// Of the radius: the way from one point of a stroke to the next.
constexpr double brushSpacing = 0.4;
constexpr double step = 0.005;
constexpr double largeStep = 0.02;

/// The arrows that point away from a centre and back to it.
Qt::CursorShape awayFrom(const CGPoint& offset)
{
    const double x = std::abs(offset.x);
    const double y = std::abs(offset.y);
    if (x > 2.4 * y)
        return Qt::SizeHorCursor;
    if (y > 2.4 * x)
        return Qt::SizeVerCursor;
    return (offset.x > 0) == (offset.y > 0) ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

} // namespace

bool RelightTool::isActive() const
{
    return m_model.relightMode;
}

QString RelightTool::description() const
{
    const auto& lights = m_model.lights.value();
    const bool hasMovable = std::any_of(lights.begin(), lights.end(), [](const Light& light) {
        return !LightGeometry::isBrush(light);
    });
    return hasMovable ? QCoreApplication::translate(
               "orvane::CIPreviewView",
               "Relighting. Drag a light to move it, or use Position X and Y in the "
               "Relight section.")
                      : QCoreApplication::translate(
                          "orvane::CIPreviewView", "Relighting. Click the image to place a light.");
}

/// Null when the pointer does not paint.
const EditState::Light* RelightTool::selectedBrush() const
{
    const Light* const light =
        LightGeometry::find(m_model.lights.value(), m_model.selectedLightID.value());
    return light && LightGeometry::isBrush(*light) ? light : nullptr;
}

QRegion RelightTool::press(const CanvasPointer& pointer)
{
    if (const Light* const brush = selectedBrush())
        return m_brush.begin(pointer, brush->radius, brush->radius * brushSpacing);
    if (!pointer.isInside())
        return {};
    const auto& lights = m_model.lights.value();
    Drag drag{LightGeometry::grab(pointer.fraction, lights, pointer.view.frame), pointer.fraction};
    if (const Light* const held = LightGeometry::find(lights, drag.grab.id)) {
        drag.light = *held;
        m_model.selectLight(drag.grab.id);
    }
    m_drag = std::move(drag);
    return {};
}

/// Where the pointer has brought the light. A centre that was not hit exactly keeps its distance
/// from the pointer, so that a click moves nothing.
void RelightTool::hold(Drag& drag, const CanvasPointer& pointer) const
{
    const Light* const before = LightGeometry::find(m_model.lights.value(), drag.grab.id);
    if (!before)
        return;
    if (drag.grab.kind == Grab::Kind::Ring) {
        drag.light.radius =
            LightGeometry::radius({before->x, before->y}, pointer.fraction, pointer.view.frame);
        return;
    }
    const CGPoint held = pointer.held();
    drag.light.x = std::clamp(before->x + held.x - drag.start.x, 0.0, 1.0);
    drag.light.y = std::clamp(before->y + held.y - drag.start.y, 0.0, 1.0);
}

QRegion RelightTool::drag(const CanvasPointer& pointer)
{
    if (const Light* const brush = selectedBrush(); brush && m_brush.isDrawing())
        return m_brush.draw(pointer, brush->radius, brush->radius * brushSpacing);
    if (!m_drag)
        return {};
    m_drag->moved =
        std::max(m_drag->moved,
                 LightGeometry::distance(m_drag->start, pointer.fraction, pointer.view.frame));
    if (m_drag->grab.kind == Grab::Kind::Nothing || m_drag->moved <= LightGeometry::smallestMove)
        return {};
    const QRegion before = LightLooks::footprint(m_drag->light, pointer.view);
    hold(*m_drag, pointer);
    return before + LightLooks::footprint(m_drag->light, pointer.view);
}

QRegion RelightTool::release(const CanvasPointer& pointer)
{
    if (m_brush.isDrawing()) {
        m_model.appendStroke(m_model.selectedLightID.value(), m_brush.end());
        return {};
    }
    if (!m_drag)
        return {};
    drag(pointer);
    const Drag done = *std::exchange(m_drag, {});
    const bool counts = done.moved > LightGeometry::smallestMove;
    if (done.grab.kind == Grab::Kind::Centre && counts) {
        m_model.updateLight(done.grab.id, "x", done.light.x);
        m_model.updateLight(done.grab.id, "y", done.light.y);
    } else if (done.grab.kind == Grab::Kind::Ring && counts) {
        m_model.updateLight(done.grab.id, "radius", done.light.radius);
    } else if (done.grab.kind == Grab::Kind::Nothing && done.moved < LightGeometry::clickDistance) {
        m_model.addLightAt("radial", done.start.x, done.start.y);
    }
    return {};
}

QRegion RelightTool::hover(const CanvasPointer& pointer)
{
    if (const Light* const brush = selectedBrush())
        return m_brush.hover(pointer, brush->radius);
    m_brush.cancel();
    const auto& lights = m_model.lights.value();
    m_hovered = LightGeometry::grab(pointer.fraction, lights, pointer.view.frame);
    m_fromCentre.reset();
    if (const Light* const light = LightGeometry::find(lights, m_hovered.id))
        m_fromCentre = {(pointer.fraction.x - light->x) * pointer.view.frame.width,
                        (pointer.fraction.y - light->y) * pointer.view.frame.height};
    return {};
}

void RelightTool::cancel()
{
    m_brush.cancel();
    m_drag.reset();
    m_hovered = {};
}

bool RelightTool::key(const QKeyEvent& event, const CanvasView&)
{
    const double by = event.modifiers().testFlag(Qt::ShiftModifier) ? largeStep : step;
    switch (event.key()) {
    case Qt::Key_Escape:
        m_model.cancelRelight();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        m_model.exitRelight();
        return true;
    case Qt::Key_Left:
        return moveSelected({-by, 0});
    case Qt::Key_Right:
        return moveSelected({by, 0});
    case Qt::Key_Up:
        return moveSelected({0, -by});
    case Qt::Key_Down:
        return moveSelected({0, by});
    default:
        return false;
    }
}

bool RelightTool::moveSelected(const CGPoint& by)
{
    const std::string id = m_model.selectedLightID;
    const Light* const light = LightGeometry::find(m_model.lights.value(), id);
    if (!light || LightGeometry::isBrush(*light))
        return false;
    const CGPoint to{std::clamp(light->x + by.x, 0.0, 1.0), std::clamp(light->y + by.y, 0.0, 1.0)};
    m_model.updateLight(id, "x", to.x);
    m_model.updateLight(id, "y", to.y);
    return true;
}

void RelightTool::paint(OverlayPainter& painter) const
{
    const std::string& selected = m_model.selectedLightID.value();
    for (const Light& light : m_model.lights.value()) {
        if (LightGeometry::isBrush(light))
            continue;
        const bool isHeld = m_drag && m_drag->grab.id == light.id;
        LightLooks::paint(painter, isHeld ? m_drag->light : light, light.id == selected);
    }
    if (const Light* const brush = selectedBrush())
        m_brush.paint(painter, brush->radius,
                      brush->mode == "erase" ? BrushRing::Mark::Minus : BrushRing::Mark::None);
}

QCursor RelightTool::cursor() const
{
    if (selectedBrush())
        return m_brush.cursor();
    switch (m_drag ? m_drag->grab.kind : m_hovered.kind) {
    case Grab::Kind::Centre:
        return m_drag ? Qt::ClosedHandCursor : Qt::OpenHandCursor;
    case Grab::Kind::Ring:
        return awayFrom(m_fromCentre.value_or(CGPoint{1, 0}));
    case Grab::Kind::Nothing:
        break;
    }
    return Qt::CrossCursor;
}

} // namespace orvane
