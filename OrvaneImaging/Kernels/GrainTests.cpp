#include "Kernels.h"

#include "ReferenceRenderer.h"
#include "TestImages.h"

namespace orvane {
namespace {

using namespace test;

constexpr int side = 256;

/// The grain itself, -0.5 .. 0.5, of a square whose lower left pixel is (x, y); rows upwards.
std::vector<double> noiseFrom(int x, int y)
{
    const double amp = 0.1;
    const CIImage place = grey(side, side, 0.5f).transformed(CGAffineTransform::translation(x, y));
    const FloatImage drawn = drawReference(Kernels::grain(place, amp), {x, y, x + side, y + side});
    std::vector<double> noise;
    for (size_t i = 0; i < drawn.samples.size(); i += 4)
        noise.push_back((double(drawn.samples[i]) - 0.5) / (2 * amp));
    return noise;
}

double meanProduct(const std::vector<double>& noise, size_t distance)
{
    double sum = 0;
    for (size_t i = distance; i < noise.size(); ++i)
        sum += noise[i] * noise[i - distance];
    return sum / double(noise.size() - distance);
}

// 65536 even numbers over a range of 1: the mean's own deviation is 0.0011, that of a product of
// two 0.0003, that of a row's mean 0.018.
TEST(Grain, LooksRandomNearTheOriginAndFarFromIt)
{
    for (const auto& [x, y] : {std::pair{0, 0}, {-700, -300}, {9000, 6000}}) {
        SCOPED_TRACE(x);
        const std::vector<double> noise = noiseFrom(x, y);
        double mean = 0;
        std::vector<double> rows(side), columns(side);
        for (size_t i = 0; i < noise.size(); ++i) {
            mean += noise[i] / double(noise.size());
            rows[i / side] += noise[i] / side;
            columns[i % side] += noise[i] / side;
        }
        EXPECT_NEAR(mean, 0, 0.006);
        EXPECT_NEAR(meanProduct(noise, 0), 1.0 / 12, 0.003);
        for (const size_t distance : {1, 2, 3, side - 1, side, side + 1, 2 * side})
            EXPECT_NEAR(meanProduct(noise, distance), 0, 0.003) << distance;
        for (size_t i = 0; i < side; ++i) {
            EXPECT_NEAR(rows[i], 0, 0.09) << "row " << i;
            EXPECT_NEAR(columns[i], 0, 0.09) << "column " << i;
        }
    }
}

// One bit of the sine is 0.005 of the noise: the evaluators must not differ in a single one.
TEST(Grain, IsTheSameNoiseInTilesOfAnySize)
{
    const CIImage place =
        grey(103, 37, 0.5f).transformed(CGAffineTransform::translation(11000, 7001));
    const CIImage grained = Kernels::grain(place, 0.5);
    const PixelRect rect{11000, 7001, 11103, 7038};
    const FloatImage expected = drawReference(grained, rect);
    for (const int width : {16, 33, 128}) {
        const CIContext context({.threads = 2, .tileWidth = width, .tileHeight = 5});
        std::vector<float> drawn(expected.samples.size());
        ASSERT_TRUE(
            context.render(grained, drawn.data(), 103 * 16, rect.cgRect(), PixelFormat::RGBAFloat));
        for (int y = rect.y0; y < rect.y1; ++y) {
            for (int x = rect.x0; x < rect.x1; ++x)
                ASSERT_NEAR(drawn[size_t((rect.y1 - 1 - y) * 103 + x - rect.x0) * 4],
                            expected.at(x, y)[0], 1e-6)
                    << x << ", " << y;
        }
    }
}

} // namespace
} // namespace orvane
