#pragma once

#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <mutex>
#include <vector>

namespace orvane {

/// Large pieces of memory that were given back, for whoever next needs one of about that size:
/// fresh memory costs a system its clearing, 10 to 60 ms for what one preview stores. What goes
/// back to the system does so behind its user's back: 300 MB take 30 ms, for which whoever has
/// cancelled a draw would wait. Safe to use from several threads.
class SpareMemory {
public:
    /// limitBytes: what is given back beyond it goes to the system, the oldest first; with 0,
    /// everything.
    explicit SpareMemory(size_t limitBytes)
        : m_limit(limitBytes)
    {
    }
    ~SpareMemory();
    SpareMemory(const SpareMemory&) = delete;
    SpareMemory& operator=(const SpareMemory&) = delete;

private:
    friend class PixelMemory;
    struct Block {
        uint8_t* memory = nullptr;
        size_t bytes = 0;
    };

    /// A block of at least so many bytes, or none.
    Block take(size_t bytes);
    void giveBack(Block block);
    void freeSurplus();

    std::mutex m_mutex;
    std::vector<Block> m_blocks;
    std::vector<Block> m_surplus; ///< on their way to the system
    bool m_freeing = false;
    size_t m_bytes = 0;
    size_t m_limit;
    std::future<void> m_freed; ///< last: it uses everything above
};

/// Uninitialised memory for pixels; large pieces from the spares, if there are any that fit.
class PixelMemory {
public:
    PixelMemory()
        : m_bytes(nullptr, Free{0, {}})
    {
    }
    /// Throws std::bad_alloc when there is not enough memory.
    explicit PixelMemory(size_t bytes, const std::shared_ptr<SpareMemory>& spares = {});
    /// Zeros. What is large costs nothing where nobody writes: the system has one page of zeros
    /// for all of it.
    static PixelMemory zeros(size_t bytes);

    /// On a cache line.
    uint8_t* data() const { return m_bytes.get(); }

private:
    struct Free {
        size_t bytes; ///< of the block, which may be larger than what was asked for
        std::weak_ptr<SpareMemory> spares;
        void operator()(uint8_t* memory) const;
    };
    std::unique_ptr<uint8_t[], Free> m_bytes;
};

} // namespace orvane
