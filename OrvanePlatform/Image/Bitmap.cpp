#include "Bitmap.h"

#include <atomic>
#include <cmath>

namespace orvane {

size_t sampleSize(SampleType type)
{
    switch (type) {
    case SampleType::U8:
        return 1;
    case SampleType::U16:
    case SampleType::F16:
        return 2;
    case SampleType::F32:
        return 4;
    }
    return 1;
}

namespace {

SampleConversion::Table makeSrgbTable(size_t entries)
{
    auto table = std::make_shared<std::vector<float>>(entries);
    for (size_t i = 0; i < entries; ++i) {
        const double x = double(i) / double(entries - 1);
        (*table)[i] = float(x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4));
    }
    return table;
}

uint64_t nextIdentity()
{
    static std::atomic<uint64_t> next = 1;
    return next.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

SampleConversion::Table srgbDecodingTable(SampleType type)
{
    static const SampleConversion::Table eight = makeSrgbTable(256);
    if (type == SampleType::U8)
        return eight;
    static const SampleConversion::Table sixteen = makeSrgbTable(65536);
    return sixteen;
}

Bitmap::Bitmap(int width, int height, int channels, SampleType type, AlphaKind alpha,
               BitmapContents contents)
    : m_width(width)
    , m_height(height)
    , m_channels(channels)
    , m_type(type)
    , m_alpha(alpha)
    , m_rowBytes(size_t(width) * size_t(channels) * sampleSize(type))
    , m_identity(nextIdentity())
    , m_data(contents == BitmapContents::Zeros ? PixelMemory::zeros(m_rowBytes * size_t(height))
                                               : PixelMemory(m_rowBytes * size_t(height)))
{
}

} // namespace orvane
