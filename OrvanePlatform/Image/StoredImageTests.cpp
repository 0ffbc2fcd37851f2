#include "StoredImage.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace orvane {
namespace {

/// The values after they were kept as compact floats, in three channels of different signs.
std::vector<float> kept(const std::vector<float>& values)
{
    constexpr int y = -3;
    const PixelRect rect{-5, y, int(values.size()) - 5, y + 1};
    TileArena arena;
    const TilePlanes planes = arena.planes(rect, true);
    for (size_t i = 0; i < values.size(); ++i) {
        planes.row(0, y)[i] = values[i];
        planes.row(1, y)[i] = -values[i];
        planes.row(2, y)[i] = values[i];
    }
    StoredImage image(rect, true, StoredFormat::Compact);
    // In two parts that are no whole number of vectors; the first must not reach into the second.
    const int seam = rect.x0 + rect.width() / 3;
    image.write(planes, {seam, y, rect.x1, y + 1});
    image.write(planes, {rect.x0, y, seam, y + 1});
    const TilePlanes read = image.read(rect, arena);
    const std::vector<float> result(read.row(0, y), read.row(0, y) + values.size());
    for (size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i]))
            continue;
        EXPECT_EQ(read.row(1, y)[i], -result[i]) << values[i];
        EXPECT_EQ(read.row(2, y)[i], result[i]) << values[i];
    }
    return result;
}

/// Every instruction set that this machine has.
class CompactFloats : public testing::TestWithParam<int64_t> {
protected:
    void SetUp() override { hwy::SetSupportedTargetsForTest(GetParam()); }
    void TearDown() override { hwy::SetSupportedTargetsForTest(0); }
};

TEST_P(CompactFloats, HaveTwelveDigits)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> exponents(-24, 5.9f);
    std::vector<float> values(5000);
    for (float& value : values)
        value = std::exp2(exponents(random));
    const std::vector<float> found = kept(values);
    for (size_t i = 0; i < values.size(); ++i) {
        const float step = std::exp2(std::floor(std::log2(values[i] + 0x1p-10f)) - 11);
        EXPECT_LE(std::abs(found[i] - values[i]), step * 0.501f) << values[i];
    }
    // What is drawn over and kept again must not wander.
    EXPECT_EQ(kept(found), found);
}

TEST_P(CompactFloats, KeepWhatMustNotChange)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const std::vector<float> same = {
        0, 1, 0.5, 0.25, 2, 3.5, 4 - 0x1p-10f, 1 - 0x1p-11f, 0x1p-10f, 0x1p-21f};
    EXPECT_EQ(kept(same), same);
    const float most = 64 - 0x1p-6f - 0x1p-10f;
    EXPECT_EQ(kept({63.99f, 64, 1e9f, 3e38f, infinity}),
              (std::vector<float>{most, most, most, most, most}));
    EXPECT_TRUE(std::signbit(kept({-0.0f})[0]));
    EXPECT_EQ(kept({1e-30f, 1e-42f})[0], 0);
    EXPECT_EQ(std::abs(kept({std::nanf("")})[0]), most);
}

INSTANTIATE_TEST_SUITE_P(Targets, CompactFloats,
                         testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& target) { return hwy::TargetName(target.param); });

} // namespace
} // namespace orvane
