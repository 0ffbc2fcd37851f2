#pragma once

#include "DoubleClickSlider.h"
#include "ValueField.h"

#include <QWidget>

class QLabel;

namespace orvane {

/// A row of a panel: label, slider, and the value as a field that takes a typed number.
///
///   Exposure      ─────────●────      40
class SliderRow : public QWidget {
    Q_OBJECT

public:
    using Range = SliderRange;
    /// The unit follows the shown number at once, as in "3°".
    SliderRow(const QString& label, const Range& range, const QString& unit = {},
              QWidget* parent = nullptr);

    double value() const { return m_slider->number(); }
    /// Held to the range. Tells nothing.
    void setValue(double value);
    /// For a form that has labels of its own.
    void hideLabel();
    /// What a screen reader says of slider and field, in the label's place.
    void setSpokenName(const QString& name);
    DoubleClickSlider& slider() { return *m_slider; }
    ValueField& field() { return *m_field; }

Q_SIGNALS:
    /// By the user: the slider, its keys and wheel, the field, a reset.
    void valueChanged(double value);
    /// An edit of several changes starts or ends: a drag from press to release, and round each
    /// typed number and reset. Steps by key and wheel stand outside.
    void editingChanged(bool isEditing);

private:
    void takeAtOnce(double value);

    QLabel* m_label;
    DoubleClickSlider* m_slider;
    ValueField* m_field;
};

} // namespace orvane
