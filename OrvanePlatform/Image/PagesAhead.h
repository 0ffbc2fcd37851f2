#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>

namespace orvane {

/// Has the system hand over the pages of fresh memory ahead of a single thread that fills it from
/// its start, on a processor that has nothing to do meanwhile. A page has to be cleared first, and
/// in a virtual machine fetched from the host: up to a third of the time of a decoder. Nothing is
/// written, and only some pages ahead: a file that claims to be larger than it is does not get
/// them.
class PagesAhead {
public:
    /// From where the filling has got to.
    static constexpr size_t leadBytes = size_t(32) << 20;

    /// The memory must outlive this. A small piece is left alone.
    PagesAhead(uint8_t* memory, size_t bytes);
    ~PagesAhead();
    PagesAhead(const PagesAhead&) = delete;
    PagesAhead& operator=(const PagesAhead&) = delete;

    /// How much is filled by now. Throws nothing.
    void filled(size_t bytes);

private:
    void run();

    uint8_t* m_memory;
    size_t m_bytes;
    size_t m_told = 0; ///< as last told, by the thread that tells
    std::mutex m_mutex;
    std::condition_variable m_changed;
    size_t m_filled = 0;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace orvane
