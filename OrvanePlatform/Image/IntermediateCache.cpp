#include "IntermediateCache.h"

#include <algorithm>

namespace orvane {

namespace {

/// The settings after a change, and those before it to go back to.
constexpr int keptOfARole = 2;

} // namespace

std::shared_ptr<StoredImage> IntermediateCache::find(const Digest& key, const PixelRect& region)
{
    const std::lock_guard lock(m_mutex);
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& e) {
        return e.key == key && e.image->rect().contains(region);
    });
    if (entry == m_entries.end())
        return nullptr;
    m_entries.splice(m_entries.begin(), m_entries, entry);
    return m_entries.front().image;
}

template <class Condition> void IntermediateCache::drop(Condition&& condition)
{
    m_entries.remove_if([&](const Entry& entry) {
        const bool drops = condition(entry);
        m_bytes -= drops ? entry.image->byteSize() : 0;
        return drops;
    });
}

void IntermediateCache::keep(const Digest& key, const Digest& role,
                             std::shared_ptr<StoredImage> image)
{
    const std::lock_guard lock(m_mutex);
    if (image->byteSize() > m_budget)
        return;
    // What the new image covers of the same recipe is of no more use.
    drop([&](const Entry& e) { return e.key == key && image->rect().contains(e.image->rect()); });
    int alike = 1;
    drop([&](const Entry& e) { return e.role == role && ++alike > keptOfARole; });
    m_bytes += image->byteSize();
    m_entries.push_front({key, role, std::move(image)});
    while (m_bytes > m_budget) {
        m_bytes -= m_entries.back().image->byteSize();
        m_entries.pop_back();
    }
}

} // namespace orvane
