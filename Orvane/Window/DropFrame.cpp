#include "DropFrame.h"

#include "DevicePixels.h"
#include "Theme.h"

#include <QEvent>
#include <QPainterPath>

namespace orvane {

namespace {

constexpr int inset = 6; ///< from the column's edge
constexpr int thickness = 2;

} // namespace

DropFrame::DropFrame(QWidget* column)
    : QWidget(column)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    column->installEventFilter(this);
}

void DropFrame::setDropTargeted(bool isTargeted)
{
    if (isTargeted) {
        setGeometry(parentWidget()->rect());
        raise();
    }
    setVisible(isTargeted);
}

bool DropFrame::eventFilter(QObject* column, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(column, event);
}

void DropFrame::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outer = QRectF(rect()).marginsRemoved({inset, inset, inset, inset});
    const QRectF inner = outer.marginsRemoved({thickness, thickness, thickness, thickness});
    QPainterPath frame;
    frame.addRoundedRect(DevicePixels::aligned(painter, outer), Theme::radius, Theme::radius);
    frame.addRoundedRect(DevicePixels::aligned(painter, inner), Theme::radius - thickness,
                         Theme::radius - thickness);
    painter.fillPath(frame, Theme::accent);
}

} // namespace orvane
