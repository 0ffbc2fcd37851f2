// Saved looks: named grades that outlive the session.

#include "AppModel.h"

#include "Wording.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr int longestLookName = 80;

} // namespace

std::vector<LookItem> AppModel::savedLooks() const
{
    std::vector<LookItem> items;
    for (const SavedLook& look : savedLookEntries.value())
        items.push_back({look.id, look.name});
    return items;
}

void AppModel::saveLook(const std::string& name)
{
    const std::string wanted = trimmed(name);
    if (wanted.empty())
        return;
    SavedLook look;
    look.id = newID("look_");
    look.name = firstCharacters(wanted, longestLookName);
    for (const AdjustGroup& group : schema) {
        for (const AdjustKey& key : group.keys) {
            const auto entry = adjust.value().find(key.key);
            look.adjust[key.key] = entry == adjust.value().end() ? key.def : entry->second;
        }
    }
    look.curve = curve.value();
    look.created = now();

    std::vector<SavedLook> entries = m_looksStore.load();
    entries.insert(entries.begin(), look);
    entries.resize(std::min(entries.size(), LooksStore::mostLooks));
    makeSupportFolder();
    if (const Result<void> stored = m_looksStore.save(entries); !stored) {
        report("Couldn't save the look " + inQuotes(look.name), stored.error());
        return;
    }
    savedLookEntries = std::move(entries);
}

void AppModel::applySavedLook(const std::string& id)
{
    const auto& entries = savedLookEntries.value();
    const auto entry = std::find_if(entries.begin(), entries.end(),
                                    [&](const SavedLook& look) { return look.id == id; });
    if (entry == entries.end())
        return;
    applyGrade(entry->adjust, entry->curve);
    lastLook = std::nullopt;
}

void AppModel::removeSavedLook(const std::string& id)
{
    Result<std::vector<SavedLook>> rest = m_looksStore.remove(id);
    if (!rest) {
        report("Couldn't remove that look", rest.error());
        return;
    }
    savedLookEntries = std::move(*rest);
}

} // namespace orvane
