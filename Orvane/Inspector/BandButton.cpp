#include "BandButton.h"

#include "Theme.h"

#include <QPainter>

namespace orvane {

BandButton::BandButton(const QString& name, const QColor& color, QWidget* parent)
    : QAbstractButton(parent)
    , m_color(color)
{
    setAccessibleName(name);
    setToolTip(name);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setFixedHeight(sizeHint().height());
    setMinimumWidth(sizeHint().width());
}

void BandButton::setEdited(bool edited)
{
    if (edited == m_isEdited)
        return;
    m_isEdited = edited;
    setAccessibleDescription(edited ? tr("Edited") : QString());
    update();
}

void BandButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre(width() / 2.0, sizeHint().width() / 2.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(underMouse() ? m_color.lighter(115) : m_color);
    painter.drawEllipse(centre, 8, 8);
    if (isChecked() || hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(hasFocus() ? Theme::accent : Theme::text, 2));
        painter.drawEllipse(centre, 11, 11);
    }
    if (m_isEdited) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::text);
        painter.drawEllipse(QPointF(centre.x(), height() - 4), 2, 2);
    }
}

} // namespace orvane
