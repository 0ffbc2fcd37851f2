#pragma once

#include "CIContext.h"
#include "PixelRect.h"
#include "RowSink.h"
#include "ThreadPool.h"
#include "TilePlanes.h"

#include <deque>
#include <functional>
#include <mutex>
#include <vector>

namespace orvane {

/// Takes the finished bands of a picture, from the top, and writes them to the sink in that order,
/// as a job of the pool: whoever finds no tile to draw writes. On n workers there are n threads,
/// not n + 1, and the sink is called from one at a time.
class BandWriter {
public:
    BandWriter(const PixelRect& rect, ThreadPool& pool, RowSink& sink);
    ~BandWriter();
    BandWriter(const BandWriter&) = delete;
    BandWriter& operator=(const BandWriter&) = delete;

    /// Memory for the next band, `rows` high; waits, or writes, while too many are unwritten. False
    /// when the sink has failed.
    bool begin(const PixelRect& rows);
    /// Part of the band that was begun. From several threads at once.
    void narrow(const TilePlanes& planes, const PixelRect& tile);
    /// The band that was begun is complete.
    void end();
    /// Nothing more will be written: the sink has failed, or has everything.
    bool stopped();
    /// Writes what is left.
    Result<void> finish();
    /// Time spent within the sink.
    double sinkMilliseconds() const { return m_sinkMilliseconds; }

private:
    struct Band {
        PixelRect rect;
        std::vector<uint8_t> pixels;
        bool complete = false;
    };

    ThreadPool::Step writeNext();
    bool hasRoom();
    void stop();

    PixelRect m_rect;
    ThreadPool& m_pool;
    RowSink& m_sink;
    PixelFormat m_format;
    size_t m_rowBytes;

    std::mutex m_mutex;
    std::deque<Band> m_bands; ///< not yet written
    Band* m_drawing = nullptr; ///< the last of them; a deque's elements stay where they are
    std::vector<std::vector<uint8_t>> m_spare;
    bool m_writing = false;
    bool m_stopped = false;
    Result<void> m_result;
    double m_sinkMilliseconds = 0;

    ThreadPool::Job m_job;
    std::shared_ptr<ThreadPool::Running> m_running; ///< last: it uses everything above
};

} // namespace orvane
