#pragma once

#include "AppModel.h"

#include <optional>

namespace orvane {

/// Makes one step of history out of the many changes of one movement of the hand, whatever history
/// each change keeps by itself.
class OneStep {
public:
    explicit OneStep(AppModel& model)
        : m_model(model)
    {
    }
    /// Before the first change. Once begun, more do nothing.
    void begin();
    /// Nothing when not begun, when nothing changed, or when another image has come under the hand.
    void end();

private:
    struct Start {
        std::string image;
        History<EditState> history;
    };
    AppModel& m_model;
    std::optional<Start> m_start;
};

} // namespace orvane
