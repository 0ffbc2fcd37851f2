#include "ModelSlider.h"

#include <utility>

namespace orvane {

ModelSlider::ModelSlider(AppModel& model, const QString& label, const Range& range, Binding binding,
                         const QString& unit, QWidget* parent)
    : SliderRow(label, range, unit, parent)
    , m_model(model)
    , m_binding(std::move(binding))
{
    connect(this, &SliderRow::valueChanged, this, [this](double value) { m_binding.write(value); });
    connect(this, &SliderRow::editingChanged, this,
            [this](bool isEditing) { isEditing ? beginEdit() : endEdit(); });
    refresh();
}

void ModelSlider::refresh()
{
    setValue(m_binding.read());
}

void ModelSlider::beginEdit()
{
    if (m_binding.pressed)
        m_binding.pressed();
    m_start = Start{m_model.activeImageID, m_model.history};
}

void ModelSlider::endEdit()
{
    const auto start = std::exchange(m_start, std::nullopt);
    // Another image may have come under the hand.
    if (!start || start->image != m_model.activeImageID.value()
        || start->history == m_model.history.value())
        return;
    // A rest of the hand makes steps of its own within the drag, and its first change may have
    // joined the step before it.
    m_model.history = start->history;
    m_model.commitHistory();
}

} // namespace orvane
