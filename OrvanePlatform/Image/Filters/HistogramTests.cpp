#include "Filters/CIFilter.h"

#include "Filters/PixelExpectations.h"

namespace orvane {
namespace {

using namespace FilterTesting;

TEST(Histogram, CountsSharesOfStraightLinearValues)
{
    const CIImage reds = opaqueImage(2, 2, {0, 0, 0, 0.5f, 0, -1, 1, 0, 2, 1.5f, 0, 0.999f});
    const CIImage bins = CIFilter::areaHistogram(reds, {0, 0, 2, 2}, 256);
    EXPECT_EQ(bins.extent(), CGRect(0, 0, 256, 1));
    expectPixel(bins, 0, 0, {0.25f, 1, 0.5f, 0}, 0);
    expectPixel(bins, 128, 0, {0.25f, 0, 0, 0}, 0);
    expectPixel(bins, 255, 0, {0.5f, 0, 0.5f, 1}, 0);
    // Stored 0.25 at an alpha of 0.5 is a straight 0.5; a clear pixel counts as black.
    const CIImage covered = pixelsImage(2, 1, {0.25f, 0.25f, 0.25f, 0.5f, 0, 0, 0, 0});
    const CIImage four = CIFilter::areaHistogram(covered, {0, 0, 2, 1}, 4, 10);
    expectPixel(four, 0, 0, {5, 5, 5, 5}, 0);
    expectPixel(four, 2, 0, {5, 5, 5, 5}, 0);
}

TEST(Histogram, ReadsItsRectangleAlone)
{
    const CIImage picture = randomPicture(50, 40, true);
    const CIImage bins = CIFilter::areaHistogram(picture, {10, 5, 30, 20}, 16, 600);
    EXPECT_EQ(tiled(bins, {0, 0, 16, 1}), reference(bins, {0, 0, 16, 1}));
    // The part of a rectangle beyond the picture is transparent black.
    const CIImage white = CIImage::withColor({1, 1, 1, 1}).cropped({0, 0, 2, 2});
    const CIImage wide = CIFilter::areaHistogram(white, {0, 0, 4, 4}, 2);
    expectPixel(wide, 0, 0, {0.75f, 0.75f, 0.75f, 0.75f}, 0);
    expectPixel(wide, 1, 0, {0.25f, 0.25f, 0.25f, 0.25f}, 0);
    // Infinite: the picture's own extent.
    EXPECT_EQ(CIFilter::areaHistogram(white, CGRect::infinite(), 2).digest(),
              CIFilter::areaHistogram(white, {0, 0, 2, 2}, 2).digest());
    EXPECT_TRUE(CIFilter::areaHistogram(white, {0, 0, 0, 2}, 2).isEmpty());
    EXPECT_TRUE(CIFilter::areaHistogram(white, {0, 0, 2, 2}, 0).isEmpty());
}

} // namespace
} // namespace orvane
