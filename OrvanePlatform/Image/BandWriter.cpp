#include "BandWriter.h"

#include "PlaneConversion.h"

#include <algorithm>
#include <chrono>

namespace orvane {

namespace {

/// One band at the sink, one waiting, one being drawn.
constexpr size_t bandsAhead = 3;

} // namespace

BandWriter::BandWriter(const PixelRect& rect, ThreadPool& pool, RowSink& sink)
    : m_rect(rect)
    , m_pool(pool)
    , m_sink(sink)
    , m_format(sink.format())
    , m_rowBytes(size_t(rect.width()) * size_t(bytesPerPixel(m_format)))
    , m_job([this](int) { return writeNext(); })
    , m_running(pool.start(m_job))
{
}

BandWriter::~BandWriter()
{
    if (!m_running)
        return;
    stop();
    try {
        m_pool.finish(*m_running);
    } catch (...) {
        // The draw that this belongs to is failing already.
    }
}

void BandWriter::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_pool.notify();
}

bool BandWriter::hasRoom()
{
    const std::lock_guard lock(m_mutex);
    return m_stopped || m_bands.size() < bandsAhead;
}

bool BandWriter::stopped()
{
    const std::lock_guard lock(m_mutex);
    return m_stopped;
}

bool BandWriter::begin(const PixelRect& rows)
{
    m_pool.help(*m_running, [this] { return hasRoom(); });
    const std::lock_guard lock(m_mutex);
    if (m_stopped)
        return false;
    Band band;
    band.rect = rows;
    if (!m_spare.empty()) {
        band.pixels = std::move(m_spare.back());
        m_spare.pop_back();
    }
    band.pixels.resize(m_rowBytes * size_t(rows.height()));
    m_bands.push_back(std::move(band));
    m_drawing = &m_bands.back();
    return true;
}

void BandWriter::narrow(const TilePlanes& planes, const PixelRect& tile)
{
    Band& band = *m_drawing;
    const size_t left = size_t(tile.x0 - m_rect.x0) * size_t(bytesPerPixel(m_format));
    for (int y = tile.y0; y < tile.y1; ++y) {
        const float* rows[4];
        for (int c = 0; c < 4; ++c)
            rows[c] = planes.plane[c] ? planes.at(c, tile.x0, y) : nullptr;
        const size_t fromTop = size_t(band.rect.y1 - 1 - y);
        narrowRow(rows, tile.width(), m_format, &band.pixels[fromTop * m_rowBytes + left]);
    }
}

void BandWriter::end()
{
    {
        const std::lock_guard lock(m_mutex);
        m_drawing->complete = true;
    }
    m_pool.notify();
}

ThreadPool::Step BandWriter::writeNext()
{
    std::unique_lock lock(m_mutex);
    if (m_stopped)
        return ThreadPool::Step::Finished;
    if (m_writing || m_bands.empty() || !m_bands.front().complete)
        return ThreadPool::Step::Waiting;
    m_writing = true;
    Band& band = m_bands.front();
    lock.unlock();
    const auto start = std::chrono::steady_clock::now();
    Result<void> written;
    try {
        written = m_sink.writeRows(band.pixels.data(), band.rect.height(), m_rowBytes);
    } catch (...) {
        lock.lock();
        m_writing = false;
        m_stopped = true;
        throw;
    }
    const std::chrono::duration<double, std::milli> spent =
        std::chrono::steady_clock::now() - start;
    lock.lock();
    m_writing = false;
    m_sinkMilliseconds += spent.count();
    const bool last = band.rect.y0 == m_rect.y0;
    m_spare.push_back(std::move(band.pixels));
    m_bands.pop_front();
    if (!written)
        m_result = std::move(written);
    m_stopped = m_stopped || last || !m_result.ok();
    return m_stopped ? ThreadPool::Step::Finished : ThreadPool::Step::Worked;
}

Result<void> BandWriter::finish()
{
    const std::shared_ptr<ThreadPool::Running> running = std::move(m_running);
    m_pool.finish(*running);
    return m_result;
}

} // namespace orvane
