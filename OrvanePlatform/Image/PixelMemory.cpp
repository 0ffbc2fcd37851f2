#include "PixelMemory.h"

#include <algorithm>
#include <new>
#include <sys/mman.h>

namespace orvane {

namespace {

constexpr size_t page = 4096;
constexpr size_t large = size_t(1) << 20;
constexpr std::align_val_t cacheLine{64};

bool isLarge(size_t bytes)
{
    return bytes >= large;
}

size_t wholePages(size_t bytes)
{
    return (bytes + page - 1) / page * page;
}

uint8_t* mapped(size_t bytes)
{
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    return static_cast<uint8_t*>(memory);
}

} // namespace

SpareMemory::~SpareMemory()
{
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
    const std::lock_guard lock(m_mutex);
    m_blocks.push_back(block);
    m_bytes += block.bytes;
    while (m_bytes > m_limit) {
        munmap(m_blocks.front().memory, m_blocks.front().bytes);
        m_bytes -= m_blocks.front().bytes;
        m_blocks.erase(m_blocks.begin());
    }
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
