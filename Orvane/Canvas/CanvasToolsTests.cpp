#include "CanvasTesting.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// A picture of 600 x 400 in a view of 600 x 400.
class CanvasToolsTest : public CanvasTest {
protected:
    CanvasToolsTest() { show(plainPicture(600, 400)); }

    const EditState::Light& light() { return model->lights.value().back(); }
    size_t steps() { return model->historySteps().size(); }
    Qt::CursorShape cursorAt(double x, double y)
    {
        move(at(x, y));
        return view->cursor().shape();
    }
    QString description() { return view->accessibleDescription(); }
};

void expectNear(const CGRect& actual, const CGRect& expected)
{
    EXPECT_NEAR(actual.minX(), expected.minX(), 1e-9);
    EXPECT_NEAR(actual.minY(), expected.minY(), 1e-9);
    EXPECT_NEAR(actual.width(), expected.width(), 1e-9);
    EXPECT_NEAR(actual.height(), expected.height(), 1e-9);
}

TEST_F(CanvasToolsTest, CropByItsHandles)
{
    model->enterCrop();
    settle();
    EXPECT_TRUE(view->hasFocus()) << "for the arrow keys";
    EXPECT_EQ(cursorAt(0.01, 0.01), Qt::SizeFDiagCursor);
    EXPECT_EQ(cursorAt(0.99, 0.01), Qt::SizeBDiagCursor);
    EXPECT_EQ(cursorAt(0.5, 0.99), Qt::SizeVerCursor);
    EXPECT_EQ(cursorAt(0.5, 0.5), Qt::SizeAllCursor);

    press(at(0.01, 0.02));
    move(at(0.11, 0.12));
    move(at(0.21, 0.32));
    EXPECT_EQ(model->crop, CGRect(0, 0, 1, 1)) << "told at the end of the drag";
    release(at(0.21, 0.32));
    expectNear(model->crop, {0.2, 0.3, 0.8, 0.7});
    drag(at(1, 0.6), at(0.7, 0.6));
    expectNear(model->crop, {0.2, 0.3, 0.5, 0.7});
    drag(at(0.4, 0.6), at(0.1, 0.2));
    expectNear(model->crop, {0, 0, 0.5, 0.7});

    press(at(0.5, 0.3));
    move(at(0.9, 0.3));
    key(Qt::Key_Escape);
    release(at(0.9, 0.3));
    expectNear(model->crop, {0, 0, 0.5, 0.7});
    EXPECT_TRUE(model->cropMode) << "the first Escape drops the drag alone";
    EXPECT_EQ(painted, 1) << "the whole frame is on screen all along";
    key(Qt::Key_Return);
    EXPECT_FALSE(model->cropMode);
    waitForPicture();
    EXPECT_EQ(view->mapping().frame, (CGSize{300, 280}));

    // The tool shows the whole frame again, and takes no press before it is there.
    model->enterCrop();
    settle();
    if (painted == 2)
        press(at(0.5, 0.5));
    waitFor([&] { return view->mapping().frame == (CGSize{600, 400}); });
    key(Qt::Key_Escape);
    expectNear(model->crop, {0, 0, 0.5, 0.7});
}

TEST_F(CanvasToolsTest, CropByKeysAndHeldToItsRatio)
{
    model->enterCrop();
    model->setCropNative({0.2, 0.2, 0.4, 0.4});
    settle();
    key(Qt::Key_Right);
    key(Qt::Key_Up, Qt::ShiftModifier);
    expectNear(model->crop, {0.205, 0.18, 0.4, 0.4});
    key(Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier);
    expectNear(model->crop, {0.195, 0.17, 0.42, 0.42});
    key(Qt::Key_Down, Qt::AltModifier);
    expectNear(model->crop, {0.1975, 0.1725, 0.415, 0.415});
    model->setAspect("1:1");
    drag(at(model->crop.value().maxX(), model->crop.value().maxY()), at(0.8, 0.5));
    EXPECT_NEAR(model->crop.value().width() * 600, model->crop.value().height() * 400, 1e-9);
}

TEST_F(CanvasToolsTest, LightsArePlacedMovedAndSized)
{
    model->enterRelight();
    settle();
    EXPECT_EQ(model->lights.value().size(), 1U);
    const size_t before = steps();
    click(at(0.2, 0.25));
    ASSERT_EQ(model->lights.value().size(), 2U);
    EXPECT_EQ(light().x, 0.2);
    EXPECT_EQ(light().y, 0.25);
    EXPECT_EQ(model->selectedLightID.value(), light().id);
    EXPECT_EQ(steps(), before + 1);
    settle();

    drag(at(0.9, 0.9), at(0.95, 0.9));
    EXPECT_EQ(model->lights.value().size(), 2U) << "no click, and nothing held";

    clock += 10;
    EXPECT_EQ(cursorAt(0.2, 0.25), Qt::OpenHandCursor);
    press(at(0.2, 0.25));
    move(at(0.3, 0.5));
    EXPECT_EQ(light().x, 0.2) << "told at the end of the drag";
    release(at(0.3, 0.5));
    EXPECT_NEAR(light().x, 0.3, 1e-9);
    EXPECT_NEAR(light().y, 0.5, 1e-9);
    EXPECT_EQ(steps(), before + 2) << "one step for both coordinates";
    click(at(0.31, 0.5));
    EXPECT_NEAR(light().x, 0.3, 1e-9) << "a click moves nothing";

    clock += 10;
    const int ring = int(0.24 * 600);
    const QPoint below = at(0.3, 0.5) + QPoint(0, ring);
    EXPECT_EQ((move(below), view->cursor().shape()), Qt::SizeVerCursor);
    drag(below, below - QPoint(0, 84));
    EXPECT_NEAR(light().radius, 0.1, 1e-9) << "grabbed where it is seen";
    EXPECT_EQ(steps(), before + 3);

    key(Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_NEAR(light().x, 0.28, 1e-9);
    key(Qt::Key_Escape);
    EXPECT_FALSE(model->relightMode);
    EXPECT_TRUE(model->lights.value().empty()) << "as they were before";
}

TEST_F(CanvasToolsTest, ABrushPaintsAStrokeInOneStep)
{
    model->enterRelight();
    model->addLightAt("brush", 0.5, 0.5);
    settle();
    const size_t before = steps();
    press(at(0.1, 0.5));
    for (int i = 1; i <= 60; ++i)
        move(at(0.1 + 0.005 * i, 0.5));
    EXPECT_TRUE(light().strokes.empty());
    release(at(0.4, 0.5));
    ASSERT_EQ(light().strokes.size(), 1U);
    // 0.3 of the width in steps of at least 0.4 times 0.06; a pixel is 0.0017.
    EXPECT_EQ(light().strokes[0].size(), 13U);
    EXPECT_EQ(steps(), before + 1);
    click(at(0.8, 0.8));
    EXPECT_EQ(light().strokes.back().size(), 1U) << "a dab";
    EXPECT_EQ(model->lights.value().size(), 2U);
    key(Qt::Key_Enter);
    EXPECT_FALSE(model->relightMode);
    EXPECT_EQ(model->lights.value().size(), 2U);
}

TEST_F(CanvasToolsTest, AHealStrokeLeavesSpotsHalfARadiusApart)
{
    model->toggleHeal();
    settle();
    press(at(0.2, 0.5));
    for (int i = 0; i < 5; ++i)
        move(at(0.2, 0.5));
    release(at(0.2, 0.5));
    EXPECT_EQ(model->ciHealSpots.value().size(), 1U) << "a pointer at rest";

    // Half of 0.041 of 600 pixels are 12.3, also downwards: every 13th pixel gets a spot.
    model->healSize = 4.1;
    press(at(0.5, 0.5));
    for (int i = 1; i <= 60; ++i)
        move(at(0.5, 0.5) + QPoint(0, i));
    release(at(0.5, 0.5) + QPoint(0, 60));
    EXPECT_EQ(model->ciHealSpots.value().size(), 1U + 5U);
    EXPECT_EQ(model->historySteps().size(), 2U);

    show(plainPicture(600, 400), {800, 400}); // with bands of 100 beside it
    click({50, 200});
    EXPECT_EQ(model->ciHealSpots.value().size(), 6U) << "beside the picture nothing happens";
    EXPECT_EQ(view->mapping().zoom, 1);
    key(Qt::Key_Escape);
    EXPECT_FALSE(model->healing);
}

TEST_F(CanvasToolsTest, ACaptionIsMovedAndTheViewIsNot)
{
    model->addText();
    settle();
    model->zoom = 2;
    settle();
    const std::string id = model->selectedTextID;
    const auto caption = [&] { return model->texts.value().front(); };
    const size_t before = steps();
    drag(at(0.5, 0.6), at(0.3, 0.4));
    EXPECT_NEAR(caption().x, 0.3, 1e-3) << "from elsewhere it comes to the pointer";
    EXPECT_NEAR(caption().y, 0.4, 1e-3);
    EXPECT_EQ(steps(), before + 1);
    EXPECT_EQ(view->mapping().pan, CGPoint());
    const EditState::TextLayer placed = caption();
    drag(at(0.33, 0.4), at(0.43, 0.5));
    EXPECT_NEAR(caption().x, placed.x + 0.1, 1e-3) << "taken by its words it keeps them there";
    EXPECT_NEAR(caption().y, placed.y + 0.1, 1e-3);
    QTest::mouseDClick(view.get(), Qt::LeftButton, {}, at(0.5, 0.5));
    EXPECT_EQ(model->zoom, 2);

    model->addText(); // at (0.5, 0.85), and selected
    settle();
    EXPECT_NE(model->selectedTextID.value(), id);
    click(at(caption().x, caption().y));
    EXPECT_EQ(model->selectedTextID.value(), id);
    key(Qt::Key_Escape);
    EXPECT_EQ(model->selectedTextID.value(), "");
}

TEST_F(CanvasToolsTest, AClickPicksWhiteAndOnlyOnThePicture)
{
    show(plainPicture(600, 400), {600, 800});
    model->pickWhiteBalance();
    settle();
    click({300, 20});
    EXPECT_TRUE(model->pickingWhite) << "beside the picture";
    EXPECT_NE(cursorAt(0.5, 0.5), Qt::ArrowCursor);
    click(at(0.5, 0.5));
    EXPECT_FALSE(model->pickingWhite);
    model->pickWhiteBalance();
    settle();
    key(Qt::Key_Escape);
    EXPECT_FALSE(model->pickingWhite);
}

TEST_F(CanvasToolsTest, AScreenReaderIsToldOfTheToolAndTheZoom)
{
    EXPECT_EQ(description(), "Zoom to fit");
    model->zoom = 1.5625;
    settle();
    EXPECT_EQ(description(), "Zoom 156 percent");
    model->enterCrop();
    settle();
    EXPECT_EQ(description(),
              "Cropping. Drag the corners, or use the arrow keys to move and Option-arrows to "
              "resize. Zoom 156 percent");
    model->zoom = 1;
    model->enterRelight();
    settle();
    EXPECT_EQ(description(),
              "Relighting. Drag a light to move it, or use Position X and Y in the Relight "
              "section. Zoom to fit");
    model->clearLights();
    settle();
    EXPECT_EQ(description(), "Relighting. Click the image to place a light. Zoom to fit");
}

} // namespace
} // namespace orvane
