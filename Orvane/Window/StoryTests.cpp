// The window used as a person uses it: commands by their ids, controls by mouse, wheel and keys.

#include "CurvePlot.h"
#include "DoubleClickSlider.h"
#include "LevelsPlot.h"
#include "NativeInspector.h"
#include "WindowTesting.h"

#include <QPlainTextEdit>
#include <QScrollArea>
#include <QWheelEvent>
#include <QWindow>

namespace orvane {
namespace {

class StoryTest : public WindowTest {
protected:
    NativeInspector& inspector() { return *app->window.findChild<NativeInspector*>(); }
    /// Opens a section of the panel and scrolls it into sight.
    void unfold(const char* name)
    {
        inspector().setExpanded(name, true);
        QCoreApplication::processEvents();
    }
    DoubleClickSlider& slider(const QString& name) { return named<DoubleClickSlider>(name); }
    static void dragSlider(DoubleClickSlider& slider, int by)
    {
        const QPoint knob = slider.knobCentre().toPoint();
        dragOn(slider, knob, knob + QPoint(by, 0));
    }
    size_t steps() { return model().historySteps().size(); }
    double adjusted(const char* key)
    {
        const auto& adjust = model().adjust.value();
        return adjust.contains(key) ? adjust.at(key) : 0;
    }
};

TEST_F(StoryTest, GradesByHandAndEachGestureIsOneStep)
{
    openFiles({"a.jpg"});
    ASSERT_EQ(steps(), 1U);
    unfold("Light");
    dragSlider(slider("Exposure"), 12);
    EXPECT_GT(adjusted("exposure"), 0);
    EXPECT_EQ(steps(), 2U);
    trigger("undo");
    EXPECT_EQ(adjusted("exposure"), 0);
    EXPECT_EQ(slider("Exposure").number(), 0);
    trigger("redo");
    EXPECT_GT(adjusted("exposure"), 0);

    unfold("Curves");
    auto* plot = app->window.findChild<CurvePlot*>();
    ASSERT_NE(plot, nullptr);
    const size_t before = steps();
    dragOn(*plot, plot->rect().center(), plot->rect().center() - QPoint(0, 20));
    ASSERT_EQ(model().curve.value().at("master").size(), 3U);
    EXPECT_GT(model().curve.value().at("master")[1].y, model().curve.value().at("master")[1].x);
    EXPECT_GT(steps(), before);

    unfold("Levels");
    auto* levels = app->window.findChild<LevelsPlot*>();
    ASSERT_NE(levels, nullptr);
    const QPoint black(2, levels->height() - 4);
    dragOn(*levels, black, black + QPoint(30, 0));
    EXPECT_GT(model().levels().blackIn, 5);
}

TEST_F(StoryTest, KeysWaitUntilASliderIsLetGo)
{
    openFiles({"a.jpg"});
    unfold("Light");
    dragSlider(slider("Contrast"), 9);
    const double contrast = adjusted("contrast");
    ASSERT_GT(contrast, 0);
    // Through the system, which knows then that a button is held.
    QWindow* window = app->window.windowHandle();
    DoubleClickSlider& exposure = slider("Exposure");
    inspector().findChild<QScrollArea*>()->ensureWidgetVisible(&exposure);
    const QPoint knob = exposure.mapTo(&app->window, exposure.knobCentre().toPoint());
    QTest::mousePress(window, Qt::LeftButton, {}, knob);
    QTest::mouseMove(window, knob + QPoint(10, 0));
    QTest::keyClick(window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(adjusted("contrast"), contrast);
    QTest::mouseRelease(window, Qt::LeftButton, {}, knob + QPoint(10, 0));
    EXPECT_GT(adjusted("exposure"), 0);
    QTest::keyClick(window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(adjusted("exposure"), 0);
    EXPECT_EQ(adjusted("contrast"), contrast);
}

TEST_F(StoryTest, APictureThatComesInWaitsUntilASliderIsLetGo)
{
    openFiles({"a.jpg"});
    unfold("Light");
    QWindow* window = app->window.windowHandle();
    DoubleClickSlider& exposure = slider("Exposure");
    inspector().findChild<QScrollArea*>()->ensureWidgetVisible(&exposure);
    const QPoint knob = exposure.mapTo(&app->window, exposure.knobCentre().toPoint());
    // One that was on its way, and one that the desktop sends meanwhile.
    app->opener.open({picture("b.jpg")}, PictureOpener::How::Append);
    QTest::mousePress(window, Qt::LeftButton, {}, knob);
    QTest::mouseMove(window, knob + QPoint(10, 0));
    app->delegate.accept({picture("c.jpg")});
    pool.waitForDone();
    QTest::qWait(200);
    EXPECT_EQ(model().session.value().size(), 1U);
    EXPECT_GT(adjusted("exposure"), 0);
    desktop.answers = {1}; // Discard, to the question about the work of this drag
    QTest::mouseRelease(window, Qt::LeftButton, {}, knob + QPoint(10, 0));
    waitFor([&] {
        const auto& session = model().session.value();
        return session.size() == 1 && session[0].name == "c.jpg" && !app->opener.isOpening();
    });
}

TEST_F(StoryTest, CropsByAHandleAndPlacesALight)
{
    openFiles({"a.jpg"});
    trigger("crop");
    waitForPicture();
    const size_t before = steps();
    drag(onCanvas(0.995, 0.995), onCanvas(0.7, 0.8));
    EXPECT_NEAR(model().crop.value().maxX(), 0.7, 0.02);
    EXPECT_EQ(steps(), before);
    QTest::keyClick(&canvas(), Qt::Key_Return);
    EXPECT_FALSE(model().cropMode);
    EXPECT_EQ(steps(), before + 1);

    trigger("relight");
    ASSERT_EQ(model().lights.value().size(), 1U);
    waitFor([&] { return canvas().mapping().frame.width < 470; }); // the cropped one has come
    drag(onCanvas(0.5, 0.5), onCanvas(0.3, 0.4));
    EXPECT_NEAR(model().lights.value()[0].x, 0.3, 0.01);
    EXPECT_NEAR(model().lights.value()[0].y, 0.4, 0.01);
    QTest::mouseClick(&canvas(), Qt::LeftButton, {}, onCanvas(0.8, 0.8));
    EXPECT_EQ(model().lights.value().size(), 2U);
    trigger("relight");
    EXPECT_FALSE(model().relightMode);
}

TEST_F(StoryTest, HealsPicksWhiteAndWritesACaption)
{
    openFiles({"a.jpg"});
    trigger("heal");
    drag(onCanvas(0.2, 0.5), onCanvas(0.4, 0.5));
    EXPECT_GT(model().ciHealSpots.value().size(), 3U);
    trigger("whiteBalance");
    QTest::mouseClick(&canvas(), Qt::LeftButton, {}, onCanvas(0.7, 0.5));
    EXPECT_FALSE(model().pickingWhite);
    EXPECT_NE(adjusted("temperature"), 0);

    unfold("Text");
    click(buttonNamed(inspector(), "Add Text"));
    QCoreApplication::processEvents();
    auto& field = named<QPlainTextEdit>("Text");
    EXPECT_TRUE(field.hasFocus()) << "what is typed next is the caption's text";
    waitFor([&] { return field.visibleRegion().boundingRect() == field.rect(); });
    QTest::keyClicks(&field, "a bird\\b");
    EXPECT_EQ(model().texts.value().at(0).text, "a bird\\b");
    EXPECT_FALSE(model().comparing) << "a letter in a text is no command";
    canvas().setFocus();
    const auto& layer = model().texts.value()[0];
    drag(onCanvas(layer.x, layer.y), onCanvas(0.3, 0.25));
    EXPECT_NEAR(model().texts.value()[0].x, 0.3, 0.02);
    EXPECT_NEAR(model().texts.value()[0].y, 0.25, 0.02);
}

TEST_F(StoryTest, AppliesALookSavesReopensAndExports)
{
    openFiles({"a.jpg", "b.jpg"});
    waitFor([&] { return !model().lookPreviews.value().empty(); });
    model().applyLook("film");
    QCoreApplication::processEvents();
    ASSERT_TRUE(model().canAdjustLookStrength());
    dragSlider(slider("Strength"), -30);
    EXPECT_LT(model().lookStrength, 90);
    trigger("save");
    EXPECT_FALSE(model().isDirty());
    const EditState saved = model().editState();
    end();
    start();
    openFiles({"a.jpg", "b.jpg"});
    EXPECT_EQ(model().editState(), saved);

    desktop.targets = {folder / "out.jpg"};
    trigger("export");
    QCoreApplication::processEvents();
    ASSERT_TRUE(model().exportSheetShown);
    QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return);
    waitFor([&] { return !model().isExporting && std::filesystem::exists(folder / "out.jpg"); });

    desktop.choices = {{folder / "batch"}};
    std::filesystem::create_directory(folder / "batch");
    click(buttonNamed(app->window, "Export All"));
    waitFor([&] { return !model().isExportingAll() && names("batch").size() > 10; });
    EXPECT_EQ(names("batch"), "a-edit.jpg b-edit.jpg");
}

TEST_F(StoryTest, TheWheelZoomsAboutThePointerAndScrollsOverAPanel)
{
    openFiles({"a.jpg"});
    const QPoint at = onCanvas(0.25, 0.75);
    QWheelEvent wheel(at, canvas().mapToGlobal(at), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&canvas(), &wheel);
    EXPECT_GT(model().zoom, 1);
    EXPECT_NEAR((onCanvas(0.25, 0.75) - at).manhattanLength(), 0, 2);

    unfold("Light");
    auto& exposure = slider("Exposure");
    const QPoint centre = exposure.rect().center();
    QWheelEvent over(centre, exposure.mapToGlobal(centre), {}, {0, 120}, {}, {}, Qt::NoScrollPhase,
                     false);
    QCoreApplication::sendEvent(&exposure, &over);
    EXPECT_EQ(adjusted("exposure"), 0);
}

} // namespace
} // namespace orvane
