#include "Popover.h"

#include "Theme.h"

#include <QPainter>
#include <QScreen>

#include <algorithm>

namespace orvane {

namespace {

constexpr int gap = 4; ///< to the control
constexpr double cornerRadius = 7;
constexpr QColor rim(0x4a, 0x4a, 0x4a);

} // namespace

Popover::Popover(const QString& name, QWidget* parent)
    : QFrame(parent, Qt::Popup | Qt::FramelessWindowHint)
{
    setAttribute(Qt::WA_NoMouseReplay);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground);
    setAccessibleName(name);
}

void Popover::openBeside(const QWidget& anchor, QWidget& first)
{
    adjustSize();
    const QRect room = anchor.screen()->availableGeometry();
    const QPoint corner = anchor.mapToGlobal(anchor.rect().bottomRight());
    const int left = std::clamp(corner.x() + 1 - width(), room.left(),
                                std::max(room.left(), room.right() + 1 - width()));
    const int above = anchor.mapToGlobal(QPoint(0, 0)).y() - gap - height();
    const bool fits = corner.y() + gap + height() <= room.bottom() || above < room.top();
    move(left, fits ? corner.y() + gap : above);
    show();
    first.setFocus(Qt::PopupFocusReason);
}

void Popover::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(rim, 1));
    painter.setBrush(Theme::section);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                            cornerRadius);
}

} // namespace orvane
