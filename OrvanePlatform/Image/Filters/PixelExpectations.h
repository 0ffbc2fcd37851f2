#pragma once

#include "Filters/FilterTesting.h"

#include <gtest/gtest.h>

#include <array>

namespace orvane::FilterTesting {

using Rgba = std::array<float, 4>;

/// Pixel (x, y) in both evaluators.
inline void expectPixel(const CIImage& image, int x, int y, const Rgba& expected,
                        float tolerance = 1e-6f)
{
    const PixelRect rect{x, y, x + 1, y + 1};
    const std::vector<float> drawn[] = {reference(image, rect), tiled(image, rect)};
    for (const auto& pixel : drawn) {
        ASSERT_EQ(pixel.size(), 4u);
        for (size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(pixel[c], expected[c], tolerance)
                << (&pixel == drawn ? "reference" : "tiled") << " pixel " << x << ", " << y
                << ", channel " << c;
    }
}

/// Both evaluators agree over the rectangle.
inline void expectSameDrawn(const CIImage& image, const PixelRect& rect, double tolerance = 2e-6)
{
    EXPECT_LE(largestDifference(tiled(image, rect), reference(image, rect)), tolerance);
}

/// One pixel at (0, 0), with alpha.
inline CIImage onePixel(const Rgba& color)
{
    return pixelsImage(1, 1, {color.begin(), color.end()});
}

/// A picture of random colours, values beyond 0..1 among them.
inline CIImage randomPicture(int width, int height, bool opaque, uint32_t seed = 1)
{
    const size_t pixels = size_t(width) * size_t(height);
    if (opaque)
        return opaqueImage(width, height, randomFloats(pixels * 3, -0.2f, 1.3f, seed));
    std::vector<float> samples = randomFloats(pixels * 4, 0, 1, seed);
    for (size_t i = 0; i < samples.size(); i += 4) {
        // Alphas of 0, 1/4, 1/2 and 1: a division by them is exact.
        constexpr float alphas[] = {0, 0.25f, 0.5f, 1};
        samples[i + 3] = alphas[size_t(samples[i + 3] * 3.999f)];
        for (size_t c = 0; c < 3; ++c)
            samples[i + c] *= samples[i + 3];
    }
    return pixelsImage(width, height, samples);
}

} // namespace orvane::FilterTesting
