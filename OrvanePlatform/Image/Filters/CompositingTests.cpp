#include "Filters/CIFilter.h"

#include "Filters/PixelExpectations.h"
#include "Node.h"

#include <cmath>
#include <functional>
#include <limits>

namespace orvane {
namespace {

using namespace FilterTesting;

using Pair = CIImage (*)(const CIImage&, const CIImage&);

CIImage solid(double level, double alpha = 1)
{
    // 0 and 1 are their own encodings.
    return CIImage::withColor({level, level, level, alpha});
}

TEST(Compositing, FollowsThePublishedNumbers)
{
    const struct {
        const char* what;
        Pair operation;
        Rgba input;
        Rgba background;
        Rgba expected;
    } cases[] = {
        {"screen",
         CIFilter::screenBlendMode,
         {0.3f, 0.5f, 0.8f, 1},
         {0.2f, 0.5f, 1.5f, 1},
         {0.44f, 0.75f, 1.5f, 1}},
        {"screen of half covered pixels",
         CIFilter::screenBlendMode,
         {0.25f, 0, 0.5f, 0.5f},
         {0.5f, 0.25f, -0.5f, 0.5f},
         {0.625f, 0.25f, 0, 0.75f}},
        {"maximum",
         CIFilter::maximumCompositing,
         {0.2f, 0.7f, 0.1f, 1},
         {0.5f, 0.3f, 0.1f, 1},
         {0.5f, 0.7f, 0.1f, 1}},
        {"maximum of alpha too",
         CIFilter::maximumCompositing,
         {0.5f, 0, 0.25f, 0.5f},
         {0.125f, 0.25f, -1, 0.25f},
         {0.5f, 0.25f, 0.25f, 0.5f}},
        {"addition keeps signs and a high alpha",
         CIFilter::additionCompositing,
         {0.3f, -0.2f, 0, 0.5f},
         {0.3f, 0.1f, -0.4f, 0.75f},
         {0.6f, -0.1f, -0.4f, 1.25f}},
        {"over",
         CIFilter::sourceOverCompositing,
         {0.2f, 0.2f, 0.2f, 0.5f},
         {0.4f, 0.4f, 0.4f, 1},
         {0.4f, 0.4f, 0.4f, 1}},
        {"over a half covered one",
         CIFilter::sourceOverCompositing,
         {0.5f, 0, 2, 0.5f},
         {0, 0.5f, 0.25f, 0.5f},
         {0.5f, 0.25f, 2.125f, 0.75f}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        expectPixel(c.operation(onePixel(c.input), onePixel(c.background)), 0, 0, c.expected);
    }
}

TEST(Compositing, DissolvesByTheTimeHeldToItsRange)
{
    const CIImage input = opaqueImage(1, 1, {0.2f, 0.2f, 0.2f});
    const CIImage target = opaqueImage(1, 1, {0.8f, 0.8f, 0.8f});
    expectPixel(CIFilter::dissolveTransition(input, target, 0.25), 0, 0, {0.35f, 0.35f, 0.35f, 1});
    EXPECT_TRUE(CIFilter::dissolveTransition(input, target, -3).isSame(input));
    EXPECT_TRUE(CIFilter::dissolveTransition(input, target, 3).isSame(target));
    // The target reaches further: at time 0 its pixels are drawn, transparent.
    const CIImage wide = CIFilter::dissolveTransition(input, solid(1), 0);
    EXPECT_TRUE(wide.extent().isInfinite());
    expectPixel(wide, 0, 0, {0.2f, 0.2f, 0.2f, 1});
    expectPixel(wide, 5, 0, {0, 0, 0, 0});
}

TEST(Compositing, BlendsByTheMaskAsItIsStored)
{
    const CIImage light = opaqueImage(1, 1, {0.8f, 0.8f, 0.8f});
    const CIImage dark = opaqueImage(1, 1, {0.2f, 0.2f, 0.2f});
    const CIImage half = onePixel({0.5f, 0.5f, 0.5f, 0.5f});
    expectPixel(CIFilter::blendWithMask(light, dark, half), 0, 0, {0.5f, 0.5f, 0.5f, 1});
    expectPixel(CIFilter::blendWithMask(light, dark, onePixel({4, 4, 4, 1})), 0, 0,
                {0.8f, 0.8f, 0.8f, 1});
    // A colour counts by its luma: 0.7154 of green.
    expectPixel(CIFilter::blendWithMask(light, dark, onePixel({0, 1, 0, 1})), 0, 0,
                {0.62924f, 0.62924f, 0.62924f, 1});
    expectPixel(CIFilter::blendWithMask(onePixel({0, 0, 0, 0}), dark, onePixel({1, 1, 1, 1})), 0, 0,
                {0.2f, 0.2f, 0.2f, 1});
    // Beyond the input the background shows, beyond the mask too.
    const CIImage white = solid(1);
    const CIImage wide = CIFilter::blendWithMask(light, white, white.cropped({-1, 0, 2, 1}));
    expectPixel(wide, -1, 0, {1, 1, 1, 1});
    expectPixel(wide, 0, 0, {0.8f, 0.8f, 0.8f, 1});
    expectPixel(wide, 1, 0, {1, 1, 1, 1});
    // The mask alone adds nothing to the extent.
    EXPECT_EQ(CIFilter::blendWithMask(light, dark, white).extent(), CGRect(0, 0, 1, 1));
}

TEST(Compositing, SpansTheUnionAndReadsZerosOutside)
{
    const CIImage left = opaqueImage(2, 2, std::vector<float>(12, 0.5f));
    const CIImage right = left.transformed(CGAffineTransform::translation(3, 1));
    const Rgba half{0.5f, 0.5f, 0.5f, 1};
    const CIImage mask = solid(1);
    const struct {
        const char* what;
        std::function<CIImage(const CIImage&, const CIImage&)> operation;
        Rgba onInput;
        Rgba onBackground;
    } cases[] = {
        {"screen", CIFilter::screenBlendMode, half, half},
        {"maximum", CIFilter::maximumCompositing, half, half},
        {"addition", CIFilter::additionCompositing, half, half},
        {"over", CIFilter::sourceOverCompositing, half, half},
        {"dissolve",
         [](const CIImage& a, const CIImage& b) { return CIFilter::dissolveTransition(a, b, 0.5); },
         {0.25f, 0.25f, 0.25f, 0.5f},
         {0.25f, 0.25f, 0.25f, 0.5f}},
        {"mask",
         [&](const CIImage& a, const CIImage& b) { return CIFilter::blendWithMask(a, b, mask); },
         half, half},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const CIImage both = c.operation(left, right);
        EXPECT_EQ(both.extent(), CGRect(0, 0, 5, 3));
        EXPECT_FALSE(both.isOpaque());
        expectPixel(both, 1, 1, c.onInput);
        expectPixel(both, 3, 1, c.onBackground);
        expectPixel(both, 0, 2, {0, 0, 0, 0});
        expectPixel(both, 2, 1, {0, 0, 0, 0});
        EXPECT_TRUE(c.operation(left, solid(1)).extent().isInfinite());
        EXPECT_TRUE(c.operation(solid(1), left).extent().isInfinite());
    }
}

TEST(Compositing, KnowsWhatStaysOpaque)
{
    const CIImage ground = solid(0);
    const CIImage opaque = randomPicture(4, 4, true);
    const CIImage clear = randomPicture(4, 4, false);
    const CIImage moved = opaque.transformed(CGAffineTransform::translation(2, 0));
    const struct {
        const char* what;
        CIImage image;
        bool expected;
    } cases[] = {
        {"over an opaque ground", clear.compositedOver(ground), true},
        {"over a ground that ends", clear.compositedOver(moved), false},
        {"over a clear one", opaque.compositedOver(clear.clampedToExtent()), false},
        {"screen on an opaque one", CIFilter::screenBlendMode(clear, opaque), true},
        {"screen on a clear one", CIFilter::screenBlendMode(opaque, clear), false},
        {"mask on an opaque one", CIFilter::blendWithMask(clear, opaque, clear), true},
        {"mask on a clear one", CIFilter::blendWithMask(opaque, clear, opaque), false},
        {"two opaque", CIFilter::dissolveTransition(opaque, ground.cropped({0, 0, 4, 4}), 0.3),
         true},
        {"an opaque and a clear one", CIFilter::dissolveTransition(opaque, clear, 0.3), false},
        {"two of different places", CIFilter::maximumCompositing(opaque, moved), false},
        {"sums", CIFilter::additionCompositing(opaque, opaque), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.image.isOpaque(), c.expected);
        expectSameDrawn(c.image, {-1, -1, 7, 6});
    }
}

TEST(Compositing, LeavesOutWhatCannotBeSeen)
{
    const CIImage picture = randomPicture(4, 4, true);
    const CIImage clear = randomPicture(4, 4, false);
    const CIImage none;
    EXPECT_TRUE(picture.compositedOver(clear).isSame(picture));
    EXPECT_TRUE(none.compositedOver(clear).isSame(clear));
    EXPECT_TRUE(clear.compositedOver(none).isSame(clear));
    EXPECT_TRUE(CIFilter::screenBlendMode(none, clear).isSame(clear));
    EXPECT_TRUE(CIFilter::additionCompositing(clear, none).isSame(clear));
    EXPECT_TRUE(CIFilter::blendWithMask(none, picture, clear).isSame(picture));
    EXPECT_TRUE(CIFilter::blendWithMask(clear, picture, none).isSame(picture));
    // Without a mask the input's part of the extent remains, empty.
    expectPixel(CIFilter::blendWithMask(solid(1), picture, none), 9, 0, {0, 0, 0, 0});
}

TEST(Compositing, TakesTheOtherOfAMaximumForNoNumber)
{
    // Sources are made finite as they are read: the NaN here is infinity times 0.
    const float huge = std::numeric_limits<float>::max();
    const CIImage bright = opaqueImage(1, 1, {huge, huge, 0.25f});
    const CIImage infinite = CIFilter::additionCompositing(bright, bright);
    const CIImage broken = CIFilter::screenBlendMode(infinite, solid(1));
    ASSERT_TRUE(std::isnan(reference(broken, {0, 0, 1, 1})[0]));
    const CIImage plain = opaqueImage(1, 1, {0.5f, 0.5f, 0.5f});
    expectPixel(CIFilter::maximumCompositing(broken, plain).cropped({0, 0, 1, 1}), 0, 0,
                {0.5f, 0.5f, 1, 1});
    expectPixel(CIFilter::maximumCompositing(plain, broken).cropped({0, 0, 1, 1}), 0, 0,
                {0.5f, 0.5f, 1, 1});
}

TEST(Compositing, TilesAgreeWithTheReference)
{
    const CIImage mask = randomPicture(61, 43, false, 5);
    for (const bool opaque : {true, false}) {
        const CIImage input = randomPicture(67, 45, opaque, 3);
        const CIImage background =
            randomPicture(67, 45, opaque, 4).transformed(CGAffineTransform::translation(3, -5));
        const PixelRect rect{-3, -7, 75, 49};
        for (const Pair operation :
             {CIFilter::screenBlendMode, CIFilter::maximumCompositing,
              CIFilter::additionCompositing, CIFilter::sourceOverCompositing})
            expectSameDrawn(operation(input, background), rect);
        expectSameDrawn(CIFilter::dissolveTransition(input, background, 0.3), rect);
        expectSameDrawn(CIFilter::blendWithMask(input, background, mask), rect);
        // Drawn within the mask alone, wherever that lies; as rows and, under a blur, as planes.
        for (const int dx : {0, 30}) {
            const CIImage blended =
                CIFilter::blendWithMask(CIFilter::exposureAdjust(input, 1), input,
                                        mask.transformed(CGAffineTransform::translation(dx, 4)));
            expectSameDrawn(blended.cropped(input.extent()), rect);
            expectSameDrawn(CIFilter::unsharpMask(blended.cropped(input.extent()), 1, 0.5), rect);
        }
    }
}

} // namespace
} // namespace orvane
