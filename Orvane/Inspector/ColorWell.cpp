#include "ColorWell.h"

#include "ColorPopover.h"
#include "HexColor.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QPainter>

namespace orvane {

ColorWell::ColorWell(const QString& name, QWidget* parent)
    : QAbstractButton(parent)
{
    setAccessibleName(name);
    setAccessibleDescription(m_color.name());
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setFixedSize(sizeHint());
    connect(this, &QAbstractButton::clicked, this, &ColorWell::open);
}

ColorWell::~ColorWell()
{
    delete m_popover;
}

void ColorWell::setColor(const QColor& color)
{
    const QColor opaque(color.rgb());
    if (opaque == m_color)
        return;
    m_color = opaque;
    setAccessibleDescription(m_color.name());
    if (m_popover)
        m_popover->setColor(m_color);
    update();
}

void ColorWell::setHex(const std::string& hex)
{
    const CIColor stored = colorFromHex(hex);
    setColor(QColor::fromRgbF(float(stored.red), float(stored.green), float(stored.blue)));
}

void ColorWell::open()
{
    if (m_popover)
        return;
    m_popover = new ColorPopover(accessibleName(), m_color, this);
    connect(m_popover, &ColorPopover::colorPicked, this, [this](const QColor& color) {
        setColor(color);
        Q_EMIT colorPicked(color);
    });
    connect(m_popover, &ColorPopover::pickEnded, this, &ColorWell::pickEnded);
    m_popover->openBeside(*this);
}

void ColorWell::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void ColorWell::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor rim = underMouse() ? QColor(0x80, 0x80, 0x80) : QColor(0x5e, 0x5e, 0x5e);
    painter.setPen(QPen(hasFocus() ? Theme::accent : rim, hasFocus() ? 2 : 1));
    painter.setBrush(Theme::field);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), Theme::radius, Theme::radius);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isEnabled() ? m_color : Theme::raised);
    painter.drawRoundedRect(QRectF(rect()).adjusted(4, 4, -4, -4), 2.5, 2.5);
}

} // namespace orvane
