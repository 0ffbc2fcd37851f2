#pragma once

#include "CIContext.h"
#include "PixelRect.h"
#include "RowSink.h"
#include "ThreadPool.h"
#include "TilePlanes.h"

#include <functional>
#include <mutex>
#include <vector>

namespace orvane {

/// Hands out the tiles of a picture band by band from the top, narrows what is drawn, and writes
/// each finished band to the sink in order. Whoever is free writes: on n workers there are n
/// threads, not n + 1, and the sink is called from one at a time.
class BandWriter {
public:
    BandWriter(const PixelRect& rect, int tileWidth, int tileHeight, int workers, RowSink& sink,
               const CancellationToken* cancellation);

    /// Draws one tile or writes one band.
    ThreadPool::Step step(const std::function<TilePlanes(const PixelRect&)>& draw);
    /// After the last step.
    Result<void> result() const;
    /// Time spent within the sink.
    double sinkMilliseconds() const { return m_sinkMilliseconds; }

private:
    PixelRect bandRect(int band) const;
    uint8_t* bandMemory(int band) { return m_memory[size_t(band % m_ahead)].data(); }
    void narrow(const TilePlanes& planes, const PixelRect& tile, int band);
    void writeBand(int band, std::unique_lock<std::mutex>& lock);

    PixelRect m_rect;
    int m_tileWidth;
    int m_tileHeight;
    RowSink& m_sink;
    const CancellationToken* m_cancellation;
    PixelFormat m_format;
    size_t m_rowBytes;
    int m_bands;
    int m_tilesAcross;
    int m_ahead; ///< bands in memory at once

    std::mutex m_mutex;
    std::vector<std::vector<uint8_t>> m_memory;
    std::vector<int> m_unfinished; ///< tiles still to come, by band
    int m_nextTile = 0;
    int m_written = 0;
    bool m_writing = false;
    bool m_stopped = false;
    Result<void> m_result;
    double m_sinkMilliseconds = 0;
};

} // namespace orvane
