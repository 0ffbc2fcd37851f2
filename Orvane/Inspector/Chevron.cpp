#include "Chevron.h"

#include "Theme.h"

#include <QPainter>

namespace orvane {

void drawChevron(QPainter& painter, const QPointF& centre, double degrees, const QColor& color)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(centre);
    painter.rotate(degrees);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF wings[] = {{-2, -4}, {2, 0}, {-2, 4}};
    painter.drawPolyline(wings, 3);
    painter.restore();
}

ChevronButton::ChevronButton(Direction direction, const QString& help, QWidget* parent)
    : QAbstractButton(parent)
    , m_direction(direction)
{
    setFixedSize(sizeHint());
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setToolTip(help);
    setAccessibleName(help);
}

void ChevronButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ground = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(hasFocus() ? QPen(Theme::accent, 1) : QPen(Qt::NoPen));
    if (isEnabled() && (underMouse() || isDown()))
        painter.setBrush(isDown() ? Theme::hover : Theme::raised);
    painter.drawRoundedRect(ground, 4, 4);
    drawChevron(painter, QRectF(rect()).center(), m_direction == Direction::Left ? 180 : 0,
                isEnabled() ? Theme::text : Theme::disabledText);
}

} // namespace orvane
