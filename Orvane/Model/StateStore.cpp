#include "StateStore.h"

#include <exception>

namespace orvane {

StateStore::StateStore(std::filesystem::path url)
    : m_url(std::move(url))
    // Deferred only where no thread can be had: then the first call reads.
    , m_reading(std::async(std::launch::async | std::launch::deferred, [url = m_url] {
        Store store(url);
        // Any question makes it read.
        (void)store.find({});
        return store;
    }))
{
}

StateStore::Store& StateStore::store()
{
    if (m_store)
        return *m_store;
    // The background hands its exceptions over, and only once.
    try {
        m_store.emplace(m_reading.get());
    } catch (const std::exception&) {
        m_store.emplace(m_url);
    }
    return *m_store;
}

std::optional<EditState> StateStore::state(const std::string& source)
{
    return store().find(source);
}

Result<void> StateStore::save(const std::map<std::string, EditState>& states)
{
    std::error_code shownByTheWrite;
    std::filesystem::create_directories(m_url.parent_path(), shownByTheWrite);
    return store().set(states);
}

} // namespace orvane
