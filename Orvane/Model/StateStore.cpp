#include "StateStore.h"

#include <exception>

namespace orvane {

StateStore::StateStore(std::filesystem::path url)
    : m_url(std::move(url))
{
    // Where no thread can be had, the first call reads. Not std::launch::deferred for that: the
    // attempt to make the thread has used up what the work captured.
    try {
        m_reading = std::async(std::launch::async, [url = m_url] {
            Store store(url);
            // Any question makes it read.
            (void)store.find({});
            return store;
        });
    } catch (const std::exception&) {
        m_reading = {};
    }
}

StateStore::Store& StateStore::store()
{
    if (m_store)
        return *m_store;
    try {
        if (m_reading.valid())
            m_store.emplace(m_reading.get());
    } catch (const std::exception&) {
        // The background hands its exceptions over, and only once; this store reads by itself.
        m_store.reset();
    }
    return m_store ? *m_store : m_store.emplace(m_url);
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
