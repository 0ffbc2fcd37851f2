#include "PixelMemory.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <system_error>
#include <utility>

namespace orvane {

namespace {

constexpr size_t page = 4096;
constexpr size_t hugePage = size_t(2) << 20;
constexpr size_t large = size_t(128) << 10;
constexpr size_t freedAtOnce = size_t(4) << 20;
constexpr std::align_val_t cacheLine{64};

bool isLarge(size_t bytes)
{
    return bytes >= large;
}

size_t wholePages(size_t bytes)
{
    return (bytes + page - 1) / page * page;
}

/// From the start of a huge page where one fits: the rows of a picture lie far apart, and each
/// would need an entry of its own in the processor's table of pages.
uint8_t* mapped(size_t bytes)
{
    const size_t spare = bytes >= hugePage ? hugePage - page : 0;
    void* const found =
        mmap(nullptr, bytes + spare, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (found == MAP_FAILED)
        throw std::bad_alloc();
    auto* const memory = static_cast<uint8_t*>(found);
    if (spare == 0)
        return memory;
    const size_t past = reinterpret_cast<uintptr_t>(memory) % hugePage;
    const size_t before = past == 0 ? 0 : hugePage - past;
    if (before > 0)
        munmap(memory, before);
    if (spare > before)
        munmap(memory + before + bytes, spare - before);
    // Small pages do as well, more slowly.
    madvise(memory + before, bytes, MADV_HUGEPAGE);
    return memory + before;
}

} // namespace

SpareMemory::~SpareMemory()
{
    if (m_freed.valid())
        m_freed.wait();
    for (const Block& block : m_blocks)
        munmap(block.memory, block.bytes);
}

SpareMemory::Block SpareMemory::take(size_t bytes)
{
    const std::lock_guard lock(m_mutex);
    const auto fits = [&](const Block& block) {
        return block.bytes >= bytes && block.bytes - bytes <= bytes / 8;
    };
    const auto found = std::find_if(m_blocks.begin(), m_blocks.end(), fits);
    if (found == m_blocks.end())
        return {};
    const Block block = *found;
    m_blocks.erase(found);
    m_bytes -= block.bytes;
    return block;
}

void SpareMemory::giveBack(Block block)
{
    std::unique_lock lock(m_mutex);
    m_blocks.push_back(block);
    m_bytes += block.bytes;
    while (m_bytes > m_limit) {
        m_bytes -= m_blocks.front().bytes;
        m_surplus.push_back(m_blocks.front());
        m_blocks.erase(m_blocks.begin());
    }
    if (m_surplus.empty() || std::exchange(m_freeing, true))
        return;
    try {
        m_freed = std::async(std::launch::async, [this] { freeSurplus(); });
    } catch (const std::system_error&) { // no more threads
        lock.unlock();
        freeSurplus();
    }
}

void SpareMemory::freeSurplus()
{
    std::unique_lock lock(m_mutex);
    while (!m_surplus.empty()) {
        const Block block = m_surplus.back();
        m_surplus.pop_back();
        lock.unlock();
        // In pieces: until one is through, whoever else maps memory or gives some back waits.
        for (size_t start = 0; start < block.bytes; start += freedAtOnce)
            munmap(block.memory + start, std::min(freedAtOnce, block.bytes - start));
        lock.lock();
    }
    m_freeing = false;
}

PixelMemory::PixelMemory(size_t bytes, const std::shared_ptr<SpareMemory>& spares)
    : PixelMemory()
{
    if (!isLarge(bytes)) {
        m_bytes = {static_cast<uint8_t*>(::operator new(bytes, cacheLine)), Free{bytes, {}}};
        return;
    }
    const SpareMemory::Block block = spares ? spares->take(bytes) : SpareMemory::Block{};
    if (block.memory)
        m_bytes = {block.memory, Free{block.bytes, spares}};
    else
        m_bytes = {mapped(wholePages(bytes)), Free{wholePages(bytes), spares}};
}

PixelMemory PixelMemory::zeros(size_t bytes)
{
    PixelMemory memory(bytes);
    if (!isLarge(bytes)) // otherwise fresh from the system
        std::memset(memory.data(), 0, bytes);
    return memory;
}

void PixelMemory::Free::operator()(uint8_t* memory) const
{
    if (!isLarge(bytes))
        return ::operator delete(memory, cacheLine);
    if (const auto to = spares.lock())
        to->giveBack({memory, bytes});
    else
        munmap(memory, bytes);
}

} // namespace orvane
