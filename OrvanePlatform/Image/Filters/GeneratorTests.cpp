#include "Filters/CIFilter.h"

#include "Filters/PixelExpectations.h"
#include "Node.h"

#include <limits>

namespace orvane {
namespace {

using namespace FilterTesting;

constexpr CIColor black{0, 0, 0, 1};
constexpr CIColor white{1, 1, 1, 1};
constexpr CIColor clear{0, 0, 0, 0};

Rgba grey(float level)
{
    return {level, level, level, 1};
}

TEST(Generators, FillWithAColour)
{
    const CIImage orange = CIImage::withColor({1, 0.5, 0, 0.5});
    EXPECT_TRUE(orange.extent().isInfinite());
    EXPECT_FALSE(orange.isOpaque());
    expectPixel(orange, -1000, 70000, {0.5f, 0.107021f, 0, 0.5f});
    const CIImage middle = CIImage::withColor({0.5, 0.5, 0.5});
    EXPECT_TRUE(middle.isOpaque());
    expectPixel(middle, 3, -8, grey(0.214041f));
}

TEST(Generators, RampBetweenTwoPoints)
{
    const CIImage up = CIFilter::linearGradient({0, 10}, black, {0, 20}, white);
    EXPECT_TRUE(up.extent().isInfinite());
    EXPECT_TRUE(up.isOpaque());
    expectPixel(up, 40, 15, grey(0.55f));
    expectPixel(up, 0, 9, grey(0), 0);
    expectPixel(up, 0, 20, grey(1), 0);
    // An end is met to the bit, though its distance from the other rounds it away.
    const float faint = float(1e-8 / 12.92);
    expectPixel(CIFilter::linearGradient({0, 0}, white, {1, 0}, {1e-8, 1e-8, 1e-8, 1}), 7, 0,
                grey(faint), 0);
    // Only the way along the line counts: (1.5, 2.5) projects to 3.5 / 8 of it.
    expectPixel(CIFilter::linearGradient({0, 0.5}, white, {4, 4.5}, clear), 1, 2,
                {0.5625f, 0.5625f, 0.5625f, 0.5625f});
    EXPECT_FALSE(CIFilter::linearGradient({0, 0}, white, {4, 4}, clear).isOpaque());
    // A colour is decoded before it is mixed.
    expectPixel(CIFilter::linearGradient({0, 0}, {0.5, 0, 0, 1}, {1, 0}, black), 0, 0,
                {0.1070206f, 0, 0, 1});
}

TEST(Generators, RampBetweenTwoRadii)
{
    const CIImage spot = CIFilter::radialGradient({20, 20}, 6, white, 12, clear);
    const float k = 0.248017f;
    expectPixel(spot, 30, 20, {k, k, k, k});
    expectPixel(spot, 20, 20, {1, 1, 1, 1}, 0);
    expectPixel(spot, 20, 33, {0, 0, 0, 0}, 0);
    // Swapped radii run inwards.
    expectPixel(CIFilter::radialGradient({20, 20}, 12, clear, 6, white), 30, 20, {k, k, k, k});
}

TEST(Generators, HaveAnswersWithoutALength)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    expectPixel(CIFilter::linearGradient({5, 5}, white, {5, 5}, black), 9, 9, grey(1), 0);
    expectPixel(CIFilter::linearGradient({nan, 5}, white, {5, 5}, black), 9, 9, grey(1), 0);
    expectPixel(CIFilter::radialGradient({0, 0}, nan, white, 5, black), 9, 9, grey(1), 0);
    const CIImage disc = CIFilter::radialGradient({0, 0}, 5, white, 5, black);
    expectPixel(disc, 3, 2, grey(1), 0);
    expectPixel(disc, 3, 4, grey(0), 0);
}

TEST(Vignette, FollowsThePublishedFactors)
{
    const CIImage ones = CIImage::withColor(white);
    const struct {
        double intensity;
        float t;
        float factor;
    } cases[] = {
        {1, 0.25f, 0.96387f}, {1, 0.5f, 0.78047f},     {1, 1, 0.21404f},
        {1, 1.5f, 0.01058f},  {-0.5, 0.25f, 1.01836f}, {-0.5, 0.5f, 1.12181f},
        {-0.5, 1, 1.66594f},  {-0.5, 1.5f, 2.33918f},  {7, 1, 0.21404f},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.t);
        const CIImage image = CIFilter::vignetteEffect(ones, {0.5, 0.5}, 100, c.intensity, 0.5);
        expectPixel(image, int(c.t * 100), 0, grey(c.factor), 6e-6f);
    }
    const CIImage corner = ones.cropped({0, 0, 600, 400});
    expectPixel(CIFilter::vignetteEffect(corner, {300, 200}, 450, 0.5, 0.5), 599, 399,
                grey(0.676415f), 3e-6f);
    const CIImage lighter = CIFilter::vignetteEffect(corner, {300, 200}, 450, -1, 0.5);
    expectPixel(lighter, 0, 0, grey(1.879216f), 5e-6f);
    EXPECT_EQ(lighter.extent(), corner.extent());
    EXPECT_TRUE(lighter.isOpaque());
}

TEST(Vignette, KeepsAlphaAndHasAnswersAtTheEnds)
{
    const CIImage picture = randomPicture(37, 29, false);
    EXPECT_TRUE(CIFilter::vignetteEffect(picture, {18, 14}, 20, 0, 0.5).isSame(picture));
    const CIImage dark = CIFilter::vignetteEffect(picture, {18, 14}, 20, 0.8, 0.2);
    expectSameDrawn(dark, {-2, -2, 40, 31});
    const std::vector<float> before = reference(picture, {0, 0, 37, 29});
    const std::vector<float> after = reference(dark, {0, 0, 37, 29});
    for (size_t i = 3; i < before.size(); i += 4)
        ASSERT_EQ(after[i], before[i]);
    // No radius: everything but the centre itself is at the ramp's end.
    const CIImage ones = CIImage::withColor(white);
    const CIImage all = CIFilter::vignetteEffect(ones, {0.5, 0.5}, 0, -1, 0.5);
    expectPixel(all, 0, 0, grey(1), 2e-6f);
    expectPixel(all, 1, 0, grey(4.953846f), 1e-5f);
}

} // namespace
} // namespace orvane
