#pragma once

#include "Bitmap.h"
#include "ImageProperties.h"
#include "Result.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

using Bytes = std::span<const uint8_t>;

/// What the samples of a decoder's bitmap are, before profiles are looked at.
/// CMYK and Lab lie in a bitmap of four and three channels that only applyColor() understands.
enum class SampleModel {
    Color, ///< grey or RGB, with or without alpha
    Cmyk, ///< 0 is no ink
    Lab, ///< CIE L*a*b* of D50: L in 0..100, a and b as they are; F32
};

/// One format's decoder hands this out; decodePicture() makes a DecodedPicture of it.
struct DecoderOutput {
    std::shared_ptr<Bitmap> bitmap;
    SampleModel model = SampleModel::Color;
    std::vector<uint8_t> icc; ///< the embedded profile, unchecked; empty when there is none
    /// What the file itself says of its colours in place of a profile; absent when it says nothing.
    std::optional<SampleConversion> described;
    ImageProperties properties; ///< as found: orientation not yet neutral
    int orientation = 0; ///< 0: as the Exif block says
    std::string note;
};

/// The blocks of metadata beyond which none is kept: no camera writes more.
constexpr size_t largestExifBytes = size_t(4) << 20;
constexpr size_t largestXmpBytes = size_t(4) << 20;
constexpr size_t largestIptcBytes = size_t(1) << 20;
constexpr size_t largestProfileBytes = size_t(16) << 20;

/// Keeps the block unless it is larger than the limit.
void keepBlock(std::vector<uint8_t>& target, Bytes block, size_t limit);
/// Keeps the text up to its first NUL, unless it is larger than largestXmpBytes.
void keepXmp(ImageProperties& properties, Bytes packet);

namespace sentence {

constexpr const char* empty = "The file is empty.";
constexpr const char* notAPicture = "The file is not a picture that Orvane can read.";
constexpr const char* endsEarly =
    "The picture's data ends early; the file is damaged or incomplete.";
constexpr const char* noMemory = "There is not enough memory to open this picture.";
constexpr const char* damaged = "The picture is damaged and cannot be read.";
constexpr const char* partlyDamaged = "The file is damaged; parts of the picture may look wrong.";

} // namespace sentence

constexpr int largestSide = 65535;
constexpr int largestMegapixels = 1000;

/// The most bytes that opening one picture may take: half of the machine's memory.
uint64_t memoryBudget();

/// Whether this many bytes for each pixel stay within the budget.
Result<void> checkMemory(uint64_t width, uint64_t height, size_t bytesPerPixel, uint64_t budget);

/// Whether a picture of this size may be decoded, asked before anything is allocated for it.
/// bytesPerPixel counts the bitmap and what the decoder needs beside it. pixelsPerByte is the most
/// that the format can hold in one byte of file: a larger picture cannot be complete.
Result<void> checkPictureSize(uint64_t width, uint64_t height, size_t bytesPerPixel,
                              size_t fileBytes, double pixelsPerByte);

/// Runs work(firstRow, endRow) over bands of all rows on the machine's cores. `work` must not
/// throw.
template <class Work> void forEachBand(int height, const Work& work);

/// Numbers out of hostile bytes: whatever lies outside reads as 0.
class ByteReader {
public:
    ByteReader(Bytes bytes, bool bigEndian)
        : m_bytes(bytes)
        , m_bigEndian(bigEndian)
    {
    }
    uint64_t size() const { return m_bytes.size(); }
    bool bigEndian() const { return m_bigEndian; }
    uint64_t number(uint64_t offset, int byteCount) const;
    uint16_t u16(uint64_t offset) const { return uint16_t(number(offset, 2)); }
    uint32_t u32(uint64_t offset) const { return uint32_t(number(offset, 4)); }
    /// The part of the range that exists.
    Bytes range(uint64_t offset, uint64_t length) const;

private:
    Bytes m_bytes;
    bool m_bigEndian;
};

bool startsWith(Bytes bytes, std::string_view prefix);

/// Straight colour out of premultiplied, in place; integer and F32 bitmaps with alpha.
void unpremultiply(Bitmap& bitmap);

namespace detail {
void runBands(int height, void (*run)(const void* work, int first, int end), const void* work);
}

template <class Work> void forEachBand(int height, const Work& work)
{
    detail::runBands(
        height,
        [](const void* body, int first, int end) { (*static_cast<const Work*>(body))(first, end); },
        &work);
}

} // namespace orvane
