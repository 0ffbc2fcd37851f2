#include "CanvasMapping.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(CanvasMapping, PointsBecomeFractionsAndBack)
{
    // A picture of 4000 x 2000 fitted into 1000 x 1000: 0.25, with bands of 250 above and below.
    const CanvasView fitted{.frame = {4000, 2000}, .size = {1000, 1000}};
    CanvasView zoomed = fitted;
    zoomed.zoom = 2;
    CanvasView panned = zoomed;
    panned.pan = {100, -50};
    CanvasView below = fitted;
    below.zoom = 0.5; // counts as 1

    struct Row {
        const char* what;
        CanvasView view;
        CGPoint point;
        std::optional<CGPoint> fraction;
    };
    const Row rows[] = {
        {"the top left corner", fitted, {0, 250}, CGPoint{0, 0}},
        {"a quarter across", fitted, {250, 625}, CGPoint{0.25, 0.75}},
        {"the band above", fitted, {500, 249}, {}},
        {"the band below", fitted, {500, 751}, {}},
        {"the centre stays under the zoom", zoomed, {500, 500}, CGPoint{0.5, 0.5}},
        {"the view's corner, zoomed", zoomed, {0, 0}, CGPoint{0.25, 0}},
        {"the pan is taken off first", panned, {600, 450}, CGPoint{0.5, 0.5}},
        {"beyond the panned picture's top", panned, {600, -51}, {}},
        {"a zoom below 1", below, {0, 250}, CGPoint{0, 0}},
        {"no picture", {.size = {1000, 1000}}, {500, 500}, {}},
        {"a picture without a whole pixel", {.frame = {0.5, 40}, .size = {9, 9}}, {4, 4}, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const auto fraction = normalized(row.point, row.view);
        ASSERT_EQ(fraction.has_value(), row.fraction.has_value());
        if (!fraction)
            continue;
        EXPECT_DOUBLE_EQ(fraction->x, row.fraction->x);
        EXPECT_DOUBLE_EQ(fraction->y, row.fraction->y);
        const CGPoint back = viewPoint(*fraction, row.view);
        EXPECT_DOUBLE_EQ(back.x, row.point.x);
        EXPECT_DOUBLE_EQ(back.y, row.point.y);
    }
}

TEST(CanvasMapping, LengthsFollowTheLongEdgeAndThePinch)
{
    CanvasView view{.frame = {2000, 4000}, .size = {1000, 1000}};
    EXPECT_DOUBLE_EQ(imageLength(0.1, view), 100);
    EXPECT_DOUBLE_EQ(imageLength(0.001, view), 3) << "too small to see";
    view.zoom = 2;
    view.pinch = 1.5;
    EXPECT_DOUBLE_EQ(imageLength(0.1, view), 300);
    EXPECT_DOUBLE_EQ(imageLength(0.1, {}), 10) << "without a picture";
}

TEST(CanvasMapping, ZoomStaysWithinItsLimits)
{
    EXPECT_EQ(zoomedIn(14), 16);
    EXPECT_EQ(zoomedOut(1.1), 1);
    EXPECT_EQ(actualSizeZoom({4000, 3000}, {1000, 1000}), 4);
    EXPECT_EQ(actualSizeZoom({400, 300}, {1000, 1000}), 1) << "smaller than the view";
    EXPECT_EQ(actualSizeZoom({60000, 300}, {1000, 1000}), 16);
    EXPECT_EQ(actualSizeZoom({60000, 300}, {5, 5}), 16) << "a view of almost nothing";
}

TEST(CanvasMapping, ZoomingKeepsThePointUnderThePointer)
{
    CanvasView view{.frame = {300, 200}, .size = {900, 700}, .zoom = 2, .pan = {40, -25}};
    const CGPoint pointer{610, 420};
    const CGPoint before = normalized(pointer, view).value();
    view.pan = panKeeping(pointer, 5, view);
    view.zoom = 5;
    const CGPoint after = normalized(pointer, view).value();
    EXPECT_NEAR(after.x, before.x, 1e-12);
    EXPECT_NEAR(after.y, before.y, 1e-12);
}

TEST(CanvasMapping, ThePictureCannotBePannedOutOfSight)
{
    CanvasView view{.frame = {400, 400}, .size = {100, 100}, .zoom = 2, .pan = {5000, -5000}};
    view.pan = heldPan(view);
    EXPECT_EQ(view.pan, (CGPoint{100, -100}));
    EXPECT_EQ(normalized({50, 50}, view), (CGPoint{0, 1}));
    view.zoom = 1;
    EXPECT_EQ(heldPan(view), (CGPoint{0, 0})) << "a fitted picture lies in the middle";
}

} // namespace
} // namespace orvane
