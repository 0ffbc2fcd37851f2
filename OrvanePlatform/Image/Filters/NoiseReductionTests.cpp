#include "Filters/CIFilter.h"

#include "Filters/PixelExpectations.h"
#include "Node.h"

#include <functional>

namespace orvane {
namespace {

using namespace FilterTesting;

/// A grey picture without alpha, of a level for each pixel.
CIImage greys(int width, int height, const std::function<float(int, int)>& level)
{
    std::vector<float> rgb;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            rgb.insert(rgb.end(), 3, level(x, y));
    }
    return opaqueImage(width, height, rgb);
}

TEST(NoiseReduction, FollowsThePublishedNumbers)
{
    const CIImage speck = greys(9, 9, [](int x, int y) { return x == 4 && y == 4 ? 0.2f : 0.18f; });
    const auto middle = [&](double level) { return CIFilter::noiseReduction(speck, level); };
    expectPixel(middle(0.02), 4, 4, {0.183128f, 0.183128f, 0.183128f, 1}, 2e-6f);
    expectPixel(middle(0.05), 4, 4, {0.181881f, 0.181881f, 0.181881f, 1}, 2e-6f);
    const CIImage step = greys(12, 7, [](int x, int) { return x < 6 ? 0.05f : 0.6f; });
    expectPixel(CIFilter::noiseReduction(step, 0.1, 0.4), 6, 3, {0.67787f, 0.67787f, 0.67787f, 1},
                6e-6f);
}

TEST(NoiseReduction, KeepsFlatAreasToTheBit)
{
    for (const float level : {0.18f, 0.0f, 3.7f, -0.4f}) {
        const CIImage flat = greys(21, 9, [&](int, int) { return level; });
        const PixelRect rect{0, 0, 21, 9};
        for (const double noise : {1e-30, 0.001, 0.1}) {
            const CIImage reduced = CIFilter::noiseReduction(flat, noise);
            EXPECT_EQ(tiled(reduced, rect), reference(flat, rect)) << level << " at " << noise;
            EXPECT_EQ(reference(reduced, rect), reference(flat, rect)) << level << " at " << noise;
        }
    }
    const CIImage picture = randomPicture(5, 5, true);
    EXPECT_TRUE(CIFilter::noiseReduction(picture, 0).isSame(picture));
}

// Sharpening a step in near-black would go below 0.
TEST(NoiseReduction, HoldsChannelsThatAreNowhereNegative)
{
    const auto darkSide = [](float left) {
        const CIImage step = greys(
            12, 7, [&](int x, int y) { return x < 6 ? (x == 4 && y == 3 ? left : 0.001f) : 0.9f; });
        return reference(CIFilter::noiseReduction(step, 0.1, 2), {5, 3, 6, 4})[0];
    };
    EXPECT_EQ(darkSide(0.001f), 0);
    EXPECT_LT(darkSide(-0.1f), -0.1f);
}

TEST(NoiseReduction, WeighsTransparentPixelsByTheirOwnColour)
{
    // The same straight grey at two coverages: lightness is equal, so both sides mix freely.
    std::vector<float> rgba;
    for (int x = 0; x < 5; ++x) {
        const float alpha = x < 2 ? 0.5f : 1.0f;
        rgba.insert(rgba.end(), {0.25f * alpha, 0.25f * alpha, 0.25f * alpha, alpha});
    }
    const CIImage picture = pixelsImage(5, 1, rgba);
    // Weights along the row: exp(-k^2 / 4.5) at k = -2, -1, 0, 1, 2.
    const float alpha = 1 - 0.5f * (0.4111123f + 0.8007374f) / 3.4236994f;
    expectPixel(CIFilter::noiseReduction(picture, 0.02), 2, 0,
                {0.25f * alpha, 0.25f * alpha, 0.25f * alpha, alpha}, 2e-6f);
}

TEST(NoiseReduction, TilesAgreeWithTheReference)
{
    // Noise levels magnify: at 0.05 a weight's exponent moves by 60 times the lightness's error of
    // 5e-7, and the pixels here are a whole range apart.
    constexpr double tolerance = 3e-5;
    for (const bool opaque : {true, false}) {
        for (const int width : {1, 2, 15, 16, 17, 33}) {
            const CIImage image = CIFilter::noiseReduction(
                randomPicture(width, 7, opaque, uint32_t(width)), 0.1, 0.6);
            EXPECT_EQ(image.isOpaque(), opaque);
            expectSameDrawn(image, {-1, -1, width + 1, 8}, tolerance);
            // An endless picture, from a place of its own.
            const CIImage endless =
                CIFilter::noiseReduction(randomPicture(width, 7, opaque).clampedToExtent(), 0.05);
            expectSameDrawn(endless, {-3, 4, width, 9}, tolerance);
        }
    }
}

} // namespace
} // namespace orvane
