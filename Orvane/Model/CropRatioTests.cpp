#include "CropRatio.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace orvane {
namespace {

const CGSize lying{3000, 2000};
const CGSize standing{2000, 3000};

TEST(CropRatioTest, ReadsRatiosAndTurnsThemWithTheFrame)
{
    const struct {
        const char* id;
        std::optional<CGSize> frame;
        std::optional<double> expected;
    } cases[] = {
        {"3:2", lying, 1.5},
        {"3:2", standing, 2.0 / 3},
        {"4:5", standing, 0.8},
        {"4:5", CGSize{9, 9}, 1.25},
        {"4:5", std::nullopt, 0.8},
        {"4:5", CGSize{0, 9}, 0.8},
        {"1:1", standing, 1},
        {"1.91:1", lying, 1.91},
        // Only what reads as numbers counts.
        {"16:x:9", lying, 16.0 / 9},
        {"3:0", lying, std::nullopt},
        {"3:-2", lying, std::nullopt},
        {"0:2", lying, std::nullopt},
        {"nan:2", lying, std::nullopt},
        {"3:2:1", lying, std::nullopt},
        {"3:2 ", lying, std::nullopt},
        {"free", lying, std::nullopt},
        {"", lying, std::nullopt},
    };
    for (const auto& [id, frame, expected] : cases)
        EXPECT_EQ(CropRatio::pixelRatio(id, frame), expected) << id;
}

void expectNear(const CGRect& actual, const CGRect& expected, const std::string& what)
{
    const double difference = std::max(
        {std::abs(actual.minX() - expected.minX()), std::abs(actual.minY() - expected.minY()),
         std::abs(actual.maxX() - expected.maxX()), std::abs(actual.maxY() - expected.maxY())});
    EXPECT_LT(difference, 1e-12) << what << ": " << actual.minX() << " " << actual.minY() << " "
                                 << actual.width() << " " << actual.height();
}

TEST(CropRatioTest, FitsACropToARatio)
{
    const CGRect full(0, 0, 1, 1);
    const struct {
        const char* what;
        CGRect crop;
        std::optional<double> ratio;
        CGSize frame;
        CGRect expected;
    } cases[] = {
        {"a centred square", full, 1, lying, {1.0 / 6, 0, 2.0 / 3, 1}},
        {"a square of a standing one", full, 1, standing, {0, 1.0 / 6, 1, 2.0 / 3}},
        {"wider than the frame", full, 3, lying, {0, 0.25, 1, 0.5}},
        {"the frame's own", full, 1.5, lying, full},
        {"about its centre", {0.4, 0.4, 0.2, 0.2}, 1, lying, {0.4, 0.35, 0.2, 0.3}},
        {"at the lower right corner", {0.8, 0.9, 0.2, 0.1}, 1, lying, {0.8, 0.7, 0.2, 0.3}},
        {"at the upper left corner", {0, 0, 0.2, 0.1}, 1, lying, {0, 0, 0.2, 0.3}},
        {"high and narrow", {0, 0, 1, 0.5}, 0.5, lying, {1.0 / 3, 0, 1.0 / 3, 1}},
        {"no ratio", {0.4, 0.4, 0.2, 0.2}, std::nullopt, lying, {0.4, 0.4, 0.2, 0.2}},
        {"no frame", full, 1, {0, 2000}, full},
    };
    for (const auto& [what, crop, ratio, frame, expected] : cases)
        expectNear(CropRatio::fit(crop, ratio, frame), expected, what);
}

} // namespace
} // namespace orvane
