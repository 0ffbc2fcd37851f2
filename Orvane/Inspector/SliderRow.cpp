#include "SliderRow.h"

#include "Theme.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr int rowHeight = 26;
constexpr int labelWidth = 84;
constexpr int fieldWidth = 52;
constexpr int trackHeight = 3;
constexpr int knobSize = 12;
constexpr int knobReach = 24; ///< what counts as on the knob, across

int tenths(double number)
{
    return int(std::lround(number * 10));
}

} // namespace

DoubleClickSlider::DoubleClickSlider(double minimum, double maximum, double origin, QWidget* parent)
    : QSlider(Qt::Horizontal, parent)
    , m_origin(tenths(origin))
{
    setRange(tenths(minimum), tenths(maximum));
    setSingleStep(10);
    setPageStep(100);
    setValue(m_origin);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void DoubleClickSlider::setNumber(double number)
{
    setValue(tenths(number));
}

QSize DoubleClickSlider::sizeHint() const
{
    return {120, rowHeight};
}

double DoubleClickSlider::centreOf(int value) const
{
    const double length = width() - knobSize;
    return knobSize / 2.0 + length * (value - minimum()) / (maximum() - minimum());
}

int DoubleClickSlider::valueAt(double x) const
{
    const double fraction = (x - knobSize / 2.0) / (width() - knobSize);
    // The mouse moves in whole units: its tenths would only be noise.
    const double units = std::round((minimum() + fraction * (maximum() - minimum())) / 10);
    return std::clamp(int(units) * 10, minimum(), maximum());
}

//   ────────────┬═══════●──────────     filled from the rest value to the knob
void DoubleClickSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double middle = height() / 2.0;
    const QRectF track(knobSize / 2.0, middle - trackHeight / 2.0, width() - knobSize, trackHeight);
    painter.setBrush(Theme::border);
    painter.drawRoundedRect(track, 1.5, 1.5);

    const double from = centreOf(m_origin);
    const double knob = knobCentre();
    painter.setBrush(isEnabled() ? QColor(0x84, 0x84, 0x84) : Theme::raised);
    painter.drawRect(QRectF(std::min(from, knob), track.top(), std::abs(knob - from), trackHeight));

    const QColor resting = isEnabled() ? QColor(0xb4, 0xb4, 0xb4) : Theme::disabledText;
    painter.setBrush(isEnabled() && (underMouse() || isSliderDown()) ? Theme::text : resting);
    if (hasFocus())
        painter.setPen(QPen(Theme::accent, 2));
    const double radius = knobSize / 2.0 - (hasFocus() ? 1 : 0);
    painter.drawEllipse(QPointF(knob, middle), radius, radius);
}

void DoubleClickSlider::keyPressEvent(QKeyEvent* event)
{
    setSingleStep(event->modifiers() & Qt::ShiftModifier ? 1 : 10);
    QSlider::keyPressEvent(event);
}

void DoubleClickSlider::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QSlider::wheelEvent(event);
    else
        event->ignore();
}

void DoubleClickSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const double offset = event->position().x() - knobCentre();
    m_grab = std::abs(offset) <= knobReach / 2.0 ? offset : 0;
    setSliderDown(true);
    if (m_grab == 0)
        setValue(valueAt(event->position().x()));
}

void DoubleClickSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (isSliderDown())
        setValue(valueAt(event->position().x() - m_grab));
}

void DoubleClickSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        setSliderDown(false);
}

void DoubleClickSlider::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT resetAsked();
}

SliderRow::SliderRow(const QString& label, const Range& range, QWidget* parent)
    : QWidget(parent)
    , m_range(range)
    , m_value(range.rest)
    , m_label(new QLabel(label))
    , m_slider(new DoubleClickSlider(range.minimum, range.maximum, range.rest))
    , m_field(new QLineEdit)
{
    m_label->setFixedWidth(labelWidth);
    m_slider->setAccessibleName(label);
    m_field->setAccessibleName(label);
    m_field->setFixedSize(fieldWidth, 22);
    m_field->setAlignment(Qt::AlignRight);
    if (range.resets)
        setToolTip(tr("%1 — double-click the knob to reset").arg(label));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_label);
    row->addWidget(m_slider, 1);
    row->addWidget(m_field);
    setFixedHeight(rowHeight);
    showNumber();

    connect(m_slider, &QSlider::valueChanged, this, [this] {
        // A typed number keeps its digits; the knob stands at the nearest tenth.
        if (tenths(m_value) != m_slider->value())
            setValue(m_slider->number());
    });
    if (range.resets)
        connect(m_slider, &DoubleClickSlider::resetAsked, this, [this] { setValue(m_range.rest); });
    connect(m_field, &QLineEdit::editingFinished, this, &SliderRow::takeTyped);
}

void SliderRow::hideLabel()
{
    m_label->hide();
}

void SliderRow::setValue(double value)
{
    const double held = std::clamp(value, m_range.minimum, m_range.maximum);
    const bool changes = held != m_value;
    m_value = held;
    m_slider->setNumber(held);
    showNumber();
    if (changes)
        Q_EMIT valueChanged(held);
}

void SliderRow::takeTyped()
{
    if (!m_field->isModified())
        return;
    bool isNumber = false;
    const double typed = m_field->text().trimmed().replace(',', '.').toDouble(&isNumber);
    if (isNumber && std::isfinite(typed))
        setValue(typed);
    else
        showNumber();
}

void SliderRow::showNumber()
{
    m_field->setText(QString::number(std::lround(m_value)));
}

} // namespace orvane
