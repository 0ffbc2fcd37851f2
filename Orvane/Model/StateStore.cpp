#include "StateStore.h"

namespace orvane {

StateStore::StateStore(std::filesystem::path url)
    : m_reading(std::async(std::launch::async, [url = std::move(url)] {
        Store store(url);
        // Any question makes it read.
        (void)store.find({});
        return store;
    }))
{
}

StateStore::Store& StateStore::store()
{
    if (!m_store)
        m_store.emplace(m_reading.get());
    return *m_store;
}

std::optional<EditState> StateStore::state(const std::string& source)
{
    return store().find(source);
}

Result<void> StateStore::save(const std::map<std::string, EditState>& states)
{
    std::error_code shownByTheWrite;
    std::filesystem::create_directories(store().url().parent_path(), shownByTheWrite);
    return store().set(states);
}

} // namespace orvane
