#include "PanelControls.h"

#include "DevicePixels.h"
#include "Icon.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace orvane {

namespace {

constexpr int pictureSize = 16;
constexpr int pictureGap = 7; ///< to the word
constexpr int sidePadding = 8;
constexpr int buttonHeight = 28;
constexpr int labelWidth = 84;
constexpr double switchWidth = 30;
constexpr double switchHeight = 16;

} // namespace

void drawIcon(QPainter& painter, const QIcon& icon, const QPointF& centre, int size,
              QIcon::Mode mode)
{
    const double scale = painter.device()->devicePixelRatioF();
    const QPixmap pixmap = icon.pixmap(QSize(size, size), scale, mode);
    const QSizeF shown = QSizeF(pixmap.size()) / scale;
    const QRectF place(centre - QPointF(shown.width(), shown.height()) / 2, shown);
    const QPointF corner = DevicePixels::aligned(painter, place).topLeft();
    painter.drawPixmap(QRectF(corner, shown), pixmap, QRectF(QPointF(), QSizeF(pixmap.size())));
}

PanelButton::PanelButton(std::string_view iconName, const QString& text, const QString& help,
                         QWidget* parent)
    : QPushButton(orvane::icon(iconName), text, parent)
{
    setAccessibleName(text);
    setToolTip(help);
    setAttribute(Qt::WA_Hover);
}

QSize PanelButton::sizeHint() const
{
    const int word = fontMetrics().horizontalAdvance(text());
    return {pictureSize + pictureGap + word + 2 * sidePadding, buttonHeight};
}

QSize PanelButton::minimumSizeHint() const
{
    return sizeHint();
}

void PanelButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isArmed = isCheckable() && isChecked();
    painter.setPen(QPen(hasFocus() || isArmed ? Theme::accent : Theme::border, 1));
    if (isDown())
        painter.setBrush(Theme::section);
    else
        painter.setBrush(isEnabled() && (underMouse() || isArmed) ? Theme::hover : Theme::raised);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radius,
                            Theme::radius);

    const double word = fontMetrics().horizontalAdvance(text());
    const double left = (width() - pictureSize - pictureGap - word) / 2;
    drawIcon(painter, icon(), {left + pictureSize / 2.0, height() / 2.0}, pictureSize,
             isEnabled() ? QIcon::Normal : QIcon::Disabled);
    painter.setPen(isEnabled() ? Theme::text : Theme::disabledText);
    painter.drawText(QRectF(left + pictureSize + pictureGap, 0, word + 2, height()),
                     Qt::AlignVCenter | Qt::AlignLeft, text());
}

GlyphButton::GlyphButton(const QIcon& icon, const QString& help, QWidget* parent)
    : QAbstractButton(parent)
{
    setIcon(icon);
    setHelp(help);
    setFixedSize(sizeHint());
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void GlyphButton::setHelp(const QString& help)
{
    if (help == toolTip())
        return;
    setToolTip(help);
    setAccessibleName(help);
}

void GlyphButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(hasFocus() ? QPen(Theme::accent, 1) : QPen(Qt::NoPen));
    if (isEnabled() && (underMouse() || isDown()))
        painter.setBrush(isDown() ? Theme::section : Theme::hover);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    drawIcon(painter, icon(), QRectF(rect()).center(), pictureSize,
             isEnabled() ? QIcon::Normal : QIcon::Disabled);
}

Toggle::Toggle(const QString& text, const QString& help, QWidget* parent)
    : QCheckBox(text, parent)
{
    setAccessibleName(text);
    setToolTip(help);
    setFixedHeight(sizeHint().height());
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

bool Toggle::hitButton(const QPoint& point) const
{
    return rect().contains(point);
}

void Toggle::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(isEnabled() ? Theme::text : Theme::disabledText);
    painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft, text());

    const QRectF track(width() - switchWidth - 1, (height() - switchHeight) / 2, switchWidth,
                       switchHeight);
    painter.setPen(hasFocus() ? QPen(Theme::accent, 2) : QPen(Theme::border, 1));
    const QColor on(0x8a, 0x8a, 0x8a);
    painter.setBrush(!isChecked() ? Theme::field : underMouse() ? on.lighter(115) : on);
    painter.drawRoundedRect(track, switchHeight / 2, switchHeight / 2);

    const double inset = switchHeight / 2;
    const QPointF knob(isChecked() ? track.right() - inset : track.left() + inset,
                       track.center().y());
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? QColor(0xec, 0xec, 0xec) : Theme::secondaryText);
    painter.drawEllipse(knob, inset - 3, inset - 3);
}

QLabel* rowLabel(const QString& text)
{
    auto* label = new QLabel(text);
    label->setFixedWidth(labelWidth);
    return label;
}

QHBoxLayout* labelledRow(const QString& label)
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(rowLabel(label));
    return row;
}

QHBoxLayout* buttonRow(std::initializer_list<QWidget*> buttons)
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    for (QWidget* button : buttons)
        row->addWidget(button, 1);
    return row;
}

QLabel* captionLabel(const QString& text)
{
    auto* label = new QLabel(text);
    Theme::makeSecondary(*label);
    return label;
}

} // namespace orvane
