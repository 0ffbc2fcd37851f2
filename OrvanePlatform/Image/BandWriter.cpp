#include "BandWriter.h"

#include "PlaneConversion.h"
#include "Schedule.h"

#include <algorithm>
#include <chrono>

namespace orvane {

namespace {

/// One band at the sink, one waiting, the rest being drawn.
constexpr size_t bandsAhead = 2 + Schedule::stepsAtOnce;

} // namespace

BandWriter::BandWriter(const PixelRect& rect, RowSink& sink)
    : m_rect(rect)
    , m_sink(sink)
    , m_format(sink.format())
    , m_rowBytes(size_t(rect.width()) * size_t(bytesPerPixel(m_format)))
{
}

bool BandWriter::stopped() const
{
    const std::lock_guard lock(m_mutex);
    return m_stopped;
}

Result<void> BandWriter::result() const
{
    const std::lock_guard lock(m_mutex);
    return m_result;
}

bool BandWriter::begin(const PixelRect& rows)
{
    const std::lock_guard lock(m_mutex);
    if (m_stopped || m_bands.size() == bandsAhead)
        return false;
    Band band;
    band.rect = rows;
    if (!m_spare.empty()) {
        band.pixels = std::move(m_spare.back());
        m_spare.pop_back();
    }
    band.pixels.resize(m_rowBytes * size_t(rows.height()));
    m_bands.push_back(std::move(band));
    return true;
}

/// To be asked under the lock.
BandWriter::Band& BandWriter::bandOf(const PixelRect& rows)
{
    return *std::find_if(m_bands.begin(), m_bands.end(),
                         [&](const Band& band) { return band.rect.contains(rows); });
}

void BandWriter::take(const TilePlanes& planes, const PixelRect& tile)
{
    std::unique_lock lock(m_mutex);
    Band& band = bandOf(tile);
    lock.unlock();
    const size_t left = size_t(tile.x0 - m_rect.x0) * size_t(bytesPerPixel(m_format));
    for (int y = tile.y0; y < tile.y1; ++y) {
        const float* rows[4];
        for (int c = 0; c < 4; ++c)
            rows[c] = planes.plane[c] ? planes.at(c, tile.x0, y) : nullptr;
        const size_t fromTop = size_t(band.rect.y1 - 1 - y);
        narrowRow(rows, tile.width(), m_format, &band.pixels[fromTop * m_rowBytes + left]);
    }
}

void BandWriter::end(const PixelRect& rows)
{
    const std::lock_guard lock(m_mutex);
    bandOf(rows).complete = true;
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
    // What it throws ends the job.
    Result<void> written = m_sink.writeRows(band.pixels.data(), band.rect.height(), m_rowBytes);
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

} // namespace orvane
