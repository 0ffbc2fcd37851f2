#include "RecentDrawings.h"

#include "Bitmap.h"

#include <algorithm>

namespace orvane {

namespace {

// Counted for what an entry takes beside its pixels, so that empty drawings are bounded too.
constexpr size_t entryBytes = 256;

size_t heldBytes(const PlacedBitmap& drawing)
{
    return entryBytes + (drawing.bitmap ? drawing.bitmap->byteSize() : 0);
}

} // namespace

RecentDrawings::RecentDrawings(size_t byteBudget)
    : m_byteBudget(byteBudget)
{
}

const PlacedBitmap* RecentDrawings::found(const Digest& key)
{
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& e) { return e.key == key; });
    if (entry == m_entries.end())
        return nullptr;
    m_entries.splice(m_entries.begin(), m_entries, entry);
    return &m_entries.front().drawing;
}

PlacedBitmap RecentDrawings::drawing(const Digest& key, const std::function<PlacedBitmap()>& draw)
{
    {
        const std::lock_guard lock(m_mutex);
        if (const PlacedBitmap* earlier = found(key))
            return *earlier;
    }
    PlacedBitmap drawn = draw();
    const size_t bytes = heldBytes(drawn);
    if (bytes > m_byteBudget / 2)
        return drawn;
    const std::lock_guard lock(m_mutex);
    // Another thread may have drawn the same meanwhile: one bitmap serves both.
    if (const PlacedBitmap* earlier = found(key))
        return *earlier;
    m_entries.push_front({key, drawn});
    m_bytes += bytes;
    while (m_bytes > m_byteBudget) {
        m_bytes -= heldBytes(m_entries.back().drawing);
        m_entries.pop_back();
    }
    return drawn;
}

} // namespace orvane
