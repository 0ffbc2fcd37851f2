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

std::vector<SavedLook> LooksStore::load() const
{
    return JSONStore::load<std::vector<SavedLook>>(m_url).value;
}

Result<void> LooksStore::save(std::vector<SavedLook> looks) const
{
    const auto guard = JSONStore::loadForUpdate<std::vector<SavedLook>>(m_url, {});
    if (!guard)
        return guard.error();
    if (looks.size() > mostLooks)
        looks.resize(mostLooks);
    return JSONStore::save(looks, m_url);
}

Result<std::vector<SavedLook>> LooksStore::remove(const std::string& id) const
{
    std::vector<SavedLook> looks = load();
    std::erase_if(looks, [&](const SavedLook& look) { return look.id == id; });
    if (Result<void> saved = save(looks); !saved)
        return saved.error();
    return looks;
}

} // namespace orvane
