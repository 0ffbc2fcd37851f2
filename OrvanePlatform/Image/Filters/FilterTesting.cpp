#include "Filters/FilterTesting.h"

#include "Bitmap.h"
#include "CIContext.h"
#include "ReferenceRenderer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace orvane::FilterTesting {

namespace {

CIImage floatImage(int width, int height, int channels, const std::vector<float>& samples)
{
    auto bitmap =
        std::make_shared<Bitmap>(width, height, channels, SampleType::F32,
                                 channels == 4 ? AlphaKind::Premultiplied : AlphaKind::None);
    const size_t perRow = size_t(width) * size_t(channels);
    for (int y = 0; y < height; ++y)
        std::memcpy(bitmap->row(height - 1 - y), &samples.at(size_t(y) * perRow),
                    perRow * sizeof(float));
    return CIImage::withBitmap(bitmap);
}

} // namespace

CIImage pixelsImage(int width, int height, const std::vector<float>& rgba)
{
    return floatImage(width, height, 4, rgba);
}

CIImage opaqueImage(int width, int height, const std::vector<float>& rgb)
{
    return floatImage(width, height, 3, rgb);
}

std::vector<float> reference(const CIImage& image, const PixelRect& rect)
{
    return drawReference(image, rect).samples;
}

std::vector<float> tiled(const CIImage& image, const PixelRect& rect)
{
    static const CIContext context({.threads = 2});
    const size_t perRow = size_t(rect.width()) * 4;
    std::vector<float> fromTop(perRow * size_t(rect.height()));
    if (!context.render(image, fromTop.data(), perRow * sizeof(float), rect.cgRect(),
                        PixelFormat::RGBAFloat))
        return {};
    std::vector<float> upwards;
    for (int y = rect.height() - 1; y >= 0; --y) {
        const auto row = fromTop.begin() + std::ptrdiff_t(size_t(y) * perRow);
        upwards.insert(upwards.end(), row, row + std::ptrdiff_t(perRow));
    }
    return upwards;
}

std::vector<float> randomFloats(size_t count, float low, float high, uint32_t seed)
{
    std::mt19937 generator(seed);
    std::vector<float> values(count);
    for (float& value : values)
        value = low + (high - low) * float(generator() >> 8) * 0x1p-24f;
    return values;
}

double largestDifference(const std::vector<float>& a, const std::vector<float>& b)
{
    if (a.size() != b.size())
        return std::numeric_limits<double>::infinity();
    double largest = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        const double difference =
            std::abs(double(a[i]) - double(b[i])) / std::max(1.0, std::abs(double(b[i])));
        if (!(difference <= largest))
            largest = std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
    }
    return largest;
}

} // namespace orvane::FilterTesting
