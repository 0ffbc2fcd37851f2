#include "HistogramCounter.h"
#include "TestWaiting.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane {
namespace {

CIImage grey(double level, double width, double height)
{
    return CIImage::withColor({level, level, level, 1}).cropped({0, 0, width, height});
}

TEST(HistogramCounter, CountsTheGradedPictureAgainstItsTallestBin)
{
    const Histogram white = countedHistogram(grey(1, 900, 600), {});
    ASSERT_EQ(white.r.size(), 256U);
    for (const auto* channel : {&white.r, &white.g, &white.b}) {
        EXPECT_EQ(channel->back(), 1);
        EXPECT_EQ(std::count(channel->begin(), channel->end(), 0.0), 255);
    }
    // Three quarters without red, and all of it a stop brighter: blue's tallest bin is whole.
    const CIImage parts =
        CIImage::withColor({0, 0, 0.3, 1})
            .cropped({0, 0, 75, 40})
            .compositedOver(CIImage::withColor({1, 0, 0.3, 1}).cropped({0, 0, 100, 40}));
    const Histogram plain = countedHistogram(parts, {});
    EXPECT_NEAR(plain.r.front(), 0.75, 1e-6);
    EXPECT_NEAR(plain.r.back(), 0.25, 1e-6);
    Adjustments brighter;
    brighter.exposure = 100;
    const auto tallest = [](const Histogram& histogram) {
        return std::max_element(histogram.b.begin(), histogram.b.end()) - histogram.b.begin();
    };
    EXPECT_GT(tallest(countedHistogram(parts, brighter)), tallest(plain));
    EXPECT_EQ(countedHistogram(CIImage(), {}), Histogram());
}

TEST(HistogramCounter, EndsWithTheNewestOfManyRequests)
{
    makeTestApplication();
    std::vector<Histogram> told;
    HistogramCounter counter([&told](const Histogram& counted) { told.push_back(counted); });
    for (int i = 0; i <= 20; ++i)
        counter.refresh(grey(i / 20.0, 600, 400), {});
    waitFor([&] { return !counter.isCounting(); });
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told.front().r.front(), 1);
    EXPECT_EQ(told.back().r.back(), 1);

    counter.refresh(grey(1, 600, 400), {});
    counter.refresh({}, {});
    EXPECT_FALSE(counter.isCounting());
    EXPECT_EQ(told.back(), Histogram());
}

} // namespace
} // namespace orvane
