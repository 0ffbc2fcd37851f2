#include "CollectionStore.h"

#include "EditStateJSON.h"
#include "JSONStore.h"
#include "Wording.h"

#include <algorithm>

namespace orvane {

template <> struct JSONRecord<Collection> {
    static void fields(auto& field, auto& collection)
    {
        field("id", collection.id);
        field("name", collection.name);
        field("sources", collection.sources);
        field("edits", collection.edits);
        field("updatedAt", collection.updatedAt);
    }
};

std::vector<Collection>::const_iterator named(const std::vector<Collection>& collections,
                                              const std::string& name)
{
    return std::find_if(collections.begin(), collections.end(),
                        [&](const Collection& c) { return isSameName(c.name, name); });
}

std::string freeName(const std::vector<Collection>& collections, const std::string& name)
{
    std::string candidate = name;
    for (int number = 2; named(collections, candidate) != collections.end(); ++number)
        candidate = name + " " + std::to_string(number);
    return candidate;
}

CollectionStore::CollectionStore(std::filesystem::path url)
    : m_url(std::move(url))
{
}

std::vector<Collection> CollectionStore::load()
{
    auto loaded = JSONStore::load<std::vector<Collection>>(m_url);
    m_isUnread = loaded.kind == JSONStore::LoadKind::Unreadable;
    std::vector<Collection> collections = std::move(loaded.value);
    std::stable_sort(
        collections.begin(), collections.end(),
        [](const Collection& a, const Collection& b) { return a.updatedAt > b.updatedAt; });
    return collections;
}

Result<void> CollectionStore::save(const std::vector<Collection>& collections)
{
    auto guard = JSONStore::loadForUpdate<std::vector<Collection>>(m_url, {});
    if (!guard)
        return guard.error();
    std::vector<Collection> all = collections;
    // A folder on a network can be out of reach while the program starts: whoever saves now has
    // never seen what the file holds, and cannot have meant to replace it.
    if (m_isUnread) {
        for (Collection& unseen : *guard) {
            if (std::any_of(collections.begin(), collections.end(),
                            [&](const Collection& c) { return c.id == unseen.id; }))
                continue;
            unseen.name = freeName(all, unseen.name);
            all.push_back(std::move(unseen));
        }
    }
    if (Result<void> saved = JSONStore::save(all, m_url); !saved)
        return saved;
    m_isUnread = false;
    return {};
}

} // namespace orvane
