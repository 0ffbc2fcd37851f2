// Passes are as planned, and what they draw is the reference's picture: the same bits however it is
// cut into tiles and threads.

#include "EngineTesting.h"
#include "Filters/CIFilter.h"
#include "Filters/FilterTesting.h"
#include "Filters/Patches.h"
#include "Node.h"
#include "PixelKernels.h"
#include "Planner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {
namespace {

using namespace EngineTesting;
using namespace FilterTesting;

TEST(Plan, PassesEndOnlyWhereTheyMust)
{
    const CIImage source = photograph(1200, 900);
    const CIImage bright = CIFilter::exposureAdjust(source, 0.5);
    const CIImage graded = CIFilter::vibrance(
        CIFilter::colorControls(CIFilter::gammaAdjust(bright, 1.2), {.saturation = 1.3}), 0.4);
    const auto flip = CGAffineTransform{-1, 0, 0, 1, 1200, 0};
    const auto patched = [&](const std::vector<int>& places) {
        const CIImage ground = Patches::ground(graded);
        std::vector<CIImage> patches;
        for (const int x : places)
            patches.push_back(ground.transformed(CGAffineTransform::translation(40, 30))
                                  .cropped(CGRect(x, x / 2, 20, 20)));
        return CIFilter::exposureAdjust(Patches::laidOn(graded, patches), 0.1);
    };
    const struct {
        const char* name;
        CIImage image;
        int passes;
        int stored;
    } cases[] = {
        {"a source", source, 1, 0},
        {"a run of pointwise operations", graded, 1, 0},
        {"moves, flips, crops and clamps between them",
         CIFilter::exposureAdjust(
             graded.transformed(flip).cropped({10, 10, 900, 700}).clampedToExtent(), 0.1)
             .cropped({0, 0, 1000, 800}),
         1, 0},
        {"a mix of a picture with its own grade", CIFilter::dissolveTransition(bright, graded, 0.5),
         1, 0},
        {"a narrow blur is drawn with a rim", CIFilter::unsharpMask(graded, 1, 0.5), 1, 0},
        {"a wide blur reads a stored picture", CIFilter::unsharpMask(graded, 5, 0.5), 2, 1},
        {"a large blur of a grade: the grade, its reduction, the result",
         CIFilter::unsharpMask(graded, 30, 0.5), 3, 2},
        {"a large blur of the source itself needs no copy of it",
         CIFilter::unsharpMask(source, 30, 0.5), 2, 1},
        {"a slight rotation samples as it goes",
         graded.transformed(CGAffineTransform::rotation(0.03)), 1, 0},
        {"a steep one stores first", graded.transformed(CGAffineTransform::rotation(0.7)), 2, 1},
        {"but not what comes straight from a file",
         source.transformed(CGAffineTransform::rotation(0.7)), 1, 0},
        {"a reduction", CIFilter::lanczosScaleTransform(graded, 0.3), 1, 0},
        {"what was resampled is stored to be resampled again",
         graded.transformed(CGAffineTransform::rotation(0.02))
             .cropped({30, 30, 1100, 800})
             .transformed(CGAffineTransform::rotation(-0.02)),
         2, 1},
        {"one patch on a picture: its surroundings, itself, the picture", patched({60}), 3, 1},
        {"patches all over a picture have it stored", patched({60, 800}), 4, 1},
        {"equal recipes built twice are drawn once",
         CIFilter::maximumCompositing(CIFilter::gaussianBlur(graded.clampedToExtent(), 30),
                                      CIFilter::gaussianBlur(graded.clampedToExtent(), 30))
             .cropped(graded.extent()),
         2, 1},
    };
    for (const auto& c : cases) {
        DrawStatistics statistics;
        CIContext context;
        drawn(c.image, context, PixelFormat::RGBA8, {.statistics = &statistics});
        EXPECT_EQ(statistics.passes, c.passes) << c.name;
        EXPECT_EQ(statistics.storedImages, c.stored) << c.name;
    }
}

TEST(Plan, OnlyTheAskedRectangleIsDrawn)
{
    const CIImage image = everything(photograph(300, 220));
    const auto whole = tiled(image, pixels(image));
    const PixelRect all = pixels(image);
    const PixelRect part{all.x0 + 31, all.y0 + 17, all.x0 + 90, all.y0 + 60};
    const auto piece = tiled(image, part);
    for (int y = part.y0; y < part.y1; ++y) {
        for (int x = part.x0; x < part.x1; ++x) {
            const auto inWhole = size_t((y - all.y0) * all.width() + x - all.x0) * 4;
            const auto inPiece = size_t((y - part.y0) * part.width() + x - part.x0) * 4;
            for (size_t c = 0; c < 4; ++c)
                ASSERT_EQ(piece[inPiece + c], whole[inWhole + c]) << x << ", " << y;
        }
    }
    const Plan plan = makePlan(*photograph(4000, 3000).node(), {100, 100, 200, 150}, 0, 0);
    EXPECT_EQ(plan.passes.back().region, (PixelRect{100, 100, 200, 150}));
}

TEST(Tiles, AnySizeOrderAndNumberOfThreadsGiveTheSameBits)
{
    for (const int channels : {3, 4}) {
        const CIImage image = everything(photograph(210, 160, channels));
        for (const PixelFormat format :
             {PixelFormat::RGBA8, PixelFormat::RGBA16, PixelFormat::RGBAFloat}) {
            const auto expected = drawn(image, CIContext({.threads = 1}), format);
            const CIContext::Options settings[] = {
                {.threads = 1, .tileWidth = 64, .tileHeight = 64, .shuffleSeed = 3},
                {.threads = 3, .tileWidth = 33, .tileHeight = 17, .shuffleSeed = 11},
                {.threads = 8, .tileWidth = 7, .tileHeight = 50, .shuffleSeed = 5},
                {.threads = 2, .tileWidth = 500, .tileHeight = 1}};
            for (const CIContext::Options& options : settings)
                EXPECT_EQ(drawn(image, CIContext(options), format), expected)
                    << options.threads << " threads, tiles of " << options.tileWidth << " x "
                    << options.tileHeight;
        }
    }
}

TEST(Tiles, AgreeWhereABlurTakesSeveralTilesAcross)
{
    const CIImage image =
        CIFilter::unsharpMask(CIFilter::gaussianBlur(photograph(2600, 150).clampedToExtent(), 6)
                                  .cropped({0, 0, 2600, 150}),
                              7, 0.6);
    const auto bytes = drawn(image, CIContext({.threads = 1}), PixelFormat::RGBA16);
    for (const uint64_t seed : {0, 3}) {
        const CIContext cut(
            {.threads = 4, .tileWidth = 700, .tileHeight = 16, .shuffleSeed = seed});
        EXPECT_EQ(drawn(image, cut, PixelFormat::RGBA16), bytes);
    }
}

TEST(Tiles, ABlurThatAMaskFadesInIsDrawnWhereTheMaskAsksForIt)
{
    const CIColor black{0, 0, 0, 1};
    const CIColor white{1, 1, 1, 1};
    const auto ramp = [&](double reach) {
        return CIFilter::linearGradient({0, 150 + reach}, black, {0, 150 + 2 * reach}, white);
    };
    for (const int channels : {3, 4}) {
        const CIImage picture = photograph(70, 300, channels);
        const CIImage mask = CIFilter::maximumCompositing(ramp(40), ramp(-40));
        const CIImage image = CIFilter::maskedVariableBlur(picture, mask, 40);
        const auto whole =
            drawn(image, CIContext({.tileWidth = 512, .tileHeight = 512}), PixelFormat::RGBAFloat);
        for (const auto& [width, height] : {std::pair{33, 17}, std::pair{512, 1}})
            EXPECT_EQ(drawn(image, CIContext({.tileWidth = width, .tileHeight = height}),
                            PixelFormat::RGBAFloat),
                      whole)
                << width << " x " << height;
        const auto fast = tiled(image, pixels(image));
        const auto exact = reference(image, pixels(image));
        for (size_t i = 0; i < fast.size(); ++i)
            ASSERT_NEAR(fast[i], exact[i], 1e-3) << "row " << i / 4 / 70;
        // A quarter of the radius is mixed in up to half of it: within 40 + 20 rows of the middle.
        const Plan plan = makePlan(*image.node(), pixels(image), 0, 0);
        int quarters = 0;
        for (const StoredPlan& stored : plan.stored) {
            if (stored.form != StoredPlan::Form::ReducedBlur
                || stored.node->as<GaussianNode>()->sigma != 10)
                continue;
            ++quarters;
            EXPECT_LT(stored.region.height() * stored.factor, 150);
        }
        EXPECT_EQ(quarters, 1);
    }
}

int rowsFromOneBlur = 0;
int rowsFromTwo = 0;

/// Its first input; counts whether the second one is the same memory. For draws on one thread.
void compareMemory(const void*, const float*, const PointwiseRow& row)
{
    ++(row.inputs[0][0] == row.inputs[1][0] ? rowsFromOneBlur : rowsFromTwo);
    for (int c = 0; c < 4; ++c) {
        if (row.output[c] && row.output[c] != row.inputs[0][c])
            std::copy_n(row.inputs[0][c], row.count, row.output[c]);
    }
}

TEST(Tiles, BlursOfOnePictureAreOneButAtItsEdges)
{
    static const PointwiseKernel comparison{
        "comparison", 2, OpaqueRule::ChangesAlpha, Cover::None, compareMemory, compareMemory,
        compareMemory};
    const CIImage opaque = photograph(90, 80);
    const CIImage both[] = {CIFilter::gaussianBlur(opaque.clampedToExtent(), 1.7),
                            CIFilter::gaussianBlur(opaque, 1.7)};
    rowsFromOneBlur = rowsFromTwo = 0;
    drawn(applyKernel(comparison, Parameters{}, both, opaque.extent(), false),
          CIContext({.threads = 1, .tileWidth = 30, .tileHeight = 20}), PixelFormat::RGBAFloat);
    // Of 3 x 4 tiles of 20 rows, two have 6 pixels of the picture all around.
    EXPECT_EQ(rowsFromOneBlur, 2 * 20);
    EXPECT_EQ(rowsFromTwo, 10 * 20);

    for (const int channels : {3, 4}) {
        const CIImage picture = CIFilter::exposureAdjust(photograph(90, 80, channels), 0.3);
        const CIImage sharp = CIFilter::unsharpMask(picture, 1.7, 0.8); // edges repeated
        const CIImage soft = CIFilter::gaussianBlur(picture, 1.7).cropped(picture.extent());
        for (const CIImage& image : {CIFilter::dissolveTransition(sharp, soft, 0.4),
                                     CIFilter::dissolveTransition(soft, sharp, 0.4)}) {
            const auto exact = reference(image, pixels(image));
            const auto fast = tiled(image, pixels(image));
            for (size_t i = 0; i < fast.size(); ++i)
                ASSERT_NEAR(fast[i], exact[i], 2e-5) << "pixel " << i / 4;
            EXPECT_EQ(
                drawn(image, CIContext({.tileWidth = 13, .tileHeight = 9}), PixelFormat::RGBAFloat),
                drawn(image, CIContext(), PixelFormat::RGBAFloat));
        }
    }
}

TEST(Tiles, AWeightedSumOfOnesIsTheSameInsideAndAtTheEdge)
{
    // The middle of each lies within opaque pixels, its rim does not.
    const CIImage opaque = photograph(90, 80);
    const CIImage cases[] = {
        CIFilter::gaussianBlur(opaque, 2.15),
        CIFilter::colorControls(CIFilter::gaussianBlur(opaque, 5), {.saturation = 2}),
        CIFilter::lanczosScaleTransform(opaque.transformed(CGAffineTransform::rotation(0.3)), 0.6),
        opaque.transformed(CGAffineTransform::translation(-700.3, -411.7))};
    for (const CIImage& image : cases) {
        const auto whole =
            drawn(image, CIContext({.tileWidth = 400, .tileHeight = 400}), PixelFormat::RGBAFloat);
        EXPECT_EQ(
            drawn(image, CIContext({.tileWidth = 7, .tileHeight = 5}), PixelFormat::RGBAFloat),
            whole);
    }
}

TEST(Tiles, AgreeWithTheReference)
{
    for (const int channels : {3, 4}) {
        const CIImage image = everything(photograph(150, 110, channels));
        const auto fast = tiled(image, pixels(image));
        const auto exact = reference(image, pixels(image));
        double worst = 0;
        for (size_t i = 0; i < fast.size(); ++i)
            worst = std::max(worst, double(std::abs(fast[i] - exact[i])));
        // The large blurs at reduced size are the greater part of it.
        EXPECT_LT(worst, 2e-3) << channels << " channels";
    }
}

void expectTheReferencesPicture(const CIImage& image, const PixelRect& rect, double most)
{
    const auto fast = tiled(image, rect);
    const auto exact = reference(image, rect);
    ASSERT_EQ(fast.size(), exact.size());
    for (size_t i = 0; i < fast.size(); ++i)
        ASSERT_NEAR(fast[i], exact[i], most) << "sample " << i;
}

TEST(Tiles, RowsThatAreHandedOnAreWholeWhereThePictureEndsWithinItsBounds)
{
    const CIImage graded = CIFilter::exposureAdjust(photograph(150, 110), 0.3);
    const CIImage caption = photograph(20, 10);
    const PixelRect around{-10, -5, 170, 130};
    expectTheReferencesPicture(graded.cropped({20, 30, 90, 60}), around, 1e-5);
    expectTheReferencesPicture(caption.compositedOver(graded), around, 1e-5);
    expectTheReferencesPicture(graded.cropped({5, 5, 100, 90}).compositedOver(caption), around,
                               1e-5);
}

TEST(Tiles, FewPatchesAreLaidOnAsThePictureIsDrawn)
{
    const CIImage graded = CIFilter::exposureAdjust(photograph(300, 300), 0.3);
    const CIImage ground = Patches::ground(graded);
    const auto patch = [&](int x, int y, int width, int height, double dx, double dy) {
        return CIFilter::exposureAdjust(ground.transformed(CGAffineTransform::translation(dx, dy))
                                            .cropped(CGRect(x, y, width, height)),
                                        0.2);
    };
    const CIImage image = Patches::laidOn(graded,
                                          {patch(100, 100, 20, 24, 14.5, 8),
                                           patch(130, 120, 25, 18, -28, -14), // from the first
                                           patch(112, 110, 30, 14, 9, 20)}); // over both
    const PixelRect part = patch(108, 104, 24, 12, 0, 0).node()->extent.rect;
    for (const CIImage& read :
         {image, CIFilter::vibrance(image, 0.4), CIFilter::unsharpMask(image, 1, 0.5),
          CIFilter::dissolveTransition(image, graded, 0.3)}) {
        expectTheReferencesPicture(read, {-10, -5, 310, 320}, 1e-3);
        expectTheReferencesPicture(read, part, 1e-3);
        const auto whole = drawn(read, CIContext({.threads = 1}), PixelFormat::RGBA8);
        for (const auto& [width, height] : {std::pair{33, 17}, std::pair{500, 1}})
            EXPECT_EQ(drawn(read,
                            CIContext({.tileWidth = width, .tileHeight = height, .shuffleSeed = 5}),
                            PixelFormat::RGBA8),
                      whole);
    }
}

TEST(Tiles, ALargeBlurFadesAtTheEdgesOfAPictureInMemory)
{
    const CIImage source = photograph(1300, 240);
    const CIImage stored = CIFilter::unsharpMask(source, 6, 0.5);
    const CIImage image = CIFilter::dissolveTransition(
        CIFilter::gaussianBlur(stored, 5.5).cropped(stored.extent()), stored, 0.25);
    expectTheReferencesPicture(image, pixels(image), 2e-3);
}

} // namespace
} // namespace orvane
