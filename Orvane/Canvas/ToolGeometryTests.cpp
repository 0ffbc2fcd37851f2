#include "CropGeometry.h"
#include "LightGeometry.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(CropGeometry, APressTakesWhatIsInReach)
{
    const CGRect crop(0.2, 0.3, 0.6, 0.5);
    struct Row {
        const char* what;
        CGPoint at;
        CropGrab grab;
    };
    const Row rows[] = {
        {"0.03 from the upper left corner", {0.23, 0.27}, CropGrab::corner(false, false)},
        {"the lower right corner", {0.8, 0.8}, CropGrab::corner(true, true)},
        {"the upper right corner", {0.79, 0.31}, CropGrab::corner(true, false)},
        {"the left side", {0.21, 0.5}, CropGrab::edgeX(false)},
        {"the right side", {0.83, 0.5}, CropGrab::edgeX(true)},
        {"the top", {0.5, 0.33}, CropGrab::edgeY(false)},
        {"the bottom, from outside", {0.5, 0.83}, CropGrab::edgeY(true)},
        {"0.05 from every side", {0.25, 0.35}, CropGrab::move()},
        {"far outside", {0.05, 0.05}, CropGrab::move()},
    };
    for (const Row& row : rows)
        EXPECT_EQ(CropGeometry::grab(row.at, crop), row.grab) << row.what;
}

void expectNear(const CGRect& actual, const CGRect& expected)
{
    EXPECT_NEAR(actual.minX(), expected.minX(), 1e-12);
    EXPECT_NEAR(actual.minY(), expected.minY(), 1e-12);
    EXPECT_NEAR(actual.width(), expected.width(), 1e-12);
    EXPECT_NEAR(actual.height(), expected.height(), 1e-12);
}

TEST(CropGeometry, ADragStopsAtTheFrameAndHoldsTheRatio)
{
    const CGRect crop(0.2, 0.3, 0.4, 0.5);
    const CGSize frame{3000, 2000};
    const CropGeometry::Ratio any{{}, frame};
    const CropGeometry::Ratio square{1.0, frame};
    struct Row {
        const char* what;
        CropGrab grab;
        CGPoint by;
        CropGeometry::Ratio ratio;
        CGRect expected;
    };
    const Row rows[] = {
        {"moved", CropGrab::move(), {0.1, -0.1}, any, {0.3, 0.2, 0.4, 0.5}},
        {"moved to the frame's edge", CropGrab::move(), {0.9, -0.9}, any, {0.6, 0, 0.4, 0.5}},
        {"a corner", CropGrab::corner(true, false), {0.1, 0.1}, any, {0.2, 0.4, 0.5, 0.4}},
        {"a side past the other", CropGrab::edgeX(true), {-0.9, 0}, any, {0.2, 0.3, 0.05, 0.5}},
        {"the same from the left", CropGrab::edgeX(false), {0.9, 0}, any, {0.55, 0.3, 0.05, 0.5}},
        {"a top beyond the frame", CropGrab::edgeY(false), {0.3, -0.9}, any, {0.2, 0, 0.4, 0.8}},
        {"a bottom beyond it", CropGrab::edgeY(true), {0, 0.9}, any, {0.2, 0.3, 0.4, 0.7}},
        {"a square's corner", CropGrab::corner(true, true), {0, 0.1}, square, {0.2, 0.3, 0.4, 0.6}},
        {"a square's top corner keeps the bottom",
         CropGrab::corner(true, false),
         {0, 0.1},
         square,
         {0.2, 0.2, 0.4, 0.6}},
        {"a square's top side",
         CropGrab::edgeY(false),
         {0, 0.1},
         square,
         {0.2, 0.4, 0.4 * 2 / 3, 0.4}},
        {"moved back inside", CropGrab::edgeX(true), {0.2, 0}, square, {0.2, 0.1, 0.6, 0.9}},
        {"no higher than the frame",
         CropGrab::edgeX(false),
         {-0.2, 0},
         {0.5, frame},
         {0.6 - 1.0 / 3, 0, 1.0 / 3, 1}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        expectNear(CropGeometry::resized(crop, row.grab, row.by, row.ratio), row.expected);
    }
    expectNear(CropGeometry::grown(crop, 0.1, any), {0.15, 0.25, 0.5, 0.6});
    expectNear(CropGeometry::grown(crop, -0.9, any), {0.375, 0.525, 0.05, 0.05});
    expectNear(CropGeometry::grown({0.6, 0.5, 0.4, 0.5}, 0.2, any), {0.4, 0.3, 0.6, 0.7});
    expectNear(CropGeometry::grown(crop, 0.2, square), {0.1, 0.1, 0.6, 0.9});
}

TEST(LightGeometry, APressTakesTheNearestCentreElseTheFirstRing)
{
    const auto light = [](const char* id, const char* type, double x, double y, double radius) {
        EditState::Light made;
        made.id = id;
        made.type = type;
        made.x = x;
        made.y = y;
        made.radius = radius;
        return made;
    };
    // On this picture a tenth of the width is a fifth of the height.
    const CGSize frame{2000, 1000};
    const LightGeometry::Lights lights = {
        light("brush", "brush", 0.5, 0.5, 0.06), light("a", "radial", 0.5, 0.5, 0.2),
        light("b", "radial", 0.53, 0.5, 0.2), light("c", "linear", 0.9, 0.5, 0.05)};
    using Kind = LightGeometry::Grab::Kind;
    struct Row {
        const char* what;
        CGPoint at;
        LightGeometry::Grab grab;
    };
    const Row rows[] = {
        {"nearer to the second", {0.52, 0.5}, {Kind::Centre, "b"}},
        {"nearer to the first", {0.51, 0.5}, {Kind::Centre, "a"}},
        {"its ring where it is seen, above it", {0.5, 0.1}, {Kind::Ring, "a"}},
        {"both rings", {0.715, 0.5}, {Kind::Ring, "a"}},
        {"the second's ring alone", {0.75, 0.5}, {Kind::Ring, "b"}},
        {"the centre before its own ring", {0.87, 0.5}, {Kind::Centre, "c"}},
        {"nothing", {0.2, 0.9}, {}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(LightGeometry::grab(row.at, lights, frame), row.grab) << row.what;

    EXPECT_DOUBLE_EQ(LightGeometry::radius({0.5, 0.5}, {0.5, 0.9}, frame), 0.2);
    EXPECT_EQ(LightGeometry::radius({0.5, 0.5}, {0.5, 0.5}, frame), 0.02);
    EXPECT_EQ(LightGeometry::radius({0, 0}, {9, 9}, frame), 1.5);
}

} // namespace
} // namespace orvane
