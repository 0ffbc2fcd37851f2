#include "DrawnProxy.h"

#include "Baker.h"
#include "Bitmap.h"
#include "Geometry.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// Stripes and a ramp, with holes when it has an alpha channel.
CIImage source(int width, int height, int channels)
{
    auto bitmap = std::make_shared<Bitmap>(width, height, channels, SampleType::U8,
                                           channels == 4 ? AlphaKind::Straight : AlphaKind::None);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * channels; ++x)
            bitmap->row(y)[x] = uint8_t((x / channels / 8) % 2 * 90 + x * 160 / (width * channels));
    }
    return CIImage::withBitmap(bitmap);
}

TEST(DrawnProxy, LooksLikeTheReducedSourceAndKeepsItsOpacity)
{
    for (const int channels : {3, 4}) {
        SCOPED_TRACE(channels);
        const CIImage large = source(3000, 40, channels);
        const CGImage expected = Baker::cgImage(Geometry::resized(large, proxyEdge)).value();
        const CGImage actual = Baker::cgImage(drawnProxy(large)).value();
        EXPECT_EQ(actual.width, proxyEdge);
        EXPECT_EQ(actual.height, expected.height);
        EXPECT_EQ(actual.format, expected.format);
        EXPECT_EQ(actual.pixels, expected.pixels);
    }
}

TEST(DrawnProxy, ASourceThatIsSmallEnoughIsItsOwnProxy)
{
    for (const int width : {2000, proxyEdge}) {
        const CIImage small = source(width, 10, 3);
        EXPECT_TRUE(drawnProxy(small).isSame(small)) << width;
    }
}

} // namespace
} // namespace orvane
