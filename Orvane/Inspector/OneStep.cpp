#include "OneStep.h"

#include <utility>

namespace orvane {

void OneStep::begin()
{
    if (!m_start)
        m_start = Start{m_model.activeImageID, m_model.history};
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

} // namespace orvane
