#include "PagesAhead.h"

#include <algorithm>
#include <sys/mman.h>
#include <system_error>

namespace orvane {

namespace {

constexpr size_t page = 4096;
/// Handed over at a time: a huge page.
constexpr size_t piece = size_t(2) << 20;
/// Less is filled before a thread has begun.
constexpr size_t smallest = 4 * piece;

} // namespace

PagesAhead::PagesAhead(uint8_t* memory, size_t bytes)
    : m_memory(memory)
    , m_bytes(bytes)
{
    if (bytes < smallest || reinterpret_cast<uintptr_t>(memory) % page != 0)
        return;
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) { // no more threads: it takes longer
    }
}

PagesAhead::~PagesAhead()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void PagesAhead::filled(size_t bytes)
{
    if (bytes < m_told + piece)
        return;
    m_told = bytes;
    {
        const std::lock_guard lock(m_mutex);
        m_filled = bytes;
    }
    m_changed.notify_one();
}

void PagesAhead::run()
{
    // Whoever fills has begun with the first one.
    size_t start = piece;
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [&] { return m_stopping || start < m_filled + leadBytes; });
        start = std::max(start, (m_filled / piece + 1) * piece);
        if (m_stopping || start >= m_bytes)
            return;
        lock.unlock();
        // Systems that do not know it, or have no more memory, leave it to whoever fills.
        const bool more =
            madvise(m_memory + start, std::min(piece, m_bytes - start), MADV_POPULATE_WRITE) == 0;
        lock.lock();
        if (!more)
            return;
        start += piece;
    }
}

} // namespace orvane
