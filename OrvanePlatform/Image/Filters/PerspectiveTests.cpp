#include "Filters/CIFilter.h"

#include "Filters/PixelExpectations.h"
#include "Node.h"
#include "PixelKernels.h"

#include <limits>

namespace orvane {
namespace {

using namespace FilterTesting;

/// Red tells the x of a sampled position and green its y, both in continuous pixels.
CIImage coordinates(int width, int height)
{
    std::vector<float> rgb;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            rgb.insert(rgb.end(), {float(x) + 0.5f, float(y) + 0.5f, 0});
    }
    return opaqueImage(width, height, rgb);
}

const CIFilter::Corners keystone{{12.5, 80}, {87.5, 80}, {112.5, 0}, {-12.5, 0}};

TEST(Perspective, SamplesWhereThePublishedNumbersSay)
{
    const CIImage image = CIFilter::perspectiveTransform(coordinates(100, 80), keystone);
    EXPECT_EQ(image.extent(), CGRect(-13, 0, 126, 80));
    EXPECT_FALSE(image.isOpaque());
    expectPixel(image, 20, 60, {16.1649f, 52.0430f, 0, 1}, 1e-4f);
    // Pixel (49, 39), whose centre is half a pixel from the (50, 40) that samples (50, 30).
    const WarpNode& warp = *image.node()->as<WarpNode>();
    double x[3];
    double y[3];
    warp.kernel->map(warp.parameters.record.data(), 0, 0, 1, {{x}, {y}});
    EXPECT_NEAR(x[0], 10.3008, 5e-5);
    EXPECT_NEAR(y[0], 0.3008, 5e-5);
    const PixelRect middle{49, 39, 51, 41};
    const std::vector<float> around = reference(image, middle);
    EXPECT_NEAR((around[0] + around[4] + around[8] + around[12]) / 4, 50, 1e-3);
    EXPECT_NEAR((around[1] + around[5] + around[9] + around[13]) / 4, 30, 2e-2);
    // Beyond the slanted side there is nothing.
    expectPixel(image, -5, 75, {0, 0, 0, 0});
}

TEST(Perspective, MapsAPictureThatDoesNotBeginAtTheOrigin)
{
    const CIImage picture = coordinates(8, 6).transformed(CGAffineTransform::translation(100, -50));
    // Twice the size, two to the right: output pixel (104, -48) has its centre at a quarter of 8.
    const CIFilter::Corners corners{{102, -38}, {118, -38}, {118, -50}, {102, -50}};
    const CIImage image = CIFilter::perspectiveTransform(picture, corners);
    EXPECT_EQ(image.extent(), CGRect(102, -50, 16, 12));
    expectPixel(image, 106, -45, {2.25f, 2.75f, 0, 1}, 1e-5f);
}

TEST(Perspective, ReturnsItsInputOrNothing)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const CIImage picture = coordinates(8, 6);
    EXPECT_TRUE(
        CIFilter::perspectiveTransform(picture, {{0, 6}, {8, 6}, {8, 0}, {0, 0}}).isSame(picture));
    const CIImage endless = CIImage::withColor({});
    EXPECT_TRUE(CIFilter::perspectiveTransform(endless, keystone).isSame(endless));
    EXPECT_TRUE(
        CIFilter::perspectiveTransform(picture, {{0, 0}, {8, 0}, {8, 0}, {0, 0}}).isEmpty());
    EXPECT_TRUE(
        CIFilter::perspectiveTransform(picture, {{0, nan}, {8, 6}, {8, 0}, {0, 0}}).isEmpty());
}

TEST(Perspective, ShowsNothingOfWhatIsBehindTheEye)
{
    // Of a shape dented at the top right all that falls within its box does so from behind.
    const CIImage image =
        CIFilter::perspectiveTransform(coordinates(100, 80), {{0, 80}, {60, 25}, {100, 0}, {0, 0}});
    expectPixel(image, 83, 54, {0, 0, 0, 0});
    expectPixel(image, 98, 1, {0, 0, 0, 0});
}

/// The region that the rectangle asks for holds every position within 100 x 80 that it samples.
void expectHeld(const WarpNode& warp, const PixelRect& rect)
{
    const void* record = warp.parameters.record.data();
    // One pixel more is read around every region.
    const CGRect region = warp.kernel->region(record, rect).inset(-1, -1);
    std::vector<double> px(size_t(rect.width()));
    std::vector<double> py(px.size());
    for (int y = rect.y0; y < rect.y1; ++y) {
        warp.kernel->map(record, rect.x0, y, rect.width(), {{px.data()}, {py.data()}});
        for (size_t i = 0; i < px.size(); ++i) {
            const bool sampled = px[i] > -0.5 && px[i] < 100.5 && py[i] > -0.5 && py[i] < 80.5;
            const bool held = px[i] >= region.minX() && px[i] <= region.maxX()
                && py[i] >= region.minY() && py[i] <= region.maxY();
            ASSERT_TRUE(held || !sampled) << "row " << y << " of " << rect.x0 << ", " << rect.y0;
        }
    }
}

// A region that is too small would lose pixels at a tile's edge.
TEST(Perspective, AsksForAllThatItSamples)
{
    const CIFilter::Corners shapes[] = {
        keystone,
        {{0, 80}, {100, 80}, {60, 0}, {45, 0}},
        {{100, 0}, {0, 10}, {0, 80}, {90, 80}}, // upside down
        {{30, 40}, {100, 80}, {100, 0}, {0, 0}}, // nearly a triangle
        {{70, 20}, {100, 80}, {100, 0}, {0, 0}}, // dented: w changes its sign
        {{0, 80}, {100, 80}, {100, 0}, {40, 30}}, // dented at the near corner
        {{0, 80}, {100, 0}, {100, 80}, {0, 0}}, // crossed
    };
    for (const auto& shape : shapes) {
        SCOPED_TRACE(&shape - shapes);
        const CIImage image = CIFilter::perspectiveTransform(randomPicture(100, 80, true), shape);
        if (image.isEmpty())
            continue;
        expectSameDrawn(image, roundedOutward(image.extent().inset(-3, -3)), 2e-5);
        for (const int side : {16, 32, 128}) {
            for (int y = 0; y < 80; y += side) {
                for (int x = 0; x < 112; x += side)
                    expectHeld(*image.node()->as<WarpNode>(), {x, y, x + side, y + side});
            }
        }
    }
}

} // namespace
} // namespace orvane
