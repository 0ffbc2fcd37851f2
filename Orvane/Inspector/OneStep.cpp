#include "OneStep.h"

#include <utility>

namespace orvane {

void OneStep::begin()
{
    if (!m_start)
        m_start = present();
}

void OneStep::end()
{
    const auto start = std::exchange(m_start, std::nullopt);
    if (!start || start->image != m_model.activeImageID.value()
        || start->history == m_model.history.value())
        return;
    // A rest of the hand makes steps of its own within the movement, and its first change may have
    // joined the step before it.
    m_model.history = start->history;
    m_model.commitHistory();
}

void OneStep::take(const std::function<void()>& change)
{
    if (m_start)
        return change();
    const Start before = present();
    change();
    // What keeps no history, as the size of a brush, must not bring in what else stands open.
    if (m_model.history.value() == before.history)
        return;
    if (!continues(before))
        m_burst = Burst{before, {}};
    m_model.history = m_burst->start.history;
    m_model.commitHistory();
    m_burst->last = m_model.history;
}

/// To be asked after a change that found the history as in `before`.
bool OneStep::continues(const Start& before) const
{
    if (!m_burst || m_burst->start.image != before.image || m_burst->last != before.history)
        return false;
    const auto earlier = m_burst->last.lastTouch();
    const auto now = m_model.history.value().lastTouch();
    return earlier && now && *now - *earlier < burst;
}

} // namespace orvane
