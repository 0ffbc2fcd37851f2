#include "SavedLook.h"

#include "EditStateJSON.h"
#include "JSONStore.h"

namespace orvane {

template <> struct JSONRecord<SavedLook> {
    static void fields(auto& field, auto& look)
    {
        field("id", look.id);
        field("name", look.name);
        field("adjust", look.adjust);
        field("curve", look.curve);
        field("created", look.created);
    }
};

LooksStore::LooksStore(std::filesystem::path url)
    : m_url(std::move(url))
{
}

std::vector<SavedLook> LooksStore::load()
{
    auto loaded = JSONStore::load<std::vector<SavedLook>>(m_url);
    // Without this a damaged file would take the good looks in memory with it: the first save moves
    // it aside and fails, and the second would begin from nothing.
    m_isDamaged = loaded.kind == JSONStore::LoadKind::Unreadable
        || (m_isDamaged && loaded.kind == JSONStore::LoadKind::Missing);
    if (!m_isDamaged)
        m_known = std::move(loaded.value);
    return m_known;
}

Result<void> LooksStore::save(std::vector<SavedLook> looks)
{
    const auto guard = JSONStore::loadForUpdate<std::vector<SavedLook>>(m_url, {});
    if (!guard)
        return guard.error();
    if (looks.size() > mostLooks)
        looks.resize(mostLooks);
    if (Result<void> saved = JSONStore::save(looks, m_url); !saved)
        return saved;
    m_known = std::move(looks);
    m_isDamaged = false;
    return {};
}

Result<std::vector<SavedLook>> LooksStore::remove(const std::string& id)
{
    std::vector<SavedLook> looks = load();
    std::erase_if(looks, [&](const SavedLook& look) { return look.id == id; });
    if (Result<void> saved = save(looks); !saved)
        return saved.error();
    return looks;
}

} // namespace orvane
