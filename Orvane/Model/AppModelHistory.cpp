// Undo, redo and the list of steps.

#include "AppModel.h"

namespace orvane {

void AppModel::pushHistory()
{
    auto changed = history.value();
    changed.push(editState(), now());
    history = std::move(changed);
}

void AppModel::commitHistory()
{
    auto changed = history.value();
    changed.commit(editState(), now());
    history = std::move(changed);
}

void AppModel::undo()
{
    auto changed = history.value();
    const auto state = changed.undo();
    history = std::move(changed);
    if (state)
        restore(*state);
}

void AppModel::redo()
{
    auto changed = history.value();
    const auto state = changed.redo();
    history = std::move(changed);
    if (state)
        restore(*state);
}

void AppModel::jumpHistory(int index)
{
    auto changed = history.value();
    const auto state = changed.jump(index);
    history = std::move(changed);
    if (state)
        restore(*state);
}

std::vector<std::string> AppModel::historySteps() const
{
    const auto timeline = history.value().timeline();
    std::vector<std::string> steps;
    const EditState* previous = nullptr;
    for (const auto& entry : timeline.entries) {
        steps.push_back(entry->describe(previous));
        previous = entry.get();
    }
    return steps;
}

} // namespace orvane
