#pragma once

#include "OneStep.h"
#include "SliderRow.h"

#include <functional>

namespace orvane {

/// A slider row that is tied to a value of the model. Whatever history the writing keeps: one drag,
/// one typed number, one reset, and one burst of keys or of the wheel each leave one step behind.
class ModelSlider final : public SliderRow {
    Q_OBJECT

public:
    struct Binding {
        std::function<double()> read; ///< as shown
        std::function<void(double)> write; ///< an operation of the model, history and all
        std::function<void()> pressed = {}; ///< before the first change of a drag
    };
    ModelSlider(AppModel& model, const QString& label, const Range& range, Binding binding,
                const QString& unit = {}, QWidget* parent = nullptr);

    /// Shows what the model holds; what is shown already costs nothing.
    void refresh();

private:
    Binding m_binding;
    OneStep m_step;
};

} // namespace orvane
