// Moves, turns, transforms, scaling and blurs: published numbers in both renderers, and exactness
// where it is promised.

#include "Bitmap.h"
#include "BlurWeights.h"
#include "CIContext.h"
#include "Filters/CIFilter.h"
#include "Filters/PixelExpectations.h"
#include "Node.h"
#include "PixelKernels.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <limits>

namespace orvane {
namespace {

using namespace FilterTesting;

/// A row of opaque grey pixels.
CIImage greyRow(const std::vector<float>& values)
{
    std::vector<float> rgba;
    for (const float v : values)
        rgba.insert(rgba.end(), {v, v, v, 1});
    return pixelsImage(int(values.size()), 1, rgba);
}

/// A picture in which every pixel is another.
CIImage numbered(int width, int height)
{
    std::vector<float> rgba;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            rgba.insert(rgba.end(), {float(x) / 16, float(y) / 16, float(x * y % 7) / 8, 1});
    }
    return pixelsImage(width, height, rgba);
}

void expectRed(const CIImage& image, const PixelRect& rect, const std::vector<double>& expected,
               double tolerance)
{
    for (const auto& [name, values] :
         {std::pair{"tiled", tiled(image, rect)}, std::pair{"reference", reference(image, rect)}}) {
        ASSERT_EQ(values.size(), expected.size() * 4);
        for (size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(values[i * 4], expected[i], tolerance) << name << " pixel " << i;
    }
}

PixelRect pixelExtent(const CIImage& image)
{
    return image.node()->extent.rect;
}

TEST(Structure, ClampedAndCroppedReads)
{
    const CIImage row = greyRow({1, 2, 3});
    expectRed(row.clampedToExtent(), {-5, 0, -4, 1}, {1}, 0);
    expectRed(row.clampedToExtent(), {9, 4, 10, 5}, {3}, 0);
    expectRed(row.clampedToExtent(), {-2, -1, 5, 0}, {1, 1, 1, 2, 3, 3, 3}, 0);
    EXPECT_TRUE(row.clampedToExtent().extent().isInfinite());
    EXPECT_TRUE(row.cropped({5, 0, 2, 1}).isEmpty());
    EXPECT_TRUE(CIImage().clampedToExtent().isEmpty());
    // Rounded to the nearest whole pixel, and nothing is moved.
    const CIImage cut = row.cropped({0.6, 0, 1.6, 1});
    EXPECT_EQ(cut.extent(), CGRect(1, 0, 1, 1));
    expectRed(cut, {0, 0, 3, 1}, {0, 2, 0}, 0);
    EXPECT_TRUE(row.cropped({-3, -3, 99, 99}).isSame(row));
}

TEST(Structure, OrientationsAreExactCopies)
{
    // Stored rows from the top: A B / C D / E F.
    auto bitmap = std::make_shared<Bitmap>(2, 3, 1, SampleType::U8, AlphaKind::None);
    const std::string letters = "ABCDEF";
    for (int i = 0; i < 6; ++i)
        bitmap->row(i / 2)[i % 2] = uint8_t(letters[size_t(i)]);
    const CIImage image = CIImage::withBitmap(bitmap);
    // The rows that each orientation shows, from the top.
    const std::vector<std::vector<std::string>> shown = {
        {"AB", "CD", "EF"}, {"BA", "DC", "FE"}, {"FE", "DC", "BA"}, {"EF", "CD", "AB"},
        {"ACE", "BDF"},     {"ECA", "FDB"},     {"FDB", "ECA"},     {"BDF", "ACE"}};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const CIImage turned = image.oriented(orientation);
        const auto& rows = shown[size_t(orientation - 1)];
        const int width = int(rows[0].size());
        const int height = int(rows.size());
        ASSERT_EQ(turned.extent(), CGRect(0, 0, width, height)) << orientation;
        const auto pixels = tiled(turned, pixelExtent(turned));
        EXPECT_LT(largestDifference(pixels, reference(turned, pixelExtent(turned))), 1e-6);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const auto letter = size_t(rows[size_t(height - 1 - y)][size_t(x)]);
                // Two letters' values lie 1e-3 apart.
                EXPECT_NEAR(pixels[size_t(y * width + x) * 4],
                            (*srgbDecodingTable(SampleType::U8))[letter], 1e-6)
                    << "orientation " << orientation << " at " << x << ", " << y;
            }
        }
    }
}

TEST(Transform, WholePixelChainsStayExactAndCombine)
{
    const CIImage image = numbered(5, 4);
    const CIImage there = image.transformed(CGAffineTransform::translation(7, -3));
    EXPECT_EQ(there.extent(), CGRect(7, -3, 5, 4));
    EXPECT_TRUE(there.transformed(CGAffineTransform::translation(-7, 3)).isSame(image));
    const auto quarter = CGAffineTransform::rotation(std::acos(0.0));
    CIImage turned = image;
    for (int i = 0; i < 4; ++i)
        turned = turned.transformed(quarter);
    EXPECT_TRUE(turned.isSame(image));
    // Two turns of 20 degrees sample once: the same as one of 40.
    const auto twenty = CGAffineTransform::rotation(0.349065850398866);
    const CIImage twice = image.transformed(twenty).transformed(twenty);
    EXPECT_EQ(twice.node()->inputs.front(), image.node());
}

TEST(Transform, BilinearSamplesAndHalvings)
{
    const CIImage moved = greyRow({0, 1}).transformed(CGAffineTransform::translation(0.5, 0));
    EXPECT_EQ(moved.extent(), CGRect(0, 0, 3, 1));
    expectRed(moved, {0, 0, 3, 1}, {0, 0.5, 0.5}, 1e-6);
    EXPECT_NEAR(tiled(moved, {0, 0, 3, 1})[3], 0.5, 1e-6);
    EXPECT_NEAR(tiled(moved, {0, 0, 3, 1})[11], 0.5, 1e-6);

    const auto halvings = [](double scale) {
        int count = 0;
        const CIImage scaled = numbered(40, 40).transformed(CGAffineTransform::scale(scale, scale));
        for (NodePtr node = scaled.node()->inputs.front(); node->as<HalveNode>();
             node = node->inputs[0])
            ++count;
        return count;
    };
    EXPECT_EQ(halvings(0.44), 0);
    EXPECT_EQ(halvings(0.43527), 1);
    EXPECT_EQ(halvings(0.2176), 2);
    // An odd last column is paired with itself, so a constant stays one.
    const CIImage constant =
        greyRow(std::vector<float>(7, 0.5f)).clampedToExtent().cropped({0, 0, 7, 9});
    const CIImage small =
        constant.clampedToExtent().transformed(CGAffineTransform::scale(0.3, 0.3));
    expectRed(small, {0, 0, 2, 1}, {0.5, 0.5}, 1e-6);
}

/// The same bits from tiles of this size as in one piece.
void expectSameInTiles(const CIImage& image, const PixelRect& rect, int width, int height)
{
    const auto drawn = [&](int tileWidth, int tileHeight) {
        const CIContext context(
            {.threads = 1, .tileWidth = tileWidth, .tileHeight = tileHeight, .shuffleSeed = 5});
        std::vector<float> samples(size_t(rect.width()) * size_t(rect.height()) * 4);
        EXPECT_TRUE(context.render(image, samples.data(), size_t(rect.width()) * 16, rect.cgRect(),
                                   PixelFormat::RGBAFloat));
        return samples;
    };
    EXPECT_EQ(drawn(width, height), drawn(rect.width(), rect.height()))
        << "tiles of " << width << " x " << height;
}

/// Every instruction set that this machine has.
class Warp : public testing::TestWithParam<int64_t> {
protected:
    void SetUp() override { hwy::SetSupportedTargetsForTest(GetParam()); }
    void TearDown() override { hwy::SetSupportedTargetsForTest(0); }
};

CGAffineTransform turned(double degrees)
{
    return CGAffineTransform::rotation(degrees * std::acos(-1.0) / 180);
}

// Runs that fit a window of neighbouring pixels, runs that do not, and rims, at every odd width.
TEST_P(Warp, SamplesAlikeInAnyTileAndAsTheReference)
{
    const struct {
        const char* name;
        CGAffineTransform transform;
    } cases[] = {
        {"a small move", CGAffineTransform::translation(0.3, -0.7)},
        {"a slight turn", turned(3)},
        {"a slight turn the other way", turned(-1.7)},
        {"a steep turn", turned(33)},
        {"upside down and mirrored", turned(177).concatenated(CGAffineTransform::scale(-1, 1))},
        {"on its side", turned(88)},
        {"smaller: neighbours lie two apart", CGAffineTransform::scale(0.44, 0.9)},
        {"flat: neighbours lie many apart", CGAffineTransform::scale(0.03, 20)},
        {"larger", CGAffineTransform::scale(3.3, 2.9)},
        {"slanted", {1, 0.9, 0.02, 1, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const int width : {1, 2, 3, 15, 17, 33, 61}) {
            for (const bool opaque : {true, false}) {
                const CIImage image =
                    randomPicture(width, 34 - width / 2, opaque).transformed(c.transform);
                const PixelRect all = pixelExtent(image).grown(2);
                expectSameDrawn(image, all, 2e-5);
                expectSameInTiles(image, all, 7, 5);
            }
        }
        const CIImage image = randomPicture(61, 43, true).transformed(c.transform);
        expectSameInTiles(image, pixelExtent(image), 1, 1);
        expectSameInTiles(image, pixelExtent(image), 1000, 1);
        expectSameInTiles(image, pixelExtent(image), 33, 64);
        // No edge anywhere near.
        const CIImage endless =
            randomPicture(61, 43, true).clampedToExtent().transformed(c.transform);
        expectSameDrawn(endless, {-9, -11, 70, 50}, 2e-5);
        expectSameInTiles(endless, {-9, -11, 70, 50}, 19, 3);
    }
}

void mapAside(const void*, int x, int y, int count, const WarpPositions& to)
{
    for (int i = 0; i < count; ++i) {
        to.x[0][i] = x + i + 0.5 + 0.3;
        to.y[0][i] = y + 0.5;
    }
}

// Red tells a position's x, whose fraction a float would have lost here.
TEST_P(Warp, KeepsFractionsFarToTheRight)
{
    std::vector<float> rgb;
    for (int i = 0; i < 65000 * 3; ++i)
        rgb.insert(rgb.end(), {float(i % 65000 - 64000), 0, 1});
    const CIImage wide = opaqueImage(65000, 3, rgb);
    const CIImage moved = wide.transformed(CGAffineTransform::translation(0.3, 0.25));
    expectRed(moved, {64000, 1, 64003, 2}, {-0.3, 0.7, 1.7}, 2e-5);
    const CIImage slanted =
        wide.clampedToExtent().transformed(CGAffineTransform{1, 1e-5, 0, 1, 0.123, 0});
    expectRed(slanted, {64100, 1, 64102, 2}, {99.877, 100.877}, 2e-4);
    expectSameInTiles(slanted, {63900, -1, 65003, 4}, 17, 2);
    const CIImage tall = wide.oriented(6).transformed(CGAffineTransform::translation(0.25, 0.3));
    const PixelRect end{1, 400, 2, 403};
    expectSameDrawn(tall, end, 2e-5);
    expectSameInTiles(tall, {-1, 990, 4, 1040}, 2, 17);
    // A map that asks for the whole width at once reads the same bits.
    const WarpKernel kernel{"whole", 1, mapAside,
                            [](const void*, const PixelRect&) { return CGRect(0, 0, 65000, 3); }};
    const CIImage whole = applyWarp(kernel, Parameters{}, wide, {0, 0, 65000, 3});
    const CIImage piece = wide.transformed(CGAffineTransform::translation(-0.3, 0));
    for (const int x : {0, 13, 7990, 64980})
        EXPECT_EQ(tiled(whole, {x, 0, x + 20, 3}), tiled(piece, {x, 0, x + 20, 3})) << x;
}

/// A quarter of a pixel to the right, but for pixels 3 to 7, which lie nowhere.
void mapNowhere(const void*, int x, int y, int count, const WarpPositions& to)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double nowhere[][2] = {
        {nan, 2.5}, {2.5, nan}, {infinity, 2.5}, {-1e300, 2.5}, {2.5, 4e9}};
    for (int i = 0; i < count; ++i) {
        const bool lost = x + i >= 3 && x + i < 8;
        to.x[0][i] = lost ? nowhere[x + i - 3][0] : x + i + 0.75;
        to.y[0][i] = lost ? nowhere[x + i - 3][1] : y + 0.5;
    }
}

TEST_P(Warp, IsTransparentWhereAPositionIsNone)
{
    const WarpKernel kernel{"nowhere", 1, mapNowhere,
                            [](const void*, const PixelRect&) { return CGRect(0, 0, 20, 4); }};
    const CIImage image =
        applyWarp(kernel, Parameters{}, randomPicture(20, 4, true), {0, 0, 20, 4});
    expectSameDrawn(image, {0, 0, 20, 4}, 2e-5);
    expectSameInTiles(image, {0, 0, 20, 4}, 3, 1);
    for (int x = 3; x < 8; ++x)
        expectPixel(image, x, 2, {0, 0, 0, 0}, 0);
}

INSTANTIATE_TEST_SUITE_P(Targets, Warp, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& target) { return hwy::TargetName(target.param); });

TEST(Lanczos, PublishedRowAndConstants)
{
    const CIImage half = CIFilter::lanczosScaleTransform(greyRow({0, 0, 0, 0, 1, 1, 1, 1}), 1, 0.5);
    EXPECT_EQ(half.extent(), CGRect(0, 0, 4, 1));
    expectRed(half, {0, 0, 4, 1}, {-0.015253, 0.053615, 0.946385, 1.015253}, 2e-6);
    for (const double scale : {0.07, 0.31, 0.9, 1.7, 3.0}) {
        const CIImage grey =
            greyRow(std::vector<float>(23, 0.25f)).clampedToExtent().cropped({3, -2, 29, 17});
        const CIImage scaled = CIFilter::lanczosScaleTransform(grey, scale);
        for (const float v : tiled(scaled, pixelExtent(scaled)))
            ASSERT_TRUE(std::abs(v - 0.25f) < 2e-6f || std::abs(v - 1) < 2e-6f) << v;
    }
}

TEST(Blur, PublishedWeightsAndSteps)
{
    std::vector<float> impulse(15, 0.0f);
    impulse[7] = 1;
    const CIImage row = greyRow(impulse);
    // Across only: clamped rows make the vertical pass the identity.
    const CIImage wide = row.clampedToExtent();
    expectRed(CIFilter::gaussianBlur(wide, 1), {4, 0, 11, 1},
              {0.00598, 0.06063, 0.24184, 0.38310, 0.24184, 0.06063, 0.00598}, 6e-6);
    expectRed(CIFilter::gaussianBlur(wide, 2), {7, 0, 14, 1},
              {0.19764, 0.17487, 0.12112, 0.06567, 0.02787, 0.00926, 0.00241}, 6e-6);
    EXPECT_EQ(CIFilter::gaussianBlur(row, 2).extent(), CGRect(-6, -6, 27, 13));
    EXPECT_TRUE(CIFilter::gaussianBlur(wide, 2).extent().isInfinite());
    EXPECT_TRUE(CIFilter::gaussianBlur(row, 0).isSame(row));

    std::vector<float> step(40, 0.0f);
    std::fill(step.begin() + 20, step.end(), 1.0f);
    const CIImage edge = greyRow(step);
    expectRed(CIFilter::gaussianBlur(edge.clampedToExtent(), 2), {19, 0, 21, 1}, {0.40118, 0.59882},
              6e-6);
    expectRed(CIFilter::unsharpMask(edge, 1, 0.9), {19, 0, 21, 1}, {-0.277604, 1.277604}, 2e-6);
    expectRed(CIFilter::unsharpMask(edge, 1, -0.5), {19, 0, 21, 1}, {0.154224, 0.845776}, 2e-6);
    EXPECT_EQ(CIFilter::unsharpMask(edge, 1, 0.9).extent(), edge.extent());
}

TEST(Blur, LargeSigmasAtReducedSizeStayCloseToTheFullSum)
{
    std::vector<float> step(900, 0.0f);
    std::fill(step.begin() + 437, step.end(), 1.0f);
    const CIImage edge = greyRow(step).clampedToExtent();
    // The coarsest grids that there are for a sigma, and the finest.
    for (const double sigma : {5.4, 6.0, 8.5, 10.7, 10.9, 16.0, 21.61, 23.7, 43.1, 86.5, 90.0}) {
        const CIImage blurred = CIFilter::gaussianBlur(edge, sigma);
        const auto fast = tiled(blurred, {100, 0, 800, 1});
        const auto exact = reference(blurred, {100, 0, 800, 1});
        for (size_t i = 0; i < fast.size(); ++i)
            ASSERT_NEAR(fast[i], exact[i], 7e-5) << "sigma " << sigma << " at " << i / 4;
        // The Gaussian that ends at 3 sigma, summed up to each pixel.
        const std::vector<double> gaussian = gaussianWeights(sigma);
        const auto weightAt = [&](int k) {
            const size_t n = size_t(std::abs(k));
            return n < gaussian.size() ? gaussian[n] : 0.0;
        };
        double sum = 0;
        for (int x = 437 - int(gaussian.size()); x < 800; ++x) {
            sum += weightAt(x - 437);
            ASSERT_NEAR(fast[size_t(x - 100) * 4], sum, 4e-4) << "sigma " << sigma << " at " << x;
        }
    }
    // A picture that ends fades into transparency just as far.
    const CIImage fading = CIFilter::gaussianBlur(numbered(60, 50), 20);
    const auto fast = tiled(fading, pixelExtent(fading));
    const auto exact = reference(fading, pixelExtent(fading));
    for (size_t i = 0; i < fast.size(); ++i)
        ASSERT_NEAR(fast[i], exact[i], 2e-4) << i;
}

TEST(Blur, BloomAndVariableBlur)
{
    const CIImage grey = greyRow(std::vector<float>(9, 0.18f));
    expectRed(CIFilter::bloom(grey, 2, 1), {4, 0, 5, 1}, {0.3276}, 2e-6);
    expectRed(CIFilter::bloom(grey, 2, 0.22), {4, 0, 5, 1}, {0.212472}, 2e-6);
    EXPECT_TRUE(CIFilter::bloom(grey, 2, 0).isSame(grey));

    const CIImage picture = numbered(31, 23);
    const PixelRect all = pixelExtent(picture);
    const CIImage black = greyRow({0}).clampedToExtent();
    const CIImage white = greyRow({1}).clampedToExtent();
    EXPECT_EQ(tiled(CIFilter::maskedVariableBlur(picture, black, 5), all), tiled(picture, all));
    const auto full = tiled(CIFilter::maskedVariableBlur(picture, white, 5), all);
    const auto plain = tiled(CIFilter::gaussianBlur(picture.clampedToExtent(), 5), all);
    for (size_t i = 0; i < full.size(); ++i)
        ASSERT_NEAR(full[i], plain[i], 1e-6);
}

} // namespace
} // namespace orvane
