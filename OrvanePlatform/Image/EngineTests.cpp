// What the engine promises of every recipe: passes as planned, the same bits however it is cut into
// tiles and threads, the reference's picture, draws that can be cancelled, and a cache nobody sees.

#include "Bitmap.h"
#include "CIContext.h"
#include "Filters/CIFilter.h"
#include "Filters/FilterTesting.h"
#include "Filters/Patches.h"
#include "Node.h"
#include "PixelKernels.h"
#include "Planner.h"
#include "ReferenceRenderer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>

namespace orvane {
namespace {

using namespace FilterTesting;

/// An 8-bit photograph of sorts: smooth, with edges and noise.
CIImage photograph(int width, int height, int channels = 3)
{
    const AlphaKind alpha = channels == 4 ? AlphaKind::Straight : AlphaKind::None;
    auto bitmap = std::make_shared<Bitmap>(width, height, channels, SampleType::U8, alpha);
    std::mt19937 random(7);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                const double wave =
                    128 + 60 * std::sin(x * 0.05 * (c + 1)) + 40 * std::cos(y * 0.09);
                const int edge = (x / 37 + y / 29) % 2 * 25;
                bitmap->row(y)[x * channels + c] =
                    uint8_t(std::clamp(wave + edge + double(random() % 9), 0.0, 255.0));
            }
        }
    }
    return CIImage::withBitmap(bitmap);
}

/// Every kind of node in one recipe: pointwise runs, small and large blurs, two resamplings, moves.
CIImage everything(const CIImage& source)
{
    CIImage image = source.oriented(6).transformed(CGAffineTransform::rotation(-0.05));
    image = image.compositedOver(CIFilter::gaussianBlur(source.clampedToExtent(), 21))
                .cropped(image.extent());
    image = CIFilter::exposureAdjust(image, 0.4);
    image = CIFilter::unsharpMask(image, 23, 0.5);
    image = CIFilter::noiseReduction(image, 0.04);
    image = CIFilter::unsharpMask(image, 1.3, 0.8);
    image = CIFilter::bloom(image, 17, 0.3);
    image = CIFilter::lanczosScaleTransform(image, 0.73);
    return CIFilter::vignetteEffect(image, {60, 40}, 90, 0.4, 0.5);
}

PixelRect pixels(const CIImage& image)
{
    return image.node()->extent.rect;
}

std::vector<uint8_t> drawn(const CIImage& image, const CIContext& context, PixelFormat format,
                           const DrawOptions& options = {})
{
    const PixelRect rect = pixels(image);
    const size_t rowBytes = size_t(rect.width()) * size_t(bytesPerPixel(format));
    std::vector<uint8_t> bytes(rowBytes * size_t(rect.height()));
    EXPECT_TRUE(context.render(image, bytes.data(), rowBytes, rect.cgRect(), format, options));
    return bytes;
}

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

TEST(Sources, EveryDepthAndLayoutIsReadAlike)
{
    const auto matrix = std::array<float, 9>{0.9f, 0.1f, 0, -0.1f, 1.1f, 0, 0, 0.05f, 0.95f};
    for (const SampleType type :
         {SampleType::U8, SampleType::U16, SampleType::F16, SampleType::F32}) {
        for (int channels = 1; channels <= 4; ++channels) {
            for (const AlphaKind alpha : {AlphaKind::Straight, AlphaKind::Premultiplied}) {
                const bool hasAlpha = channels == 2 || channels == 4;
                auto bitmap = std::make_shared<Bitmap>(41, 5, channels, type,
                                                       hasAlpha ? alpha : AlphaKind::None);
                std::mt19937 random(uint32_t(channels) * 7 + uint32_t(type));
                for (int y = 0; y < 5; ++y) {
                    for (int i = 0; i < 41 * channels; ++i) {
                        void* row = bitmap->row(y);
                        const float unit = float(random() % 1000) / 999;
                        if (type == SampleType::U8)
                            static_cast<uint8_t*>(row)[i] = uint8_t(random());
                        else if (type == SampleType::U16)
                            static_cast<uint16_t*>(row)[i] = uint16_t(random());
                        else if (type == SampleType::F16)
                            static_cast<uint16_t*>(row)[i] = uint16_t(random() % 0x4000);
                        else
                            static_cast<float*>(row)[i] = unit * 2 - 0.3f * float(i % channels < 3);
                    }
                }
                bitmap->conversion.matrix = matrix;
                const CIImage image = CIImage::withBitmap(bitmap);
                const auto fast = tiled(image, {-2, -1, 43, 6});
                const auto exact = reference(image, {-2, -1, 43, 6});
                // Premultiplied integers are divided in whole numbers: a tie may fall a step apart.
                const double tolerance =
                    alpha == AlphaKind::Premultiplied && hasAlpha ? 6e-3 : 2e-6;
                for (size_t i = 0; i < fast.size(); ++i)
                    ASSERT_NEAR(fast[i], exact[i], tolerance)
                        << "type " << int(type) << ", " << channels << " channels, value " << i;
            }
        }
    }
}

TEST(Output, RoundsEncodesAndLimitsAsFilesNeed)
{
    const std::vector<float> greys = {0, 0.0005f, 0.18f, 0.2158605f, 0.5f, 1, 1.7f, -0.1f};
    std::vector<float> rgba;
    for (const float v : greys)
        rgba.insert(rgba.end(), {v, v, v, 1});
    const CIImage row = pixelsImage(8, 1, rgba);
    const CIContext context;
    const auto bytes = drawn(row, context, PixelFormat::RGB8);
    const int expected[] = {0, 2, 118, 128, 188, 255, 255, 0};
    for (size_t i = 0; i < 8; ++i)
        EXPECT_EQ(bytes[i * 3 + 1], expected[i]) << greys[i];
    const auto deep = drawn(row, context, PixelFormat::RGB16);
    uint16_t sample = 0;
    std::memcpy(&sample, &deep[2 * 6], 2);
    EXPECT_EQ(sample, 30235);

    const CIImage half = pixelsImage(1, 1, {0.09f, 0.09f, 0.09f, 0.5f});
    EXPECT_EQ(drawn(half, context, PixelFormat::RGBA8Premultiplied),
              (std::vector<uint8_t>{59, 59, 59, 128}));
    EXPECT_EQ(drawn(half, context, PixelFormat::RGBA8), (std::vector<uint8_t>{118, 118, 118, 128}));
    // Light without end, and what is no number, as pixels and as files.
    const auto endless = [](float red, float green) {
        return CIFilter::exposureAdjust(pixelsImage(1, 1, {red, green, 0, 1}), 100);
    };
    const CIImage difference =
        CIFilter::additionCompositing(endless(1e30f, -1e30f), endless(-1e30f, 1e30f));
    for (const PixelFormat format : {PixelFormat::RGB8, PixelFormat::RGB16}) {
        const size_t bytesOfOne = format == PixelFormat::RGB8 ? 1 : 2;
        std::vector<uint8_t> limited(3 * bytesOfOne, 0);
        EXPECT_EQ(drawn(difference, context, format), limited);
        std::fill_n(limited.begin(), bytesOfOne, uint8_t(255));
        EXPECT_EQ(drawn(endless(1e30f, -1e30f), context, format), limited);
    }
    // Outside the image: zeros.
    std::vector<float> outside(8, 9.0f);
    ASSERT_TRUE(context.render(half, outside.data(), 32, {5.9, 3, 2, 1}, PixelFormat::RGBAFloat));
    EXPECT_EQ(outside, std::vector<float>(8, 0.0f));
}

TEST(Output, LightFarBeyondWhiteIsKeptBetweenPasses)
{
    std::vector<float> rgba;
    for (int i = 0; i < 41 * 41; ++i)
        rgba.insert(rgba.end(), {i == 20 * 41 + 20 ? 1000.0f : 0.0f, 0, 0, 1});
    const CIImage lamp = pixelsImage(41, 41, rgba);
    const CIImage stored =
        Patches::laidOn(lamp, {Patches::ground(lamp).cropped(CGRect(0, 0, 2, 2))});
    const CIImage glow = CIFilter::gaussianBlur(stored, 4).cropped(lamp.extent());
    const CIContext context;
    const auto shallow = drawn(glow, context, PixelFormat::RGB8);
    const auto deep = drawn(glow, context, PixelFormat::RGB16);
    for (size_t i = 0; i < shallow.size(); ++i) {
        uint16_t sample = 0;
        std::memcpy(&sample, &deep[i * 2], 2);
        ASSERT_NEAR(shallow[i], sample / 257.0, 0.51) << i;
    }
}

/// Keeps its rows; refuses after a number of them.
class Rows final : public RowSink {
public:
    explicit Rows(int limit)
        : m_limit(limit)
    {
    }
    PixelFormat format() const override { return PixelFormat::RGB8; }
    Result<void> writeRows(const uint8_t* rows, int count, size_t rowBytes) override
    {
        m_rows += count;
        if (m_rows > m_limit)
            return Error{"full"};
        bytes.insert(bytes.end(), rows, rows + size_t(count) * rowBytes);
        return {};
    }
    std::vector<uint8_t> bytes;

private:
    int m_rows = 0;
    int m_limit;
};

TEST(Rows, ComeInOrderAndStopAtAnError)
{
    const CIImage image = CIFilter::exposureAdjust(photograph(333, 1001), -0.3);
    for (const int threads : {1, 2, 8}) {
        const CIContext context({.threads = threads});
        Rows all(1001);
        ASSERT_TRUE(context.render(image, image.extent(), all).ok());
        EXPECT_EQ(all.bytes, drawn(image, context, PixelFormat::RGB8)) << threads;
        Rows few(300);
        const Result<void> refused = context.render(image, image.extent(), few);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error().message, "full");
    }
}

/// Lets rows through only once a draw elsewhere is through.
class HeldRows final : public RowSink {
public:
    PixelFormat format() const override { return PixelFormat::RGB8; }
    Result<void> writeRows(const uint8_t*, int, size_t) override
    {
        started.store(true);
        started.notify_all();
        released.wait(false);
        return {};
    }
    std::atomic<bool> started = false;
    std::atomic<bool> released = false;
};

TEST(Rows, APreviewNeedNotWaitForAnExport)
{
    for (const int threads : {1, 2, 4}) {
        const CIContext context({.threads = threads});
        const CIImage image = CIFilter::exposureAdjust(photograph(700, 900), 0.3);
        HeldRows rows;
        std::thread exporting(
            [&] { EXPECT_TRUE(context.render(image, image.extent(), rows).ok()); });
        rows.started.wait(false);
        // With the export stuck in its sink, this returns only if it gets workers of its own.
        EXPECT_TRUE(
            context.createCGImage(everything(photograph(120, 90)), {0, 0, 80, 60}).has_value());
        rows.released.store(true);
        rows.released.notify_all();
        exporting.join();
    }
}

TEST(Rows, WhatASinkThrowsReachesTheCallerAlone)
{
    class Throwing final : public RowSink {
    public:
        PixelFormat format() const override { return PixelFormat::RGB8; }
        Result<void> writeRows(const uint8_t*, int, size_t) override { throw std::bad_alloc(); }
    } sink;
    const CIContext context({.threads = 3});
    const CIImage image = photograph(300, 500);
    const Result<void> failed = context.render(image, image.extent(), sink);
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().message, "There is not enough memory to draw the picture.");
    EXPECT_TRUE(context.createCGImage(image, image.extent()).has_value());
}

TEST(Blur, ARadiusBeyondReasonCostsNoMoreThanAReasonableOne)
{
    const CIImage picture = photograph(64, 64);
    for (const double radius : {1e4, 1e6, 1e12, 1e300}) {
        const auto pixels = tiled(CIFilter::unsharpMask(picture, radius, 0.5), {0, 0, 64, 64});
        EXPECT_TRUE(
            std::all_of(pixels.begin(), pixels.end(), [](float v) { return std::isfinite(v); }));
    }
}

TEST(Cancellation, StopsEveryKindOfDraw)
{
    const CIImage image = everything(photograph(300, 200));
    const CIContext context;
    CancellationToken token;
    token.cancel();
    const DrawOptions options{.cancellation = &token};
    EXPECT_FALSE(context.createCGImage(image, image.extent(), options).has_value());
    Rows rows(100000);
    EXPECT_FALSE(context.render(image, image.extent(), rows, options).ok());
    EXPECT_TRUE(rows.bytes.empty());
    EXPECT_FALSE(context.createCGImage(image, CGRect::infinite()).has_value());
}

TEST(Cancellation, LeavesTheNextDrawAsItWas)
{
    // Scratch memory that a tile was broken off in goes to the next draw.
    const CIImage image = everything(photograph(500, 400));
    const auto expected =
        drawn(image, CIContext(), PixelFormat::BGRX8, {.keepIntermediates = true});
    for (int pause = 1; pause < 100000; pause *= 4) {
        const CIContext context;
        CancellationToken token;
        std::thread other([&] {
            for (int i = 0; i < pause; ++i)
                std::this_thread::yield();
            token.cancel();
        });
        context.createCGImage(image, image.extent(),
                              {.cancellation = &token, .keepIntermediates = true});
        other.join();
        ASSERT_EQ(drawn(image, context, PixelFormat::BGRX8, {.keepIntermediates = true}), expected)
            << pause;
    }
}

TEST(Cache, SparesEarlierStagesAndChangesNothing)
{
    const CIImage graded =
        CIFilter::unsharpMask(CIFilter::exposureAdjust(photograph(400, 300), 0.2), 20, 0.6);
    const auto late = [&](double intensity) {
        return CIFilter::vignetteEffect(graded, {200, 150}, 250, intensity, 0.5);
    };
    CIContext context;
    DrawStatistics statistics;
    const DrawOptions keep{.keepIntermediates = true, .statistics = &statistics};
    drawn(late(0.1), context, PixelFormat::BGRX8, keep);
    // The grade, its reduction, the sharpened picture, the vignette.
    EXPECT_EQ(statistics.passes, 4);
    const auto reused = drawn(late(0.7), context, PixelFormat::BGRX8, keep);
    EXPECT_EQ(statistics.passes, 1);
    EXPECT_EQ(statistics.reusedImages, 1);
    EXPECT_EQ(reused, drawn(late(0.7), CIContext(), PixelFormat::BGRX8, keep));
    // One rounding more than a draw that keeps nothing.
    const auto unkept = drawn(late(0.7), CIContext(), PixelFormat::BGRX8);
    EXPECT_TRUE(std::equal(reused.begin(), reused.end(), unkept.begin(), unkept.end(),
                           [](float a, float b) { return std::abs(a - b) <= 1; }));
    // The small copy of a large picture is kept, too, and the picture stays the same.
    const CIImage proxy = CIFilter::lanczosScaleTransform(photograph(900, 700), 0.4);
    const auto toned = [&](double ev) { return CIFilter::exposureAdjust(proxy, ev); };
    drawn(toned(0.1), context, PixelFormat::RGBAFloat, keep);
    EXPECT_EQ(statistics.storedImages, 1);
    EXPECT_EQ(drawn(toned(0.2), context, PixelFormat::RGBAFloat, keep),
              drawn(toned(0.2), CIContext(), PixelFormat::RGBAFloat));
    EXPECT_EQ(statistics.reusedImages, 1);
    EXPECT_EQ(drawn(proxy, context, PixelFormat::RGBAFloat, keep),
              drawn(proxy, CIContext(), PixelFormat::RGBAFloat));
    // A budget too small for anything still draws the right picture.
    CIContext small({.cacheBytes = 1000});
    EXPECT_EQ(drawn(late(0.7), small, PixelFormat::BGRX8, keep), reused);
    // A sub-rectangle is served by what was kept of the whole, and the other way about it is not.
    drawn(late(0.7).cropped({50, 50, 60, 60}), context, PixelFormat::BGRX8, keep);
    EXPECT_EQ(statistics.passes, 1);
}

TEST(Cache, KeepsAllPatchesHoweverLittleOfThePictureWasAsked)
{
    const CIImage picture = CIFilter::exposureAdjust(photograph(300, 300), 0.1);
    const CIImage ground = Patches::ground(picture);
    const auto patch = [&](int x, int y, int side, double dx, double dy) {
        return ground.transformed(CGAffineTransform::translation(dx, dy))
            .cropped(CGRect(x, y, side, side));
    };
    const CIImage image = Patches::laidOn(
        picture,
        {patch(100, 100, 80, 70, 30), // its source begins at (30, 70)
         patch(90, 170, 30, 40, 40), // over its corner, and beyond it
         patch(120, 75, 10, 60, -25), // below what is asked; its source is the first's
         patch(250, 30, 20, -40, 0)});
    const CIContext context;
    const DrawOptions keep{.keepIntermediates = true};
    for (const CGRect& part : {CGRect(150, 120, 20, 20), CGRect(92, 185, 20, 10),
                               CGRect(115, 70, 20, 20), CGRect(0, 0, 300, 300)}) {
        const CIImage cropped = image.cropped(part);
        EXPECT_EQ(drawn(cropped, context, PixelFormat::BGRX8, keep),
                  drawn(cropped, CIContext(), PixelFormat::BGRX8))
            << part.minX();
    }
}

} // namespace
} // namespace orvane
