#pragma once

#include "FileIdentity.h"
#include "JSONStore.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// A JSON store that is one object, a map from text to V, and of which single entries are asked
/// for. What it has read is kept as long as the file stays the same one, untouched, so that a
/// lookup in a large store costs next to nothing; another program's change is seen.
///
/// Reading and saving go by the rules of JSONStore.
template <class V> class JSONMapStore {
public:
    using Map = std::map<std::string, V>;

    explicit JSONMapStore(std::filesystem::path url)
        : m_url(std::move(url))
    {
    }

    const std::filesystem::path& url() const { return m_url; }

    /// The entry of a key; absent, too, when the store cannot be read.
    std::optional<V> find(const std::string& key)
    {
        refresh();
        const auto entry = m_loaded.value.find(key);
        return entry == m_loaded.value.end() ? std::nullopt : std::optional<V>(entry->second);
    }

    /// Sets the entries and leaves the others as they are, in one write of the store. Fails as
    /// JSONStore::loadForUpdate() and save() do; then nothing is stored.
    Result<void> set(const Map& entries);

private:
    /// Of the store, its backup and the mark of a recovery: what was read depends on all three.
    using Identities = std::array<std::optional<FileIdentity>, 3>;
    Identities present() const;
    void refresh();

    std::filesystem::path m_url;
    std::optional<Identities> m_identities; ///< of the files that m_loaded was read from
    JSONStore::Load<Map> m_loaded;
};

template <class V> typename JSONMapStore<V>::Identities JSONMapStore<V>::present() const
{
    return {FileIdentity::of(m_url), FileIdentity::of(JSONStore::backupOf(m_url)),
            FileIdentity::of(JSONStore::markOf(m_url))};
}

template <class V> void JSONMapStore<V>::refresh()
{
    const Identities before = present();
    if (m_identities == before)
        return;
    m_loaded = JSONStore::load<Map>(m_url);
    // Kept only when nothing changed meanwhile, nor could change unseen.
    m_identities.reset();
    const auto settled = [](const auto& file) { return !file || file->isSettled(); };
    if (before == present() && std::all_of(before.begin(), before.end(), settled))
        m_identities = before;
}

template <class V> Result<void> JSONMapStore<V>::set(const Map& entries)
{
    refresh();
    m_identities.reset();
    Map map;
    if (m_loaded.kind == JSONStore::LoadKind::Ok) {
        map = std::move(m_loaded.value);
    } else {
        Result<Map> loaded = JSONStore::loadForUpdate<Map>(m_url, {});
        if (!loaded)
            return loaded.error();
        map = std::move(*loaded);
    }
    for (const auto& [key, value] : entries)
        map.insert_or_assign(key, value);
    if (Result<void> saved = JSONStore::save(map, m_url); !saved)
        return saved;
    m_loaded = {JSONStore::LoadKind::Ok, std::move(map), {}};
    m_identities = present();
    return {};
}

} // namespace orvane
