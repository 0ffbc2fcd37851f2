#include "WhiteTool.h"

#include "AppModel.h"
#include "Icon.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>

namespace orvane {

namespace {

constexpr int cursorSize = 26; ///< view points
/// Where the icon's tip is, as a fraction of its side from the left and from the bottom.
constexpr double tip = 2.0 / 24;

/// A pipette, light with a dark rim.
QCursor pipetteCursor()
{
    const double ratio = qGuiApp->devicePixelRatio();
    QPixmap drawn(QSize(cursorSize, cursorSize) * ratio);
    drawn.setDevicePixelRatio(ratio);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    const QRect place(1, 1, cursorSize - 2, cursorSize - 2);
    const QIcon dark = icon("pipette", QColor(0x1b, 0x1b, 0x1b));
    for (const QPoint& offset : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)})
        dark.paint(&painter, place.translated(offset));
    icon("pipette", QColor(0xf2, 0xf2, 0xf2)).paint(&painter, place);
    painter.end();
    const int across = int(tip * place.width());
    return QCursor(drawn, place.left() + across, place.bottom() - across);
}

} // namespace

bool WhiteTool::isActive() const
{
    return m_model.pickingWhite;
}

QString WhiteTool::description() const
{
    return QCoreApplication::translate(
        "orvane::CIPreviewView", "White balance eyedropper. Click something that should be grey.");
}

QRegion WhiteTool::press(const CanvasPointer& pointer)
{
    m_press = pointer.isInside() ? std::optional(pointer.fraction) : std::nullopt;
    return {};
}

QRegion WhiteTool::release(const CanvasPointer&)
{
    if (const auto at = std::exchange(m_press, {}))
        m_model.pickWhiteNative(at->x, at->y);
    return {};
}

QRegion WhiteTool::hover(const CanvasPointer& pointer)
{
    m_isInside = pointer.isInside();
    return {};
}

void WhiteTool::cancel()
{
    m_press.reset();
    m_isInside = false;
}

bool WhiteTool::key(const QKeyEvent& event, const CanvasView&)
{
    if (event.key() != Qt::Key_Escape)
        return false;
    m_model.pickWhiteBalance();
    return true;
}

QCursor WhiteTool::cursor() const
{
    if (!m_isInside)
        return Qt::ArrowCursor;
    static const QCursor pipette = pipetteCursor();
    return pipette;
}

} // namespace orvane
