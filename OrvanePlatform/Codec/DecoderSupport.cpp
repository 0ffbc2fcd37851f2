#include "DecoderSupport.h"

#include <algorithm>
#include <cstring>
#include <thread>

#include <unistd.h>

namespace orvane {

namespace {

std::string sizeText(uint64_t width, uint64_t height)
{
    return std::to_string(width) + " × " + std::to_string(height) + " pixels";
}

template <class Sample> void unpremultiplyRow(Sample* samples, int width, int channels)
{
    constexpr bool integer = sizeof(Sample) < 4;
    constexpr float highest = integer ? float((1 << (8 * sizeof(Sample) % 32)) - 1) : 1.0f;
    for (int x = 0; x < width; ++x, samples += channels) {
        const float alpha = float(samples[channels - 1]);
        for (int c = 0; c + 1 < channels; ++c) {
            const float straight = alpha > 0 ? float(samples[c]) * highest / alpha : 0.0f;
            if constexpr (integer)
                samples[c] = Sample(std::min(straight + 0.5f, highest));
            else
                samples[c] = straight;
        }
    }
}

} // namespace

void keepBlock(std::vector<uint8_t>& target, Bytes block, size_t limit)
{
    if (block.size() <= limit)
        target.assign(block.begin(), block.end());
}

void keepXmp(ImageProperties& properties, Bytes packet)
{
    if (packet.size() > largestXmpBytes)
        return;
    const auto end = std::find(packet.begin(), packet.end(), uint8_t(0));
    properties.xmp.assign(packet.begin(), end);
}

uint64_t memoryBudget()
{
    // The other half is for the editor and the desktop.
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageBytes = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageBytes <= 0)
        return uint64_t(4) << 30;
    return uint64_t(pages) * uint64_t(pageBytes) / 2;
}

Result<void> checkMemory(uint64_t width, uint64_t height, size_t bytesPerPixel, uint64_t budget)
{
    if (width * height * bytesPerPixel > budget)
        return Error{"This picture is " + sizeText(width, height)
                     + ", which is more than this computer's memory can hold."};
    return {};
}

Result<void> checkPictureSize(uint64_t width, uint64_t height, size_t bytesPerPixel,
                              size_t fileBytes, double pixelsPerByte)
{
    if (width == 0 || height == 0)
        return Error{sentence::damaged};
    if (width > largestSide || height > largestSide)
        return Error{"This picture is " + sizeText(width, height)
                     + "; Orvane opens pictures of up to " + std::to_string(largestSide)
                     + " pixels a side."};
    const uint64_t pixels = width * height;
    if (pixels > uint64_t(largestMegapixels) * 1000000)
        return Error{"This picture is " + sizeText(width, height)
                     + "; Orvane opens pictures of up to " + std::to_string(largestMegapixels)
                     + " megapixels."};
    if (double(pixels) > (double(fileBytes) + 1024) * pixelsPerByte)
        return Error{sentence::endsEarly};
    return checkMemory(width, height, bytesPerPixel, memoryBudget());
}

uint64_t ByteReader::number(uint64_t offset, int byteCount) const
{
    if (offset > m_bytes.size() || uint64_t(byteCount) > m_bytes.size() - offset)
        return 0;
    uint64_t value = 0;
    for (int i = 0; i < byteCount; ++i) {
        const int from = m_bigEndian ? i : byteCount - 1 - i;
        value = value << 8 | m_bytes[offset + uint64_t(from)];
    }
    return value;
}

Bytes ByteReader::range(uint64_t offset, uint64_t length) const
{
    if (offset >= m_bytes.size())
        return {};
    return m_bytes.subspan(offset, std::min<uint64_t>(length, m_bytes.size() - offset));
}

bool startsWith(Bytes bytes, std::string_view prefix)
{
    return bytes.size() >= prefix.size()
        && std::memcmp(bytes.data(), prefix.data(), prefix.size()) == 0;
}

void unpremultiply(Bitmap& bitmap)
{
    forEachBand(bitmap.height(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            uint8_t* row = bitmap.row(y);
            if (bitmap.type() == SampleType::U8)
                unpremultiplyRow(row, bitmap.width(), bitmap.channels());
            else if (bitmap.type() == SampleType::U16)
                unpremultiplyRow(reinterpret_cast<uint16_t*>(row), bitmap.width(),
                                 bitmap.channels());
            else if (bitmap.type() == SampleType::F32)
                unpremultiplyRow(reinterpret_cast<float*>(row), bitmap.width(), bitmap.channels());
        }
    });
}

void detail::runBands(int height, void (*run)(const void* work, int first, int end),
                      const void* work)
{
    // A band of fewer rows is not worth a thread's start (about 50 microseconds).
    constexpr int leastRows = 64;
    const int cores = int(std::clamp(std::thread::hardware_concurrency(), 1u, 64u));
    const int bands = std::clamp(height / leastRows, 1, cores);
    std::vector<std::jthread> threads;
    int first = 0;
    for (int band = 0; band + 1 < bands; ++band) {
        const int end = int(int64_t(height) * (band + 1) / bands);
        try {
            threads.emplace_back(run, work, first, end);
        } catch (const std::exception&) {
            break; // no more threads to be had: this one does the rest
        }
        first = end;
    }
    run(work, first, height);
}

} // namespace orvane
