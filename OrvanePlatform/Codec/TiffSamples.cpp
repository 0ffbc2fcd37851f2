#include "TiffSamples.h"

#include "HalfFloat.h"

#include <cstring>

namespace orvane {

namespace {

template <class T> T load(const uint8_t* at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

/// `bits` bits at the place, the first bit being the highest: TIFF packs small samples so whatever
/// its byte order is.
uint32_t packed(const uint8_t* source, size_t firstBit, int bits)
{
    uint32_t value = 0;
    for (int i = 0; i < bits; ++i) {
        const size_t bit = firstBit + size_t(i);
        value = value << 1 | (uint32_t(source[bit / 8]) >> (7 - bit % 8) & 1);
    }
    return value;
}

uint32_t integerSample(const TiffLayout& layout, const uint8_t* source, size_t index)
{
    switch (layout.bits) {
    case 8:
        return source[index];
    case 16:
        return load<uint16_t>(source + index * 2);
    case 32:
        return load<uint32_t>(source + index * 4) >> 16;
    default:
        return packed(source, index * size_t(layout.bits), layout.bits);
    }
}

float floatSample(const TiffLayout& layout, const uint8_t* source, size_t index)
{
    switch (layout.bits) {
    case 16:
        return floatFromHalf(load<uint16_t>(source + index * 2));
    case 32:
        return load<float>(source + index * 4);
    default:
        return float(load<double>(source + index * 8));
    }
}

/// L of 0..100, a and b as they are. TIFF 6.0 section 23; ICC's offset form in TIFF supplement 2.
float labSample(const TiffLayout& layout, uint32_t value, int channel)
{
    const bool deep = layout.bits == 16;
    if (channel == 0) {
        const float highest = !deep ? 255.0f : layout.lab == 9 ? 65280.0f : 65535.0f;
        return float(value) * 100 / highest;
    }
    if (layout.lab == 9)
        return deep ? float(value) / 256 - 128 : float(value) - 128;
    return deep ? float(int16_t(uint16_t(value))) / 256 : float(int8_t(uint8_t(value)));
}

/// A sample's full range becomes the output type's: 1 bit to 0 and 255, 12 bits to 0..65535.
uint32_t widened(const TiffLayout& layout, uint32_t value)
{
    if (layout.bits == 8 || layout.bits >= 16)
        return value;
    const uint32_t highest = (uint32_t(1) << layout.bits) - 1;
    const uint32_t target = layout.bits < 8 ? 255 : 65535;
    return (value * target + highest / 2) / highest;
}

void store(Bitmap& bitmap, uint8_t* row, size_t index, uint32_t value)
{
    if (bitmap.type() == SampleType::U8)
        row[index] = uint8_t(value);
    else
        reinterpret_cast<uint16_t*>(row)[index] = uint16_t(value);
}

/// Which of the bitmap's channels the file's sample belongs to; -1 for none.
int channelOf(const TiffLayout& layout, int sample)
{
    if (sample == layout.alphaSample)
        return layout.outputChannels() - 1;
    return sample < layout.colors ? sample : -1;
}

void placeSample(const TiffLayout& layout, const uint8_t* source, size_t index, int sample,
                 Bitmap& bitmap, uint8_t* row, size_t pixel)
{
    const int channel = channelOf(layout, sample);
    if (channel < 0)
        return;
    const size_t base = pixel * size_t(bitmap.channels());
    const bool isColor = sample != layout.alphaSample;
    if (layout.isFloat) {
        const float value = floatSample(layout, source, index);
        reinterpret_cast<float*>(row)[base + size_t(channel)] =
            isColor && layout.isInverted ? 1 - value : value;
        return;
    }
    const uint32_t value = integerSample(layout, source, index);
    if (layout.lab != 0) {
        const float highest = layout.bits == 16 ? 65535.0f : 255.0f;
        reinterpret_cast<float*>(row)[base + size_t(channel)] =
            isColor ? labSample(layout, value, channel) : float(value) / highest;
    } else if (isColor && !layout.palette.empty()) {
        const size_t entries = layout.palette.size() / 3;
        for (size_t c = 0; c < 3; ++c)
            store(bitmap, row, base + c, layout.palette[c * entries + value] >> 8);
    } else {
        const uint32_t highest = bitmap.type() == SampleType::U8 ? 255 : 65535;
        const uint32_t wide = widened(layout, value);
        store(bitmap, row, base + size_t(channel),
              isColor && layout.isInverted ? highest - wide : wide);
    }
}

} // namespace

SampleType TiffLayout::outputType() const
{
    if (isFloat || lab != 0)
        return SampleType::F32;
    return bits <= 8 ? SampleType::U8 : SampleType::U16;
}

bool TiffLayout::isPlainCopy() const
{
    return !isPlanar && !isInverted && lab == 0 && palette.empty() && samples == outputChannels()
        && (alphaSample < 0 || alphaSample == samples - 1)
        && (isFloat ? bits == 32 : bits == 8 || bits == 16);
}

size_t TiffLayout::rowBytes(int pixels) const
{
    return (size_t(pixels) * size_t(isPlanar ? 1 : samples) * size_t(bits) + 7) / 8;
}

void placeTiffSamples(const TiffLayout& layout, const uint8_t* source, Bitmap& bitmap, int x, int y,
                      int count, int plane)
{
    uint8_t* const row = bitmap.row(y);
    if (layout.isPlainCopy()) {
        const size_t pixelBytes = size_t(bitmap.channels()) * sampleSize(bitmap.type());
        std::memcpy(row + size_t(x) * pixelBytes, source, size_t(count) * pixelBytes);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const size_t pixel = size_t(x + i);
        if (layout.isPlanar) {
            placeSample(layout, source, size_t(i), plane, bitmap, row, pixel);
            continue;
        }
        for (int s = 0; s < layout.samples; ++s)
            placeSample(layout, source, size_t(i) * size_t(layout.samples) + size_t(s), s, bitmap,
                        row, pixel);
    }
}

} // namespace orvane
