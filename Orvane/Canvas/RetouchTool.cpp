#include "RetouchTool.h"

#include "AppModel.h"
#include "OverlayPainter.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace orvane {

namespace {

/// Of the radius: the way from one spot to the next.
constexpr double spotSpacing = 0.5;

} // namespace

bool RetouchTool::isActive() const
{
    return m_model.healing;
}

QString RetouchTool::description() const
{
    return QCoreApplication::translate("orvane::CIPreviewView",
                                       "Retouch brush. Drag over a blemish to heal it.");
}

double RetouchTool::radius() const
{
    return m_model.healSize / 100;
}

QRegion RetouchTool::press(const CanvasPointer& pointer)
{
    return m_brush.begin(pointer, radius(), radius() * spotSpacing);
}

QRegion RetouchTool::drag(const CanvasPointer& pointer)
{
    return m_brush.draw(pointer, radius(), radius() * spotSpacing);
}

QRegion RetouchTool::release(const CanvasPointer&)
{
    m_model.healStrokeNative(m_brush.end());
    return {};
}

QRegion RetouchTool::hover(const CanvasPointer& pointer)
{
    return m_brush.hover(pointer, radius());
}

bool RetouchTool::key(const QKeyEvent& event, const CanvasView&)
{
    if (event.key() != Qt::Key_Escape)
        return false;
    m_model.toggleHeal();
    return true;
}

void RetouchTool::paint(OverlayPainter& painter) const
{
    m_brush.paint(painter, radius());
}

} // namespace orvane
