#include "Curves.h"
#include "TestImages.h"

#include <numeric>

namespace orvane {
namespace {

using namespace test;

using Points = std::vector<Adjustments::CurvePoint>;

Curves::Table identityTable()
{
    Curves::Table table;
    std::iota(table.begin(), table.end(), 0);
    return table;
}

TEST(CurvesLut, GivesTheIdentityForTooFewPointsAndStraightLines)
{
    const Points cases[] = {
        {},
        {{90, 10}},
        {{90, 10}, {90, 20}}, // one x only
        {{300, 5}, {256, 9}}, // both held to 255
        {{0, 0}, {255, 255}},
        {{255, 255}, {0, 0}, {100, 100}},
        {{-20, -20}, {300, 300}},
    };
    for (const Points& points : cases)
        EXPECT_EQ(Curves::lut(points), identityTable()) << points.size();
}

TEST(CurvesLut, IsLevelBeyondTheFirstAndTheLastPoint)
{
    const auto table = Curves::lut(Points{{64, 64}, {192, 192}});
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(table[size_t(v)], std::clamp(v, 64, 192));
}

TEST(CurvesLut, LetsTheLaterOfTwoPointsAtOneXWin)
{
    EXPECT_EQ(Curves::lut(Points{{0, 0}, {128, 10}, {255, 255}, {128, 200}}),
              Curves::lut(Points{{0, 0}, {128, 200}, {255, 255}}));
}

// Evaluated by hand from the definition, in exact fractions. For (0,0) (64,32) (255,255) the middle
// tangent is (1/2 + 223/191) / 2 and the limiter stays out.
TEST(CurvesLut, FollowsTheCubicBetweenPoints)
{
    const auto eased = Curves::lut(Points{{0, 0}, {64, 32}, {255, 255}});
    EXPECT_EQ(eased[32], 13);
    EXPECT_EQ(eased[64], 32);
    EXPECT_EQ(eased[160], 136);
}

TEST(CurvesLut, RisesOrFallsStraightFromPointToPoint)
{
    const Points steps[] = {
        {{0, 0}, {120, 10}, {125, 240}, {255, 255}},
        {{0, 255}, {10, 250}, {12, 3}, {255, 0}},
        {{0, 40}, {100, 40}, {180, 40}, {181, 220}, {255, 220}},
        {{0, 0}, {50, 90}, {150, 110}, {200, 200}}, // tangents of five times the slope between them
        {{0, 0}, {100, 200}, {250, 150}}, // a peak
    };
    for (const Points& points : steps) {
        const auto table = Curves::lut(points);
        for (size_t i = 0; i + 1 < points.size(); ++i) {
            const double direction = points[i + 1].y - points[i].y;
            for (int v = int(points[i].x); v < int(points[i + 1].x); ++v) {
                const int step = table[size_t(v) + 1] - table[size_t(v)];
                EXPECT_GE(direction == 0 ? -std::abs(step) : step * direction, 0) << v;
            }
            EXPECT_EQ(table[size_t(points[i].x)], points[i].y);
        }
    }
}

TEST(CurvesApply, ReturnsTheImageForTheIdentityCurveOnly)
{
    const CIImage image = grey(4, 4, 0.25f);
    EXPECT_TRUE(Curves::apply(image, Adjustments::identityCurve()).isSame(image));
    // Gaps are the identity as well; its table changes nothing, above white included.
    const CIImage bright = constant(2, 2, {0.3f, 1.7f, -0.2f, 1});
    expectNear(pixel(Curves::apply(bright, {}), 0, 0), {0.3f, 1.7f, -0.2f, 1});
}

TEST(CurvesApply, PutsTheMasterBeforeTheChannelsOnEncodedValues)
{
    // Master inverts; red then keeps only its lower half. 0.18 encodes to 0.461356.
    const Adjustments::Curve curve = {{"master", {{0, 255}, {255, 0}}},
                                      {"r", {{0, 0}, {127, 0}, {128, 255}, {255, 255}}}};
    const auto apply = [&](const CIImage& image) { return Curves::apply(image, curve); };
    expectNear(through(apply, {0.18f, 0.18f, 0.18f, 1}), {1, 0.251569f, 0.251569f, 1});
    expectNear(through(apply, {0.5f, 1.5f, -0.1f, 1}), {0, 0, 1, 1});
}

} // namespace
} // namespace orvane
