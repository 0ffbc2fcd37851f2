#include "ColorFields.h"

#include "DevicePixels.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr double ring = 6; ///< radius of the mark
constexpr double margin = ring + 1; ///< so that the mark is whole at the edges
constexpr double coarseStep = 0.05;
constexpr double fineStep = 0.01;
constexpr int degrees = 359; ///< the last one: 360 would be the first again

/// A white ring in a dark one, to be seen on every colour.
void drawMark(QPainter& painter, const QPointF& centre, const QColor& color)
{
    painter.setPen(QPen(QColor(0, 0, 0, 150), 1));
    painter.setBrush(color);
    painter.drawEllipse(centre, ring, ring);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0xec, 0xec, 0xec), 2));
    painter.drawEllipse(centre, ring - 1.5, ring - 1.5);
}

void drawFocus(QPainter& painter, const QRectF& around)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::accent, 1));
    painter.drawRoundedRect(around.adjusted(-1.5, -1.5, 1.5, 1.5), Theme::radius, Theme::radius);
}

QColor pureHue(double hue)
{
    return QColor::fromHsvF(float(std::min(hue, 1.0)), 1, 1);
}

} // namespace

QColor HsvColor::color() const
{
    return QColor(QColor::fromHsvF(float(hue), float(saturation), float(brightness)).rgb());
}

void HsvColor::take(const QColor& taken)
{
    // What is shown already, rounded to bytes on its way through a record, moves nothing.
    if (taken.rgb() == color().rgb())
        return;
    const QColor hsv = taken.toHsv();
    brightness = double(hsv.valueF());
    if (brightness > 0)
        saturation = double(hsv.hsvSaturationF());
    if (hsv.hueF() >= 0 && saturation > 0)
        hue = double(hsv.hueF());
}

ShadeField::ShadeField(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Saturation and brightness"));
    setCursor(Qt::CrossCursor);
    setMinimumSize(120, 90);
    describe();
}

void ShadeField::show(const HsvColor& color)
{
    m_color = color;
    describe();
    update();
}

void ShadeField::describe()
{
    setAccessibleDescription(tr("Saturation %1 %, brightness %2 %")
                                 .arg(std::lround(m_color.saturation * 100))
                                 .arg(std::lround(m_color.brightness * 100)));
}

QRectF ShadeField::field() const
{
    return QRectF(rect()).adjusted(margin, margin, -margin, -margin);
}

void ShadeField::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = DevicePixels::aligned(painter, field());
    QLinearGradient across(area.topLeft(), area.topRight());
    across.setColorAt(0, Qt::white);
    across.setColorAt(1, pureHue(m_color.hue));
    QLinearGradient down(area.topLeft(), area.bottomLeft());
    down.setColorAt(0, QColor(0, 0, 0, 0));
    down.setColorAt(1, Qt::black);
    painter.setPen(Qt::NoPen);
    for (const QLinearGradient& shade : {across, down}) {
        painter.setBrush(shade);
        painter.drawRoundedRect(area, 3, 3);
    }
    if (hasFocus())
        drawFocus(painter, area);
    drawMark(painter,
             {area.left() + m_color.saturation * area.width(),
              area.bottom() - m_color.brightness * area.height()},
             m_color.color());
}

void ShadeField::moveTo(const QPointF& point)
{
    const QRectF area = field();
    moveBy((point.x() - area.left()) / area.width() - m_color.saturation,
           (area.bottom() - point.y()) / area.height() - m_color.brightness);
}

void ShadeField::moveBy(double saturation, double brightness)
{
    m_color.saturation = std::clamp(m_color.saturation + saturation, 0.0, 1.0);
    m_color.brightness = std::clamp(m_color.brightness + brightness, 0.0, 1.0);
    describe();
    update();
    Q_EMIT moved(m_color.saturation, m_color.brightness);
}

void ShadeField::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        moveTo(event->position());
}

void ShadeField::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        moveTo(event->position());
}

void ShadeField::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT released();
}

void ShadeField::keyPressEvent(QKeyEvent* event)
{
    const double step = event->modifiers() & Qt::ShiftModifier ? fineStep : coarseStep;
    switch (event->key()) {
    case Qt::Key_Left:
        return moveBy(-step, 0);
    case Qt::Key_Right:
        return moveBy(step, 0);
    case Qt::Key_Down:
        return moveBy(0, -step);
    case Qt::Key_Up:
        return moveBy(0, step);
    default:
        QWidget::keyPressEvent(event);
    }
}

HueBar::HueBar(QWidget* parent)
    : QAbstractSlider(parent)
{
    setOrientation(Qt::Horizontal);
    setRange(0, degrees);
    setPageStep(30);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Hue"));
    setFixedHeight(int(2 * margin) + 2);
}

void HueBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar =
        DevicePixels::aligned(painter, QRectF(rect()).adjusted(margin, 4, -margin, -4));
    QLinearGradient hues(bar.topLeft(), bar.topRight());
    for (int sixth = 0; sixth <= 6; ++sixth)
        hues.setColorAt(sixth / 6.0, pureHue(sixth % 6 / 6.0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(hues);
    painter.drawRoundedRect(bar, bar.height() / 2, bar.height() / 2);
    if (hasFocus())
        drawFocus(painter, bar);
    const double fraction = double(value()) / degrees;
    drawMark(painter, {bar.left() + fraction * bar.width(), bar.center().y()}, pureHue(fraction));
}

void HueBar::moveTo(double x)
{
    const double fraction = (x - margin) / (width() - 2 * margin);
    setValue(int(std::lround(fraction * degrees)));
}

void HueBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setSliderDown(true);
    moveTo(event->position().x());
}

void HueBar::mouseMoveEvent(QMouseEvent* event)
{
    if (isSliderDown())
        moveTo(event->position().x());
}

void HueBar::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        setSliderDown(false);
}

void HueBar::keyPressEvent(QKeyEvent* event)
{
    setSingleStep(event->modifiers() & Qt::ShiftModifier ? 1 : 5);
    QAbstractSlider::keyPressEvent(event);
}

} // namespace orvane
