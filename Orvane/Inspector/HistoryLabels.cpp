#include "HistoryLabels.h"

#include <utility>

namespace orvane {

std::vector<std::string> HistoryLabels::of(const History<EditState>::Timeline& timeline)
{
    std::map<Pair, std::string> kept;
    std::vector<std::string> labels;
    Snapshot previous;
    for (const Snapshot& entry : timeline.entries) {
        Pair step(previous, entry);
        const auto known = m_labels.find(step);
        labels.push_back(known == m_labels.end() ? entry->describe(previous.get()) : known->second);
        kept.emplace(std::move(step), labels.back());
        previous = entry;
    }
    m_labels = std::move(kept);
    return labels;
}

} // namespace orvane
