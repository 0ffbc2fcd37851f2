#pragma once

#include "PixelMemory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace orvane {

enum class SampleType { U8, U16, F16, F32 };
enum class AlphaKind { None, Straight, Premultiplied };

/// What a new bitmap holds.
enum class BitmapContents { Unset, Zeros };

/// Bytes of one sample: 1, 2, 2 or 4.
size_t sampleSize(SampleType type);

/// How stored integer samples become linear sRGB: a table for each channel, then a matrix.
/// Half and float samples are linear sRGB already and use neither.
struct SampleConversion {
    using Table = std::shared_ptr<const std::vector<float>>;

    /// Red, green, blue; 256 entries for U8 and 65536 for U16. A missing table means sRGB.
    /// A grey bitmap uses the first.
    std::array<Table, 3> curves;
    /// Row-major 3x3 from the linear file primaries to linear sRGB; absent when they are the same.
    std::optional<std::array<float, 9>> matrix;
};

/// The sRGB decoding table for U8 (256 entries) or U16 (65536 entries), made once.
SampleConversion::Table srgbDecodingTable(SampleType type);

/// Pixels as they were in the file: rows from the top, samples interleaved, at the file's own
/// depth. Immutable once shared; the owner of a new one fills it through row().
class Bitmap {
public:
    /// channels: 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA. Width and height at least 1.
    Bitmap(int width, int height, int channels, SampleType type, AlphaKind alpha,
           BitmapContents contents = BitmapContents::Unset);

    int width() const { return m_width; }
    int height() const { return m_height; }
    int channels() const { return m_channels; }
    SampleType type() const { return m_type; }
    AlphaKind alpha() const { return m_alpha; }
    bool hasAlpha() const { return m_channels == 2 || m_channels == 4; }
    size_t rowBytes() const { return m_rowBytes; }
    size_t byteSize() const { return m_rowBytes * size_t(m_height); }
    /// A number that no other bitmap of this process has.
    uint64_t identity() const { return m_identity; }

    /// Row y counted from the top.
    uint8_t* row(int y) { return m_data.data() + m_rowBytes * size_t(y); }
    const uint8_t* row(int y) const { return m_data.data() + m_rowBytes * size_t(y); }

    SampleConversion conversion;

private:
    int m_width;
    int m_height;
    int m_channels;
    SampleType m_type;
    AlphaKind m_alpha;
    size_t m_rowBytes;
    uint64_t m_identity;
    // A decoder writes every row, and touching 100 megapixels twice costs 40 ms.
    PixelMemory m_data;
};

} // namespace orvane
