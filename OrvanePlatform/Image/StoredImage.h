#pragma once

#include "PixelMemory.h"
#include "TilePlanes.h"

#include <cstdint>
#include <optional>

namespace orvane {

/// How an intermediate is kept. Compact floats have 12 significant bits (CompactFloat-inl.h): an
/// error of at most 0.03 of an 8-bit level after encoding, at half the bytes; where black is then
/// made out of what is light, up to 0.25. Draws for 16-bit and float output and those of pictures
/// that have float samples keep floats.
enum class StoredFormat { Compact, Float };

/// A drawn intermediate: planes of a rectangle, kept between passes and, in the cache, between
/// draws. Different tiles may be written from different threads at once.
///
/// It may hold fewer rows than its rectangle has: then it is a window, in which row y takes the
/// place of row y + rows.
class StoredImage {
public:
    StoredImage(const PixelRect& rect, bool opaque, StoredFormat format, int rows,
                const std::shared_ptr<SpareMemory>& spares = {});
    StoredImage(const PixelRect& rect, bool opaque, StoredFormat format)
        : StoredImage(rect, opaque, format, rect.height())
    {
    }

    const PixelRect& rect() const { return m_rect; }
    bool opaque() const { return m_opaque; }
    StoredFormat format() const { return m_format; }
    size_t byteSize() const { return m_planeElements * elementSize() * size_t(m_opaque ? 3 : 4); }

    /// The planes must cover `rect`, which must lie within this one's.
    void write(const TilePlanes& planes, const PixelRect& rect);
    /// The rectangle as floats; it must lie within this one's.
    TilePlanes read(const PixelRect& rect, TileArena& arena) const;
    /// One of its rows into row y of `planes`, which must lie within this one's rectangle.
    void readRow(int y, const TilePlanes& planes) const;
    /// The rectangle where it lies, if it lies there as floats and in one piece; not to be written.
    std::optional<TilePlanes> view(const PixelRect& rect);
    /// Direct access to a row of floats; only of images in StoredFormat::Float.
    float* floatRow(int channel, int y);
    const float* floatRow(int channel, int y) const;
    /// The same of compact floats; only of images in StoredFormat::Compact.
    const uint16_t* compactRow(int channel, int y) const;
    /// From a row of one channel to the same row of the next, in samples.
    std::ptrdiff_t channelStride() const { return std::ptrdiff_t(m_planeElements); }

private:
    size_t elementSize() const { return m_format == StoredFormat::Compact ? 2 : 4; }
    size_t planeBytes() const { return m_planeElements * elementSize(); }
    uint8_t* element(int channel, int x, int y) const;

    PixelRect m_rect;
    int m_rows;
    bool m_opaque;
    StoredFormat m_format;
    std::ptrdiff_t m_stride;
    size_t m_planeElements;
    PixelMemory m_memory;
};

} // namespace orvane
