#pragma once

#include "Drawing.h"
#include "PixelRect.h"
#include "RowSink.h"
#include "ThreadPool.h"
#include "TilePlanes.h"

#include <deque>
#include <mutex>
#include <vector>

namespace orvane {

/// Narrows a picture into bands of rows and writes them to a sink, from the top, from one thread at
/// a time. The sink is behind by a few bands at most, so memory does not grow with the picture.
class BandWriter : public PictureTarget {
public:
    BandWriter(const PixelRect& rect, RowSink& sink);

    /// False while too many bands are unwritten.
    bool begin(const PixelRect& rows) override;
    void take(const TilePlanes& planes, const PixelRect& tile) override;
    void end(const PixelRect& rows) override;

    /// Writes the next band if it is complete and nobody else is writing; Finished when the sink
    /// has everything or has failed. From several threads at once.
    ThreadPool::Step writeNext();
    /// Nothing more will be written.
    bool stopped() const;
    Result<void> result() const;
    /// Time spent within the sink.
    double sinkMilliseconds() const { return m_sinkMilliseconds; }

private:
    struct Band {
        PixelRect rect;
        std::vector<uint8_t> pixels;
        bool complete = false;
    };

    Band& bandOf(const PixelRect& rows);

    PixelRect m_rect;
    RowSink& m_sink;
    PixelFormat m_format;
    size_t m_rowBytes;

    mutable std::mutex m_mutex;
    std::deque<Band> m_bands; ///< not yet written; a deque's elements stay where they are
    std::vector<std::vector<uint8_t>> m_spare;
    bool m_writing = false;
    bool m_stopped = false;
    Result<void> m_result;
    double m_sinkMilliseconds = 0;
};

} // namespace orvane
