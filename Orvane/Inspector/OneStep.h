#pragma once

#include "AppModel.h"

#include <functional>
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

    /// Runs a change of the edit. Outside of begin() and end() it is a step of its own, or joins
    /// the one before when that came through here less than `burst` ago and nothing else has
    /// touched the history since: a held key and one turn of the wheel are one step.
    void take(const std::function<void()>& change);
    /// Seconds. A held key waits up to 0.7 before it repeats.
    static constexpr double burst = 1;

private:
    struct Start {
        std::string image;
        History<EditState> history;
    };
    struct Burst {
        Start start;
        History<EditState> last; ///< as its latest change left it
    };
    Start present() const { return {m_model.activeImageID, m_model.history}; }
    bool continues(const Start& before) const;

    AppModel& m_model;
    std::optional<Start> m_start;
    std::optional<Burst> m_burst;
};

} // namespace orvane
