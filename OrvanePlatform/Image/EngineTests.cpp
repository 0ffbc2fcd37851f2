// What the engine promises of every draw: sources and output as files need them, rows in order,
// an end when it is cancelled, and a cache nobody sees.

#include "Bitmap.h"
#include "CIContext.h"
#include "EngineTesting.h"
#include "Filters/CIFilter.h"
#include "Filters/FilterTesting.h"
#include "Filters/Patches.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <random>
#include <thread>

namespace orvane {
namespace {

using namespace EngineTesting;
using namespace FilterTesting;

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
