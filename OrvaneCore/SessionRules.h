#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The decisions about unsaved work, as pure functions of plain values. T is the state of an edit;
/// nothing is asked of it but equality.
namespace orvane::SessionRules {

/// One image of the open set.
template <std::equality_comparable T> struct Item {
    std::optional<std::string> source; ///< its identity; without one it cannot be saved
    T current; ///< the edit as it stands now
    std::optional<T> saved; ///< the edit as it was loaded or last saved

    /// By value, and also when nothing was ever saved.
    bool isDirty() const { return current != saved; }
    bool isSaveable() const { return source.has_value(); }

    bool operator==(const Item&) const = default;
};

/// What must happen before an image leaves the open set.
struct Removal {
    enum class Kind {
        SaveThenRemove, ///< store the edit under `source` first
        Remove, ///< without asking
        ConfirmDiscard, ///< ask: the edit cannot be saved
    };
    Kind kind = Kind::Remove;
    std::string source; ///< of SaveThenRemove; empty otherwise

    bool operator==(const Removal&) const = default;
};

struct DirtyCount {
    int total = 0;
    int saveable = 0; ///< of `total`, those with a source

    bool operator==(const DirtyCount&) const = default;
};

enum class LutState { None, Loaded, Missing };

template <class T> bool isDirty(const std::vector<Item<T>>& items)
{
    return std::any_of(items.begin(), items.end(), [](const Item<T>& i) { return i.isDirty(); });
}

template <class T> DirtyCount dirtyCount(const std::vector<Item<T>>& items)
{
    DirtyCount count;
    for (const Item<T>& item : items) {
        if (!item.isDirty())
            continue;
        ++count.total;
        count.saveable += item.isSaveable() ? 1 : 0;
    }
    return count;
}

template <class T> bool hasUnsaveableDirtyWork(const std::vector<Item<T>>& items)
{
    const DirtyCount count = dirtyCount(items);
    return count.saveable < count.total;
}

/// A collection keeps the edits of its images: none of them is asked about or stored by itself.
template <class T> Removal removal(const Item<T>& item, bool inCollection)
{
    if (!item.isDirty())
        return {Removal::Kind::Remove, {}};
    if (!item.source)
        return {Removal::Kind::ConfirmDiscard, {}};
    if (inCollection)
        return {Removal::Kind::Remove, {}};
    return {Removal::Kind::SaveThenRemove, *item.source};
}

/// Whether the open set differs from what its collection holds: other sources, another order,
/// another edit. What the images themselves were last saved as does not count here.
template <class T>
bool collectionIsDirty(const std::vector<Item<T>>& items,
                       const std::vector<std::string>& savedSources,
                       const std::vector<T>& savedEdits)
{
    return items.size() != savedSources.size() || items.size() != savedEdits.size()
        || !std::equal(items.begin(), items.end(), savedSources.begin(),
                       [](const Item<T>& item, const std::string& s) { return item.source == s; })
        || !std::equal(items.begin(), items.end(), savedEdits.begin(),
                       [](const Item<T>& item, const T& edit) { return item.current == edit; });
}

/// Only a collection can hold a second version of an image that has a source.
bool needsCollectionForVariant(const std::optional<std::string>& source, bool inCollection);

/// The sources that several images share with different edits, each once, sorted: saved one by one,
/// all versions of them but the last would be lost.
template <class T>
std::vector<std::string> conflictingVariantSources(const std::vector<Item<T>>& items)
{
    std::map<std::string, const T*> firsts;
    std::vector<std::string> conflicts;
    for (const Item<T>& item : items) {
        if (!item.source)
            continue;
        const T& first = *firsts.try_emplace(*item.source, &item.current).first->second;
        if (!(item.current == first))
            conflicts.push_back(*item.source);
    }
    std::sort(conflicts.begin(), conflicts.end());
    conflicts.erase(std::unique(conflicts.begin(), conflicts.end()), conflicts.end());
    return conflicts;
}

/// What a lutID stands for; an empty one is no LUT at all, not a missing one.
LutState lutState(std::string_view id, bool canLoad);

} // namespace orvane::SessionRules
