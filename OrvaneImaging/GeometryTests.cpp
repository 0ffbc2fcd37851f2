#include "Geometry.h"
#include "TestImages.h"

namespace orvane {
namespace {

using namespace test;
using Geometry::BlurFill;
using Geometry::ColourFill;
using Geometry::EdgeFill;
using Geometry::fullFrame;

const Geometry::Fill red = ColourFill{{1, 0, 0, 1}};

CIImage rotated(const CIImage& image, double degrees, double canvas = 0)
{
    return Geometry::apply(image, degrees, false, false, fullFrame, canvas, red);
}

CIImage cropped(const CIImage& image, const CGRect& crop)
{
    return Geometry::apply(image, 0, false, false, crop, 0, red);
}

TEST(Geometry, ReturnsTheImageWhenNothingIsAsked)
{
    const CIImage image = coordinates(8, 6);
    for (const double degrees : {0.0, 0.01, -0.01, double(NAN)})
        EXPECT_TRUE(rotated(image, degrees).isSame(image)) << degrees;
    EXPECT_TRUE(rotated(image, 0, -2).isSame(image));
    EXPECT_TRUE(rotated(image, 0, 8.0 / 6 + 0.0009).isSame(image));
    EXPECT_FALSE(rotated(image, 0, 8.0 / 6 + 0.0011).isSame(image));
}

TEST(Geometry, FramesARotationByItsBoundingBox)
{
    const CIImage image = coordinates(40, 30);
    // 40 cos 30 + 30 sin 30 = 49.64, 40 sin 30 + 30 cos 30 = 45.98; an outer pixel more at most
    // where the box does not begin on a whole pixel.
    const CGRect box = rotated(image, 30).extent();
    EXPECT_EQ(box.origin, (CGPoint{0, 0}));
    EXPECT_NEAR(box.width(), 50.5, 0.6);
    EXPECT_NEAR(box.height(), 46.5, 0.6);
    EXPECT_FLOAT_EQ(pixel(rotated(image, 30), 0, 0)[3], 0); // transparent corners
    expectExtent(rotated(image, 90), {0, 0, 30, 40});
}

TEST(Geometry, TurnsClockwiseForPositiveDegrees)
{
    // The lower left corner goes to the upper left.
    const CIImage turned = rotated(coordinates(8, 6), 90);
    expectNear(pixel(turned, 0, 7), {0, 0, 0.25f, 1}, 0);
    expectNear(pixel(turned, 5, 7), {0, 5.0f / 64, 0.25f, 1}, 0);
    expectNear(pixel(turned, 0, 0), {7.0f / 64, 0, 0.25f, 1}, 0);
}

TEST(Geometry, ShowsTheFillInTheCornersOfARotationOnACanvas)
{
    const CIImage turned = rotated(grey(40, 40, 0.5f), 45, 1);
    const CGRect extent = turned.extent();
    expectNear(pixel(turned, 1, 1), {1, 0, 0, 1});
    expectNear(pixel(turned, int(extent.midX()), int(extent.midY())), {0.5f, 0.5f, 0.5f, 1});
    for (const Geometry::Fill fill : {Geometry::Fill(BlurFill{}), Geometry::Fill(EdgeFill{})}) {
        const CIImage grown =
            Geometry::apply(grey(40, 40, 0.5f), 45, false, false, fullFrame, 1, fill);
        expectNear(pixel(grown, 1, 1), {0.5f, 0.5f, 0.5f, 1}, 1e-4f);
    }
}

TEST(Geometry, FlipsExactlyOnTheSameRectangle)
{
    const CIImage image = coordinates(8, 6).transformed(CGAffineTransform::translation(3, -2));
    const struct {
        bool h;
        bool v;
        Color corner; // what lies at the lower left
    } cases[] = {
        {true, false, {7.0f / 64, 0, 0.25f, 1}},
        {false, true, {0, 5.0f / 64, 0.25f, 1}},
        {true, true, {7.0f / 64, 5.0f / 64, 0.25f, 1}},
    };
    for (const auto& c : cases) {
        const CIImage flipped = Geometry::apply(image, 0, c.h, c.v, fullFrame, 0, red);
        expectExtent(flipped, {3, -2, 8, 6});
        expectNear(pixel(flipped, 3, -2), c.corner, 0);
    }
}

TEST(Geometry, CropsFractionsFromTheTopLeft)
{
    const CIImage image = coordinates(40, 20);
    const struct {
        CGRect crop;
        CGSize size;
        Color corner;
    } cases[] = {
        {{0, 0, 0.5, 0.5}, {20, 10}, {0, 10.0f / 64, 0.25f, 1}},
        {{0.25, 0.5, 0.5, 0.25}, {20, 5}, {10.0f / 64, 5.0f / 64, 0.25f, 1}},
        {{0.5, 0, 0, 1}, {1, 20}, {20.0f / 64, 0, 0.25f, 1}}, // never under a pixel
    };
    for (const auto& c : cases) {
        const CIImage result = cropped(image, c.crop);
        expectExtent(result, {0, 0, c.size.width, c.size.height});
        expectNear(pixel(result, 0, 0), c.corner, 0);
    }
    const CIImage endless = CIImage::withColor({1, 1, 1, 1});
    EXPECT_TRUE(cropped(endless, {0, 0, 0.5, 0.5}).isSame(endless));
}

TEST(GeometryExtend, CentresThePictureOnWholePixels)
{
    const CIImage image = coordinates(41, 20);
    const struct {
        double aspect;
        CGSize canvas;
        CGPoint offset; // of the whole picture, its border of one pixel left out
    } cases[] = {
        {1, {41, 41}, {0, 11}}, // 10.5 rounds away from zero
        {4, {80, 20}, {20, 0}}, // 19.5 likewise
        {2.5, {50, 20}, {5, 0}},
    };
    for (const auto& c : cases) {
        const CIImage canvas = Geometry::extend(image, c.aspect, red);
        expectExtent(canvas, {0, 0, c.canvas.width, c.canvas.height});
        const int x = int(c.offset.x);
        const int y = int(c.offset.y);
        expectNear(pixel(canvas, x + 1, y + 1), {1.0f / 64, 1.0f / 64, 0.25f, 1}, 0);
        expectNear(pixel(canvas, x + 39, y + 18), {39.0f / 64, 18.0f / 64, 0.25f, 1}, 0);
        expectNear(pixel(canvas, x, y + 5), {1, 0, 0, 1}, 0);
        expectNear(pixel(canvas, x + 5, y + 19), {1, 0, 0, 1}, 0);
    }
}

TEST(GeometryExtend, KeepsTheBorderOfTinyPictures)
{
    const CIImage canvas = Geometry::extend(coordinates(4, 2), 1, red);
    expectExtent(canvas, {0, 0, 4, 4});
    expectNear(pixel(canvas, 0, 1), {0, 0, 0.25f, 1}, 0);
    expectNear(pixel(canvas, 0, 0), {1, 0, 0, 1}, 0);
}

TEST(GeometryExtend, StretchesOrBlursThePictureBehindItself)
{
    // Of 8 rows or less the edges are stretched unblurred. The picture's lowest kept row is 1.
    const CIImage low = Geometry::extend(coordinates(24, 6), 1, EdgeFill{});
    expectNear(pixel(low, 12, 0), {12.0f / 64, 1.0f / 64, 0.25f, 1}, 0);
    // A picture of one colour stays it, to the corners of the canvas.
    for (const Geometry::Fill fill : {Geometry::Fill(BlurFill{}), Geometry::Fill(EdgeFill{})}) {
        const CIImage wide = Geometry::extend(grey(30, 40, 0.5f), 2, fill);
        expectExtent(wide, {0, 0, 80, 40});
        for (const int x : {0, 40, 79})
            expectNear(pixel(wide, x, 39), {0.5f, 0.5f, 0.5f, 1}, 1e-4f);
    }
}

TEST(GeometryResized, ReducesToTheLongEdgeAndNeverEnlarges)
{
    const CIImage image = coordinates(60, 40);
    for (const int edge : {60, 61, 4000, 0, -1})
        EXPECT_TRUE(Geometry::resized(image, edge).isSame(image)) << edge;
    expectExtent(Geometry::resized(image, 30), {0, 0, 30, 20});
    expectExtent(Geometry::resized(coordinates(40, 60), 7), {0, 0, 5, 7});
    expectExtent(Geometry::resized(coordinates(60, 2), 1), {0, 0, 1, 1});
    expectNear(pixel(Geometry::resized(grey(60, 40, 0.3f), 20), 0, 0), {0.3f, 0.3f, 0.3f, 1});
    EXPECT_TRUE(Geometry::resized(CIImage::withColor({}), 10).extent().isInfinite());
}

} // namespace
} // namespace orvane
