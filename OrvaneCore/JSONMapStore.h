#pragma once

#include "FileIdentity.h"
#include "JSONMapText.h"
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
/// Reading and saving go by the rules of JSONStore: one entry that cannot be decoded makes the
/// store damaged. 20,000 edits of 2 KB cost their text in memory and, once, half a second.
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
        const std::optional<std::string_view> text = m_loaded.value.find(key);
        if (!text)
            return std::nullopt;
        Result<V> value = decodedText<V>(*text);
        return value ? std::optional<V>(std::move(*value)) : std::nullopt;
    }

    /// Sets the entries and leaves the others as they are, in one write of the store. Fails as
    /// JSONStore::loadForUpdate() and save() do; then nothing is stored.
    Result<void> set(const Map& entries)
    {
        return JSONStore::withinMemory(m_url, [&] { return write(entries); });
    }

private:
    /// Of the store, its backup and the mark of a recovery: what was read depends on all three.
    using Identities = std::array<std::optional<FileIdentity>, 3>;

    static Result<JSONMapText> read(std::string&& text)
    {
        return JSONMapText::parsed(std::move(text), [](JSONReader& reader, const JSONView& json) {
            V value{};
            return JSONCoding<V>::read(reader, json, value);
        });
    }
    Identities present() const
    {
        return {FileIdentity::of(m_url), FileIdentity::of(JSONStore::backupOf(m_url)),
                FileIdentity::of(JSONStore::markOf(m_url))};
    }
    Result<void> write(const Map& entries);
    void refresh();
    void keep(const Identities& identities);
    /// By its bytes: what changes soon after a look at the file can keep the file's times.
    bool isStillTheSame();
    void forget()
    {
        m_identities.reset();
        m_loaded = {};
    }

    std::filesystem::path m_url;
    std::optional<Identities> m_identities; ///< of the files that m_loaded was read from
    bool m_isSettled = false; ///< so long ago that a change since would have changed them
    JSONStore::Load<JSONMapText> m_loaded;
};

template <class V> void JSONMapStore<V>::refresh()
{
    const Identities before = present();
    if (m_identities == before && (m_isSettled || isStillTheSame()))
        return;
    forget();
    m_loaded = JSONStore::load<JSONMapText>(m_url, read);
    // A fault of the system passes without a trace on the files.
    if (m_loaded.fault == ReadFault::File && before == present())
        keep(before);
}

template <class V> void JSONMapStore<V>::keep(const Identities& identities)
{
    m_identities = identities;
    m_isSettled = std::all_of(identities.begin(), identities.end(),
                              [](const auto& file) { return !file || file->isSettled(); });
}

template <class V> bool JSONMapStore<V>::isStillTheSame()
{
    if (m_loaded.kind != JSONStore::LoadKind::Ok)
        return false;
    const Identities before = present();
    const JSONStore::Load<std::string> text = JSONStore::readText(m_url);
    if (text.kind != m_loaded.kind || text.value != m_loaded.value.text() || before != present())
        return false;
    keep(before);
    return true;
}

template <class V> Result<void> JSONMapStore<V>::write(const Map& entries)
{
    std::map<std::string, std::string> texts;
    for (const auto& [key, value] : entries) {
        Result<std::string> text = encoded(value);
        if (!text)
            return text.error();
        texts.emplace(key, std::move(*text));
    }

    refresh();
    if (m_loaded.kind != JSONStore::LoadKind::Ok) {
        forget();
        Result<JSONMapText> base = JSONStore::loadForUpdate<JSONMapText>(m_url, {}, read);
        if (!base)
            return base.error();
        m_loaded.value = std::move(*base);
    }
    Result<JSONMapText> updated = m_loaded.value.updated(texts);
    if (!updated)
        return updated.error();
    // Whatever happens to the files now, only a save that came to its end is known to be there.
    forget();
    if (Result<void> saved = JSONStore::saveText(updated->text(), m_url); !saved)
        return saved;
    m_loaded = {JSONStore::LoadKind::Ok, std::move(*updated), {}};
    keep(present());
    return {};
}

} // namespace orvane
