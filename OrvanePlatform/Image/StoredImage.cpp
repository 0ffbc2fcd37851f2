#include "StoredImage.h"

#include "PlaneConversion.h"

#include <algorithm>
#include <cstring>

namespace orvane {

namespace {

/// An odd number of cache lines, so that the rows above one another do not share their places in
/// the first-level cache; with room for whole vectors, and those who read two at a time, to read
/// past the end of a row without meeting what others write to the next.
std::ptrdiff_t strideFor(int width, size_t elementSize)
{
    const std::ptrdiff_t line = std::ptrdiff_t(64 / elementSize);
    const std::ptrdiff_t lines = (width + 2 * rowPadding + line - 1) / line;
    return (lines + (lines % 2 == 0 ? 1 : 0)) * line;
}

} // namespace

StoredImage::StoredImage(const PixelRect& rect, bool opaque, StoredFormat format, int rows,
                         const std::shared_ptr<SpareMemory>& spares)
    : m_rect(rect)
    , m_rows(rows)
    , m_opaque(opaque)
    , m_format(format)
    , m_stride(strideFor(rect.width(), elementSize()))
    , m_planeElements(size_t(m_stride) * size_t(rows))
    , m_memory(m_planeElements * elementSize() * size_t(opaque ? 3 : 4), spares)
{
}

uint8_t* StoredImage::element(int channel, int x, int y) const
{
    const int row = y - m_rect.y0;
    const size_t index = size_t(channel) * m_planeElements
        + size_t(row < m_rows ? row : row % m_rows) * size_t(m_stride) + size_t(x - m_rect.x0);
    return m_memory.data() + index * elementSize();
}

float* StoredImage::floatRow(int channel, int y)
{
    return static_cast<float*>(static_cast<void*>(element(channel, m_rect.x0, y)));
}

const float* StoredImage::floatRow(int channel, int y) const
{
    return static_cast<const float*>(static_cast<const void*>(element(channel, m_rect.x0, y)));
}

const uint16_t* StoredImage::compactRow(int channel, int y) const
{
    return static_cast<const uint16_t*>(static_cast<const void*>(element(channel, m_rect.x0, y)));
}

void StoredImage::write(const TilePlanes& planes, const PixelRect& rect)
{
    const int width = rect.width();
    const int whole = width / rowPadding * rowPadding;
    uint16_t last[rowPadding];
    const std::vector<float> ones(!m_opaque && planes.opaque() ? size_t(width) + rowPadding : 0,
                                  1.0f);
    for (int y = rect.y0; y < rect.y1; ++y) {
        uint8_t* const row = element(0, rect.x0, y);
        // The rows of a tile come one after the other, however few of them at a time.
        const uint8_t* const nextRow = element(0, rect.x0, std::min(y + 1, m_rect.y1 - 1));
        for (int c = 0; c < (m_opaque ? 3 : 4); ++c) {
            const float* from = planes.plane[c] ? planes.at(c, rect.x0, y) : ones.data();
            uint8_t* const to = row + size_t(c) * planeBytes();
            if (m_format == StoredFormat::Float) {
                std::memcpy(to, from, size_t(width) * sizeof(float));
                continue;
            }
            auto* samples = static_cast<uint16_t*>(static_cast<void*>(to));
            compactFromFloats(from, samples, whole, nextRow + size_t(c) * planeBytes());
            // The neighbouring tile's pixels must not be touched.
            compactFromFloats(from + whole, last, width - whole, last);
            std::copy_n(last, width - whole, samples + whole);
        }
    }
}

std::optional<TilePlanes> StoredImage::view(const PixelRect& rect)
{
    const int first = (rect.y0 - m_rect.y0) % m_rows;
    if (m_format != StoredFormat::Float || first + rect.height() > m_rows)
        return {};
    TilePlanes planes;
    planes.rect = rect;
    planes.stride = m_stride;
    for (int c = 0; c < (m_opaque ? 3 : 4); ++c)
        planes.plane[c] = floatRow(c, rect.y0) + (rect.x0 - m_rect.x0);
    return planes;
}

TilePlanes StoredImage::read(const PixelRect& rect, TileArena& arena) const
{
    const TilePlanes planes = arena.planes(rect, m_opaque);
    for (int y = rect.y0; y < rect.y1; ++y)
        readRow(y, planes);
    return planes;
}

void StoredImage::readRow(int y, const TilePlanes& planes) const
{
    const PixelRect& rect = planes.rect;
    const uint8_t* const row = element(0, rect.x0, y);
    // A tile's row ends before the processor has seen where the reading goes.
    const uint8_t* const nextRow = element(0, rect.x0, std::min(y + 1, rect.y1 - 1));
    for (int c = 0; c < planes.channels(); ++c) {
        const void* const from = row + size_t(c) * planeBytes();
        const uint8_t* const next = nextRow + size_t(c) * planeBytes();
        if (m_format == StoredFormat::Compact) {
            floatsFromCompact(static_cast<const uint16_t*>(from), planes.row(c, y), rect.width(),
                              next);
            continue;
        }
        const size_t rowBytes = size_t(rect.width()) * sizeof(float);
        for (size_t i = 0; i < rowBytes; i += 64)
            __builtin_prefetch(next + i);
        std::memcpy(planes.row(c, y), from, rowBytes);
    }
}

} // namespace orvane
