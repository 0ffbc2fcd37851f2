#include "ModelSlider.h"

#include <utility>

namespace orvane {

ModelSlider::ModelSlider(AppModel& model, const QString& label, const Range& range, Binding binding,
                         const QString& unit, QWidget* parent)
    : SliderRow(label, range, unit, parent)
    , m_binding(std::move(binding))
    , m_step(model)
{
    connect(this, &SliderRow::valueChanged, this,
            [this](double value) { m_step.take([&] { m_binding.write(value); }); });
    connect(this, &SliderRow::editingChanged, this, [this](bool isEditing) {
        if (!isEditing)
            return m_step.end();
        if (m_binding.pressed)
            m_binding.pressed();
        m_step.begin();
    });
    refresh();
}

void ModelSlider::refresh()
{
    setValue(m_binding.read());
}

} // namespace orvane
