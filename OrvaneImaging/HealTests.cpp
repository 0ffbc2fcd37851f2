#include "Baker.h"
#include "Filters/CIFilter.h"
#include "Heal.h"
#include "TestImages.h"

namespace orvane {
namespace {

using namespace test;

TEST(Heal, ReturnsTheImageWhenThereIsNothingToDo)
{
    const CIImage image = coordinates(20, 20);
    EXPECT_TRUE(Heal::apply(image, {}).isSame(image));
    const CIImage endless = CIImage::withColor({1, 1, 1, 1});
    EXPECT_TRUE(Heal::apply(endless, {{0.5, 0.5, 0.1}}).isSame(endless));
    EXPECT_TRUE(Heal::apply(image, {{4, 4, 0.05}}).isSame(image)); // far outside the frame
}

TEST(Heal, TakesThePatchFromTowardsTheMiddle)
{
    // 100 x 80, radius 5: the source lies 12 pixels away in each axis. Spots count y from the top.
    const CIImage image = coordinates(100, 80);
    const struct {
        HealSpot spot;
        int x, y; // a pixel in the middle of the spot
        double sourceX, sourceY;
    } cases[] = {
        {{0.2, 0.25, 0.05}, 20, 60, 32, 48}, // upper left: from below, to the right
        {{0.8, 0.75, 0.05}, 80, 20, 68, 32}, // lower right: from above, to the left
        {{0.5, 0.5, 0.05}, 50, 40, 38, 28}, // the very middle
        {{0.2, 0.25, 0}, 20, 60, 24.8, 55.2}, // radius 2 at least: 4.8 pixels away
    };
    for (const auto& [left, bottom] : {std::pair(0, 0), std::pair(-37, 13)}) {
        SCOPED_TRACE(left);
        const CIImage placed = image.transformed(CGAffineTransform::translation(left, bottom));
        for (const auto& c : cases) {
            const CIImage healed = Heal::apply(placed, {c.spot});
            expectExtent(healed, placed.extent());
            const Color patch = pixel(healed, left + c.x, bottom + c.y);
            EXPECT_NEAR(patch[0] * 64, c.sourceX, 1e-3) << c.x;
            EXPECT_NEAR(patch[1] * 64, c.sourceY, 1e-3) << c.x;
            // Beyond the radius nothing changes, to the bit.
            EXPECT_EQ(pixel(healed, left + c.x + 6, bottom + c.y), pixel(image, c.x + 6, c.y));
        }
    }
}

TEST(Heal, FadesFromSixTenthsOfTheRadiusOn)
{
    // The left half is 0, the right half 1; the spot's radius is 20, its source wholly within 1.
    const CIImage image = picture(200, 200, [](int x, int) {
        const float value = x < 70 ? 0.0f : 1.0f;
        return Color{value, value, value, 1};
    });
    const CIImage healed = Heal::apply(image, {{0.25, 0.25, 0.1}});
    EXPECT_NEAR(pixel(healed, 50, 150)[0], 1, 1e-5f);
    EXPECT_NEAR(pixel(healed, 38, 150)[0], 1, 1e-5f); // 11.51 pixels out
    EXPECT_NEAR(pixel(healed, 34, 150)[0], 0.56149f, 1e-4f); // 15.508 of 12 .. 20 pixels out
    EXPECT_NEAR(pixel(healed, 30, 150)[0], 0.06170f, 1e-4f); // 19.506
    EXPECT_EQ(pixel(healed, 29, 150)[0], 0);
}

TEST(Heal, PatchesFromWhatTheSpotsBeforeLeft)
{
    // The first spot carries 1 to where the second one takes its patch from.
    const CIImage image = picture(200, 200, [](int x, int) {
        const float value = x < 84 ? 0.0f : 1.0f;
        return Color{value, value, value, 1};
    });
    const HealSpot first{0.28, 0.28, 0.06};
    const HealSpot second{0.14, 0.14, 0.06};
    EXPECT_EQ(pixel(Heal::apply(image, {second}), 28, 172)[0], 0);
    EXPECT_NEAR(pixel(Heal::apply(image, {first, second}), 28, 172)[0], 1, 1e-5f);
}

/// The definition, spot by spot over the whole picture.
CIImage blendedOneByOne(CIImage image, const std::vector<HealSpot>& spots)
{
    const CGRect frame = image.extent();
    for (const HealSpot& spot : spots) {
        const double r = std::max(std::max(frame.width(), frame.height()) * spot.r, 2.0);
        const CGPoint center{frame.width() * spot.x, frame.height() * (1 - spot.y)};
        const auto move =
            CGAffineTransform::translation(center.x < frame.midX() ? -r * 2.4 : r * 2.4,
                                           center.y < frame.midY() ? -r * 2.4 : r * 2.4);
        const CIImage mask =
            CIFilter::radialGradient(center, 0.6 * r, {1, 1, 1, 1}, r, {0, 0, 0, 0});
        image = CIFilter::blendWithMask(image.transformed(move).cropped(frame), image, mask)
                    .cropped(frame);
    }
    return image;
}

TEST(Heal, EqualsBlendingSpotBySpot)
{
    // A stroke whose spots and sources overlap each other, and single spots out to the corners.
    std::vector<HealSpot> many;
    for (int i = 0; i < 24; ++i)
        many.push_back({0.2 + 0.02 * i, 0.25 + 0.015 * i, 0.04});
    for (const double at : {0.0, 0.3, 0.98})
        many.push_back({at, 1 - at, 0.07});
    // The source of each last one lies partly on a spot before it: tiles there read one or the
    // other.
    const std::vector<HealSpot> spotLists[] = {
        many,
        {{0.651, 0.223, 0.098}, {0.987, 0.77, 0.098}},
        {{0.425, 0.861, 0.115}, {0.103, 0.166, 0.115}},
        {{0.226, 0.149, 0.069}, {0.055, 0.861, 0.069}, {0.042, 0.58, 0.069}},
    };
    const CIContext contexts[] = {CIContext(), CIContext({.tileWidth = 8, .tileHeight = 16}),
                                  CIContext({.tileWidth = 4, .tileHeight = 2}),
                                  CIContext({.tileWidth = 32, .tileHeight = 4})};
    for (const bool opaque : {true, false}) {
        const CIImage image = picture(
            90, 60,
            [=](int x, int y) {
                const float alpha = opaque || x < 50 ? 1.0f : 0.5f;
                return Color{float(x * 7 % 31) / 31 * alpha, float(y * 5 % 17) / 17 * alpha,
                             float((x + y) % 9) / 9 * alpha, alpha};
            },
            opaque);
        for (const std::vector<HealSpot>& spots : spotLists) {
            const auto plain = pixels(blendedOneByOne(image, spots), 90, 60);
            for (const CIContext& context : contexts) {
                const auto fast = pixels(Heal::apply(image, spots), 90, 60, context);
                for (size_t i = 0; i < plain.size(); ++i)
                    expectNear(fast[i], plain[i], 1e-5f);
            }
        }
    }
}

TEST(Heal, AStrokeDrawsItsOwnPixelsAndEachOnce)
{
    // To and fro, so that every spot lies on others, and its source on still others.
    std::vector<HealSpot> stroke;
    for (int i = 0; i < 60; ++i)
        stroke.push_back(
            {0.1 + 0.02 * (i / 12 % 2 ? 12 - i % 12 : i % 12), 0.15 + 0.03 * (i / 12), 0.04});
    const CIImage image = coordinates(300, 200);
    const double box = 2 * 0.04 * 300 + 2;
    for (const bool kept : {false, true}) {
        DrawStatistics statistics;
        const auto healed = Baker::cgImage(Heal::apply(image, stroke),
                                           {.keepIntermediates = kept, .statistics = &statistics});
        ASSERT_TRUE(healed);
        double megapixels = 0;
        for (const PassStatistics& pass : statistics.passTimes) {
            if (pass.operations.find("heal") == std::string::npos)
                continue;
            EXPECT_LE(pass.megapixels * 1e6, box * box);
            megapixels += pass.megapixels;
        }
        EXPECT_GT(megapixels * 1e6, 60 * (box - 3) * (box - 3));
        EXPECT_LE(megapixels * 1e6, 60 * box * box);
    }
}

TEST(Heal, NeverTearsThePicture)
{
    // The source of a spot near the middle of a small picture lies beyond its edge.
    const CIImage image = grey(10, 10, 0.4f);
    const CIImage healed = Heal::apply(image, {{0.55, 0.55, 0.4}});
    for (int y = 0; y < 10; ++y)
        EXPECT_NEAR(pixel(healed, 5, y)[3], 1, 1e-6f) << y;
}

} // namespace
} // namespace orvane
