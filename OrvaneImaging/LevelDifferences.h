#pragma once

#include "CIContext.h"
#include "IntermediateCache.h"
#include "Node.h"
#include "ReferenceRenderer.h"
#include "TiledRenderer.h"

#include <algorithm>
#include <cmath>
#include <vector>

/// How far two drawn pictures are apart as an eye would see it.
namespace orvane::test {

/// A linear value as an 8-bit file holds it, 0..255, but not rounded, to 1e-4. NaN gives NaN.
inline float encodedLevel(float linear)
{
    const float v = std::isnan(linear) ? linear : std::clamp(linear, 0.0f, 1.0f);
    return 255 * (v <= 0.0031308f ? 12.92f * v : 1.055f * std::pow(v, 1 / 2.4f) - 0.055f);
}

/// Differences in 8-bit levels: of the colour over black, as files without alpha take it, and of
/// alpha where there is any.
struct LevelDifferences {
    double mean = 0;
    double percentile99 = 0;
    double largest = 0; ///< infinite where a value is not a number
    int x = 0; ///< of the largest, y upwards
    int y = 0;
    int channel = 0;
    float value = 0; ///< linear
    float expected = 0;
};

/// A sample of a premultiplied pixel as an 8-bit file without alpha holds it: the straight colour,
/// clipped, over black. Alpha itself is on the same scale, and not clipped.
inline float shownLevel(const float* pixel, int channel)
{
    const float alpha = pixel[3];
    if (channel == 3)
        return 255 * alpha;
    if (alpha < 1e-30f)
        return 0;
    return encodedLevel(std::clamp(pixel[channel] / alpha, 0.0f, 1.0f) * std::min(alpha, 1.0f));
}

inline bool isOpaque(const FloatImage& image)
{
    for (size_t i = 3; i < image.samples.size(); i += 4) {
        if (image.samples[i] != 1)
            return false;
    }
    return true;
}

/// The rectangles must be of one size.
inline LevelDifferences levelDifferences(const FloatImage& actual, const FloatImage& expected)
{
    const int channels = isOpaque(actual) && isOpaque(expected) ? 3 : 4;
    LevelDifferences result;
    std::vector<float> all;
    all.reserve(expected.samples.size());
    double sum = 0;
    for (size_t i = 0; i < expected.samples.size(); ++i) {
        const int channel = int(i % 4);
        if (channel >= channels)
            continue;
        const size_t pixelStart = i - i % 4;
        float difference = std::abs(shownLevel(&actual.samples.at(pixelStart), channel)
                                    - shownLevel(&expected.samples[pixelStart], channel));
        if (std::isnan(difference))
            difference = INFINITY;
        all.push_back(difference);
        sum += double(difference);
        if (double(difference) > result.largest) {
            const int pixel = int(i / 4);
            result = {.largest = double(difference),
                      .x = expected.rect.x0 + pixel % expected.rect.width(),
                      .y = expected.rect.y0 + pixel / expected.rect.width(),
                      .channel = channel,
                      .value = actual.samples[i],
                      .expected = expected.samples[i]};
        }
    }
    result.mean = sum / double(all.size());
    const auto place = all.begin() + std::ptrdiff_t(double(all.size()) * 0.99);
    std::nth_element(all.begin(), place, all.end());
    result.percentile99 = double(*place);
    return result;
}

/// The picture by the tiled renderer before it is narrowed: with intermediates as 8-bit results
/// have them (Compact), or as deeper ones do.
inline FloatImage drawnInTiles(const CIImage& image, const PixelRect& rect, StoredFormat format,
                               const CIContext::Options& settings = {})
{
    ThreadPool pool(settings.threads);
    IntermediateCache cache(0);
    const TiledRenderer renderer(pool, cache, settings);
    FloatImage result(rect);
    renderer.draw(*image.node(), rect, format, {},
                  [&](const TilePlanes& planes, const PixelRect& tile) {
                      for (int y = tile.y0; y < tile.y1; ++y) {
                          for (int x = tile.x0; x < tile.x1; ++x) {
                              for (int c = 0; c < 4; ++c)
                                  result.at(x, y)[c] = planes.plane[c] ? *planes.at(c, x, y) : 1;
                          }
                      }
                  });
    return result;
}

} // namespace orvane::test
