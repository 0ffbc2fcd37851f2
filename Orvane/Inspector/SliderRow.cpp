#include "SliderRow.h"

#include "PanelControls.h"

#include <QHBoxLayout>
#include <QLabel>

namespace orvane {

namespace {

constexpr int rowHeight = 26;
constexpr int fieldWidth = 52;

} // namespace

SliderRow::SliderRow(const QString& label, const Range& range, const QString& unit, QWidget* parent)
    : QWidget(parent)
    , m_label(rowLabel(label))
    , m_slider(new DoubleClickSlider(range))
    , m_field(new ValueField(unit))
{
    m_field->setFixedSize(fieldWidth, 22);
    m_field->setNumber(value());
    setSpokenName(label);
    if (range.resets)
        setToolTip(tr("%1 — double-click the knob to reset").arg(label));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    row->addWidget(m_label);
    row->addWidget(m_slider, 1);
    row->addWidget(m_field);
    setFixedHeight(rowHeight);

    connect(m_slider, &DoubleClickSlider::pressChanged, this, &SliderRow::editingChanged);
    connect(m_slider, &DoubleClickSlider::numberChanged, this, [this](double number) {
        m_field->setNumber(number);
        Q_EMIT valueChanged(number);
    });
    if (range.resets) {
        connect(m_slider, &DoubleClickSlider::resetAsked, this,
                [this] { takeAtOnce(m_slider->range().rest); });
    }
    connect(m_field, &ValueField::numberTyped, this, &SliderRow::takeAtOnce);
}

void SliderRow::hideLabel()
{
    m_label->hide();
}

void SliderRow::setSpokenName(const QString& name)
{
    m_slider->setAccessibleName(name);
    m_field->setAccessibleName(name);
}

void SliderRow::setValue(double value)
{
    m_slider->setNumber(value);
    m_field->setNumber(m_slider->number());
}

void SliderRow::takeAtOnce(double value)
{
    Q_EMIT editingChanged(true);
    m_slider->moveTo(value);
    Q_EMIT editingChanged(false);
}

} // namespace orvane
