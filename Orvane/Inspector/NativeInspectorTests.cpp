#include "NativeInspector.h"

#include "BandButton.h"
#include "ColorWell.h"
#include "FoldingSection.h"
#include "HistogramOverlay.h"
#include "HistogramView.h"
#include "HistorySection.h"
#include "ModelSlider.h"
#include "ModelTesting.h"

#include <QApplication>
#include <QButtonGroup>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QtTest/QTest>

namespace orvane {
namespace {

/// A panel that shows an open picture.
class NativeInspectorTest : public ModelTest {
protected:
    NativeInspectorTest()
    {
        open({"one.jpg"});
        panel = std::make_unique<NativeInspector>(*model);
        panel->resize(NativeInspector::panelWidth, 700);
        panel->show();
        waitFor([this] { return panel->isActiveWindow(); });
    }
    ~NativeInspectorTest() override { panel.reset(); }

    /// Handles what the model has told.
    static void settle() { QApplication::processEvents(); }
    SliderRow* row(const char* section, const QString& label) const
    {
        panel->setExpanded(section, true);
        settle();
        for (auto* each : panel->section(section)->findChildren<SliderRow*>()) {
            if (each->slider().accessibleName() == label && each->isVisible())
                return each;
        }
        throw std::runtime_error("no row " + label.toStdString());
    }
    template <class Control = QAbstractButton> Control* control(const QString& name) const
    {
        for (auto* each : panel->findChildren<Control*>()) {
            if (each->accessibleName() == name && each->isVisible())
                return each;
        }
        throw std::runtime_error("no control " + name.toStdString());
    }
    static void click(QWidget* control) { QTest::mouseClick(control, Qt::LeftButton); }
    size_t steps() const { return model->historySteps().size(); }
    /// A drag of the knob with rests longer than those that join steps.
    void dragSlowly(SliderRow* row, int by)
    {
        const QPoint from = row->slider().knobCentre().toPoint();
        QTest::mousePress(&row->slider(), Qt::LeftButton, {}, from);
        for (int part = 1; part <= 3; ++part) {
            clock += 2;
            QTest::mouseMove(&row->slider(), from + QPoint(by * part / 3, 0));
            settle();
        }
        QTest::mouseRelease(&row->slider(), Qt::LeftButton, {}, from + QPoint(by, 0));
        settle();
    }

    std::unique_ptr<NativeInspector> panel;
};

TEST_F(NativeInspectorTest, IsEmptyWhileNothingIsOpen)
{
    auto* content = panel->findChild<QScrollArea*>()->widget();
    EXPECT_TRUE(content->isVisible());
    model->removeImage(image(0).id);
    settle();
    EXPECT_FALSE(content->isVisible());
}

TEST_F(NativeInspectorTest, ADragATypedNumberAndAResetAreOneStepEach)
{
    SliderRow* exposure = row("Light", "Exposure");
    dragSlowly(exposure, 20);
    EXPECT_GT(model->adjust.value().at("exposure"), 0);
    EXPECT_EQ(steps(), 2U);
    // At once after it, and still a step of its own.
    exposure->field().setFocus();
    QTest::keyClicks(&exposure->field(), "120");
    QTest::keyClick(&exposure->field(), Qt::Key_Return);
    EXPECT_EQ(model->adjust.value().at("exposure"), 120);
    EXPECT_EQ(steps(), 3U);
    settle();
    QTest::mouseClick(&exposure->slider(), Qt::LeftButton, {},
                      exposure->slider().knobCentre().toPoint());
    QTest::mouseDClick(&exposure->slider(), Qt::LeftButton, {},
                       exposure->slider().knobCentre().toPoint());
    EXPECT_EQ(model->adjust.value().at("exposure"), 0);
    EXPECT_EQ(steps(), 4U);
    // A burst of keys is one, the next is another.
    for (const int pause : {0, 2}) {
        clock += pause;
        for (int i = 0; i < 5; ++i)
            QTest::keyClick(&exposure->slider(), Qt::Key_Right);
    }
    EXPECT_EQ(steps(), 6U);
    for (int i = 0; i < 3; ++i)
        model->undo();
    settle();
    EXPECT_EQ(exposure->value(), 120);
    EXPECT_EQ(exposure->field().text(), "120");
}

TEST_F(NativeInspectorTest, ADragDoesNotFollowToAnotherImage)
{
    open({"two.jpg"}, true);
    settle();
    SliderRow* exposure = row("Light", "Exposure");
    const QPoint from = exposure->slider().knobCentre().toPoint();
    QTest::mousePress(&exposure->slider(), Qt::LeftButton, {}, from);
    QTest::mouseMove(&exposure->slider(), from + QPoint(20, 0));
    activate(model->activeImageID.value() == image(0).id ? 1 : 0);
    settle();
    const auto history = model->history.value();
    QTest::mouseRelease(&exposure->slider(), Qt::LeftButton, {}, from + QPoint(20, 0));
    EXPECT_TRUE(model->history.value() == history);
    EXPECT_EQ(exposure->value(), 0);
}

TEST_F(NativeInspectorTest, GroupsAreMarkedAndResetFromTheirHeaders)
{
    FoldingSection* light = panel->section("Light");
    auto* reset = light->findChild<QPushButton*>();
    EXPECT_FALSE(reset->isVisible());
    model->setAdjust("contrast", 12);
    model->setAdjust("whites", -7);
    settle();
    ASSERT_TRUE(reset->isVisible());
    click(reset);
    settle();
    EXPECT_FALSE(reset->isVisible());
    EXPECT_EQ(model->adjust.value().at("contrast"), 0);
    EXPECT_EQ(model->adjust.value().at("whites"), 0);
    model->setCurve("r", {{0, 0}, {128, 150}, {255, 255}});
    settle();
    click(panel->section("Curves")->findChild<QPushButton*>());
    EXPECT_TRUE(model->curve.value().empty());
}

TEST_F(NativeInspectorTest, AHeadingFoldsItsOwnSectionsAndNoOthers)
{
    click(control("Expand all in Style"));
    EXPECT_TRUE(panel->expanded().contains("Effects"));
    EXPECT_TRUE(panel->expanded().contains("Duotone"));
    click(control("Collapse all in Style"));
    EXPECT_EQ(panel->expanded(), (std::set<QString>{"Crop", "Light"}));
    EXPECT_EQ(control("Expand all in Style")->text(), "Expand All");
}

TEST_F(NativeInspectorTest, HistoryIsThereFromTwoStepsAndGoesToTheOneClicked)
{
    FoldingSection* section = panel->section("History");
    EXPECT_FALSE(section->isVisible());
    expose(10);
    expose(20);
    settle();
    ASSERT_TRUE(section->isVisible());
    panel->setExpanded("History", true);
    settle();
    auto* list = panel->findChild<HistorySection*>();
    ASSERT_EQ(list->model()->rowCount(), 3);
    EXPECT_EQ(list->model()->index(2, 0).data().toString(), "Original");
    EXPECT_EQ(list->currentRow(), 0);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(1, 0)).center());
    EXPECT_EQ(exposure(), 10);
    settle();
    EXPECT_EQ(list->currentRow(), 1);
    EXPECT_EQ(list->model()->rowCount(), 3);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(exposure(), 0);
}

TEST_F(NativeInspectorTest, CropIsDrivenFromItsSection)
{
    click(control("Edit Crop on the Image"));
    EXPECT_TRUE(model->cropMode);
    settle();
    click(control("Guide: Golden"));
    EXPECT_EQ(model->cropGuide.value(), "golden");
    model->cancelCrop();
    settle();
    EXPECT_THROW(control("Guide: Golden"), std::runtime_error);
    EXPECT_FALSE(control("Edit Crop on the Image")->isChecked());
    click(control("Aspect Ratio: 1:1"));
    EXPECT_EQ(model->aspectId.value(), "1:1");
    EXPECT_NEAR(model->crop.value().size.width, 64.0 / 96, 1e-9);
    click(control("Flip Horizontal"));
    EXPECT_TRUE(model->flipH);
    const size_t before = steps();
    SliderRow* straighten = row("Crop", "Straighten");
    dragSlowly(straighten, 30);
    EXPECT_GT(model->rotation, 3);
    EXPECT_EQ(straighten->field().text(),
              QString::number(std::lround(model->rotation.value())) + "°");
    EXPECT_EQ(steps(), before + 1);
}

TEST_F(NativeInspectorTest, TheMixerShowsTheSlidersOfOneBandAndMarksThoseWithEdits)
{
    panel->setExpanded("Color Mixer", true);
    settle();
    click(control("Blue"));
    settle();
    row("Color Mixer", "Blue Saturation")->slider().setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(model->adjust.value().at("satBlue"), 2);
    settle();
    EXPECT_EQ(control<BandButton>("Blue")->accessibleDescription(), "Edited");
    EXPECT_EQ(control<BandButton>("Red")->accessibleDescription(), "");
    model->setAdjust("satBlue", 0.0009);
    settle();
    EXPECT_EQ(control<BandButton>("Blue")->accessibleDescription(), "");
    EXPECT_THROW(row("Color Mixer", "Red Saturation"), std::runtime_error);
}

TEST_F(NativeInspectorTest, HuesAndTheCanvasColorArePickedAsColors)
{
    panel->setExpanded("Duotone", true);
    panel->setExpanded("Canvas", true);
    settle();
    auto* hue = control<ColorWell>("Duotone Hue");
    EXPECT_NEAR(hue->color().hsvHue(), 210, 1);
    Q_EMIT hue->colorPicked(QColor::fromHsv(90, 100, 200));
    EXPECT_NEAR(model->adjust.value().at("duotoneHue"), 90, 0.5);
    Q_EMIT hue->colorPicked(QColor(70, 70, 70));
    EXPECT_NEAR(model->adjust.value().at("duotoneHue"), 90, 0.5);

    EXPECT_THROW(control("Fill: Color"), std::runtime_error);
    click(control("Shape: 4:5"));
    settle();
    click(control("Fill: Color"));
    settle();
    auto* well = control<ColorWell>("Color");
    const size_t before = steps();
    for (const QColor& color : {QColor(1, 2, 3), QColor(250, 171, 16)}) {
        clock += 2;
        Q_EMIT well->colorPicked(color);
    }
    Q_EMIT well->pickEnded();
    EXPECT_EQ(model->canvasColor.value(), "#faab10");
    EXPECT_EQ(steps(), before + 1);
    click(control("Shape: Off"));
    settle();
    EXPECT_EQ(model->canvasFill.value(), "color");
    EXPECT_THROW(control<ColorWell>("Color"), std::runtime_error);
}

TEST_F(NativeInspectorTest, WhiteBalanceTellsWhatItWaitsFor)
{
    panel->setExpanded("Color", true);
    settle();
    click(control("White Balance"));
    EXPECT_TRUE(model->pickingWhite);
    settle();
    click(control("Click something grey…"));
    EXPECT_FALSE(model->pickingWhite);
}

TEST_F(NativeInspectorTest, ANameForALookIsAskedForAndBlankOnesAreNotTaken)
{
    settle();
    click(control("Save This Look…"));
    auto* dialog = panel->findChild<QDialog*>();
    ASSERT_TRUE(dialog);
    auto* field = dialog->findChild<QLineEdit*>();
    QTest::keyClicks(field, "  ");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(dialog->isVisible());
    QTest::keyClicks(field, "Dusk");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    ASSERT_EQ(model->savedLooks().size(), 1U);
    EXPECT_EQ(model->savedLooks()[0].name, "Dusk");
}

/// Of an exclusive group Tab reaches the chosen one; arrow keys do the rest.
bool isLeftToArrows(const QWidget& control)
{
    const auto* button = qobject_cast<const QAbstractButton*>(&control);
    return button && button->group() && button->group()->exclusive() && !button->isChecked();
}

/// Everything that takes the focus, as the panel is seen.
std::vector<QWidget*> controlsOf(const QWidget& panel)
{
    std::vector<QWidget*> controls;
    for (auto* each : panel.findChildren<QWidget*>()) {
        if ((each->focusPolicy() & Qt::TabFocus) && each->isVisible() && each->isEnabled()
            && !isLeftToArrows(*each))
            controls.push_back(each);
    }
    return controls;
}

std::string described(const QWidget& control)
{
    return std::string(control.metaObject()->className()) + " \""
        + control.accessibleName().toStdString() + "\"";
}

TEST_F(NativeInspectorTest, EveryControlIsNamedReachedByTabInOrderAndWhole)
{
    // With something in every list, and each part open.
    model->addLightAt("radial", 0.5, 0.5);
    model->addText();
    model->setCanvasShape("4x5");
    model->canvasFill = std::string("color");
    expose(10);
    for (auto* section : panel->findChildren<FoldingSection*>())
        section->setExpanded(true);
    settle();
    settle();

    auto* area = panel->findChild<QScrollArea*>();
    const auto controls = controlsOf(*panel);
    ASSERT_GT(controls.size(), 90U);
    controls.front()->setFocus(Qt::TabFocusReason);
    std::set<QWidget*> reached;
    int lastTop = -1;
    for (QWidget* focus = controls.front(); reached.insert(focus).second;
         focus = QApplication::focusWidget()) {
        SCOPED_TRACE(described(*focus));
        EXPECT_NE(focus->accessibleName(), "");
        const QPoint corner = focus->mapTo(area->widget(), QPoint());
        EXPECT_GE(corner.x(), 0);
        EXPECT_LE(corner.x() + focus->width(), area->viewport()->width());
        if (focus->sizePolicy().horizontalPolicy() != QSizePolicy::Ignored) {
            EXPECT_GE(focus->width(), focus->minimumSizeHint().width());
        }
        EXPECT_GE(focus->height(), focus->minimumSizeHint().height());
        // In sight, and below what came before; handles of a plot have an order of their own.
        EXPECT_FALSE(focus->visibleRegion().isEmpty());
        if (!focus->inherits("orvane::PlotHandle")) {
            EXPECT_GE(corner.y() + focus->height(), lastTop);
            lastTop = corner.y();
        }
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    EXPECT_EQ(QApplication::focusWidget(), controls.front());
    for (QWidget* control : controls) {
        // On the way through a curve's points its steps come to their ends.
        if (control->isEnabled()) {
            EXPECT_TRUE(reached.contains(control)) << described(*control);
        }
    }
}

TEST_F(NativeInspectorTest, TheHistogramFloatsInTheCornerWhileItIsOn)
{
    QWidget canvas;
    canvas.resize(600, 400);
    canvas.show();
    const HistogramOverlay overlay(*model, &canvas);
    const HistogramView& view = overlay.view();
    EXPECT_FALSE(view.isVisible());
    model->histogramOn = true;
    settle();
    ASSERT_TRUE(view.isVisible());
    EXPECT_EQ(view.geometry(), QRect(600 - 260 - 12, 12, 260, 150));
    canvas.resize(900, 500);
    settle();
    EXPECT_EQ(view.x(), 900 - 260 - 12);
    waitFor([this] { return !model->histogram.value().r.empty(); });
    model->histogramOn = false;
    settle();
    EXPECT_FALSE(view.isVisible());
}

} // namespace
} // namespace orvane
