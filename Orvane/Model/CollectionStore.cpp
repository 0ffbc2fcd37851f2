#include "CollectionStore.h"

#include "EditStateJSON.h"
#include "JSONStore.h"

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

CollectionStore::CollectionStore(std::filesystem::path url)
    : m_url(std::move(url))
{
}

std::vector<Collection> CollectionStore::load() const
{
    std::vector<Collection> collections = JSONStore::load<std::vector<Collection>>(m_url).value;
    std::stable_sort(
        collections.begin(), collections.end(),
        [](const Collection& a, const Collection& b) { return a.updatedAt > b.updatedAt; });
    return collections;
}

Result<void> CollectionStore::save(const std::vector<Collection>& collections) const
{
    const auto guard = JSONStore::loadForUpdate<std::vector<Collection>>(m_url, {});
    if (!guard)
        return guard.error();
    return JSONStore::save(collections, m_url);
}

} // namespace orvane
