#pragma once

#include "EditState.h"
#include "History.h"

#include <map>
#include <string>

namespace orvane {

/// What each entry of a timeline changed, oldest first, as AppModel::historySteps() says it. Texts
/// are kept for as long as their entries are in the timeline, so that a step of a drag compares two
/// edits and not a hundred.
class HistoryLabels {
public:
    std::vector<std::string> of(const History<EditState>::Timeline& timeline);

private:
    using Snapshot = History<EditState>::Snapshot;
    /// An entry after another: held, since a freed one's address may come again.
    using Pair = std::pair<Snapshot, Snapshot>;
    std::map<Pair, std::string> m_labels;
};

} // namespace orvane
