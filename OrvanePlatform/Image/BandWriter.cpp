#include "BandWriter.h"

#include "PlaneConversion.h"

#include <algorithm>
#include <chrono>

namespace orvane {

BandWriter::BandWriter(const PixelRect& rect, int tileWidth, int tileHeight, int workers,
                       RowSink& sink, const CancellationToken* cancellation)
    : m_rect(rect)
    , m_tileWidth(tileWidth)
    , m_tileHeight(tileHeight)
    , m_sink(sink)
    , m_cancellation(cancellation)
    , m_format(sink.format())
    , m_rowBytes(size_t(rect.width()) * size_t(bytesPerPixel(m_format)))
    , m_bands((rect.height() + tileHeight - 1) / tileHeight)
    , m_tilesAcross((rect.width() + tileWidth - 1) / tileWidth)
    // One band at the sink, one waiting, and one for each worker to draw in.
    , m_ahead(std::min(m_bands, workers + 2))
    , m_memory(size_t(m_ahead), std::vector<uint8_t>(m_rowBytes * size_t(tileHeight)))
    , m_unfinished(size_t(m_bands), m_tilesAcross)
{
}

PixelRect BandWriter::bandRect(int band) const
{
    const int top = m_rect.y1 - band * m_tileHeight;
    return {m_rect.x0, std::max(top - m_tileHeight, m_rect.y0), m_rect.x1, top};
}

void BandWriter::narrow(const TilePlanes& planes, const PixelRect& tile, int band)
{
    const size_t left = size_t(tile.x0 - m_rect.x0) * size_t(bytesPerPixel(m_format));
    for (int y = tile.y0; y < tile.y1; ++y) {
        const float* rows[4];
        for (int c = 0; c < 4; ++c)
            rows[c] = planes.plane[c] ? planes.at(c, tile.x0, y) : nullptr;
        const size_t fromTop = size_t(tile.y1 - 1 - y);
        narrowRow(rows, tile.width(), m_format, bandMemory(band) + fromTop * m_rowBytes + left);
    }
}

void BandWriter::writeBand(int band, std::unique_lock<std::mutex>& lock)
{
    m_writing = true;
    lock.unlock();
    const auto start = std::chrono::steady_clock::now();
    Result<void> written = m_sink.writeRows(bandMemory(band), bandRect(band).height(), m_rowBytes);
    const std::chrono::duration<double, std::milli> spent =
        std::chrono::steady_clock::now() - start;
    lock.lock();
    m_writing = false;
    m_sinkMilliseconds += spent.count();
    ++m_written;
    if (!written) {
        m_result = std::move(written);
        m_stopped = true;
    }
}

ThreadPool::Step BandWriter::step(const std::function<TilePlanes(const PixelRect&)>& draw)
{
    std::unique_lock lock(m_mutex);
    if (!m_stopped && m_cancellation && m_cancellation->isCancelled()) {
        m_result = Error{"Cancelled."};
        m_stopped = true;
    }
    if (m_stopped || m_written == m_bands)
        return ThreadPool::Step::Finished;
    if (!m_writing && m_unfinished[size_t(m_written)] == 0) {
        writeBand(m_written, lock);
        return ThreadPool::Step::Worked;
    }
    if (m_nextTile == m_bands * m_tilesAcross || m_nextTile / m_tilesAcross >= m_written + m_ahead)
        return ThreadPool::Step::Waiting;
    const int index = m_nextTile++;
    lock.unlock();
    const int band = index / m_tilesAcross;
    PixelRect tile = bandRect(band);
    tile.x0 += index % m_tilesAcross * m_tileWidth;
    tile.x1 = std::min(tile.x0 + m_tileWidth, m_rect.x1);
    narrow(draw(tile), tile, band);
    lock.lock();
    --m_unfinished[size_t(band)];
    return ThreadPool::Step::Worked;
}

Result<void> BandWriter::result() const
{
    return m_result;
}

} // namespace orvane
