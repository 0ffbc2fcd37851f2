#include "LooksSection.h"

#include "LookGrid.h"
#include "ModelSlider.h"
#include "ModelTesting.h"
#include "PanelControls.h"
#include "RowList.h"

#include <QApplication>
#include <QLabel>
#include <QtTest/QTest>

#include <algorithm>

namespace orvane {
namespace {

class LooksSectionTest : public ModelTest {
protected:
    void show()
    {
        section = std::make_unique<LooksSection>(*model);
        section->setFixedWidth(288);
        section->show();
        waitFor([this] { return section->isActiveWindow(); });
        QApplication::processEvents();
    }
    void openFitted()
    {
        open({"a.jpg"});
        show();
        waitFor([this] { return !model->isFittingLooks(); });
        QApplication::processEvents();
    }
    const std::vector<LookTile*>& tiles() const { return section->findChild<LookGrid*>()->tiles(); }
    QAbstractButton* button(const QString& text) const
    {
        for (auto* each : section->findChildren<PanelButton*>()) {
            if (each->text() == text && each->isVisible())
                return each;
        }
        return nullptr;
    }
    ModelSlider* slider(const QString& label) const
    {
        for (auto* each : section->findChildren<ModelSlider*>()) {
            if (each->slider().accessibleName() == label)
                return each;
        }
        return nullptr;
    }
    std::string used() const
    {
        std::string ids;
        for (const LookTile* tile : tiles())
            ids += tile->isChecked() ? tile->shown().id : "";
        return ids;
    }
    static void press(Qt::Key key)
    {
        QTest::keyClick(QApplication::focusWidget(), key);
        QApplication::processEvents();
    }

    std::unique_ptr<LooksSection> section;
};

TEST_F(LooksSectionTest, HasItsPlaceBeforeThePicturesCome)
{
    show();
    const int before = section->sizeHint().height();
    EXPECT_EQ(tiles().size(), 10u);
    EXPECT_FALSE(tiles().front()->shown().picture);
    open({"a.jpg"});
    waitFor([this] { return !model->isFittingLooks(); });
    QApplication::processEvents();
    EXPECT_EQ(section->sizeHint().height(), before);
    for (const LookTile* tile : tiles()) {
        EXPECT_TRUE(tile->shown().picture && !tile->shown().isStale) << tile->shown().id;
        EXPECT_FALSE(tile->toolTip().isEmpty()) << tile->shown().id;
    }
}

TEST_F(LooksSectionTest, ArrowsWalkTheGridAndKeysApply)
{
    openFitted();
    tiles().front()->setFocus();
    const struct {
        Qt::Key key;
        int to;
    } steps[] = {
        {Qt::Key_Right, 1}, {Qt::Key_Down, 4}, {Qt::Key_Left, 3}, {Qt::Key_Up, 0},
        {Qt::Key_Up, 0},    {Qt::Key_Left, 0}, {Qt::Key_End, 9},  {Qt::Key_Down, 9},
    };
    for (const auto& [key, to] : steps) {
        press(key);
        EXPECT_EQ(QApplication::focusWidget(), tiles()[size_t(to)]) << key;
    }
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space}) {
        press(key);
        EXPECT_EQ(used(), "poster");
        EXPECT_EQ(model->lastLook.value()->id, "poster");
        EXPECT_EQ(QApplication::focusWidget(), tiles().back());
        model->undo();
        QApplication::processEvents();
        EXPECT_EQ(used(), "") << "an undone look is in use no more";
    }
    // One stop for Tab: the tile that had the focus last.
    press(Qt::Key_Tab);
    press(Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), tiles().back());
}

TEST_F(LooksSectionTest, StrengthComesWithALookAndADragOfItIsOneStep)
{
    openFitted();
    EXPECT_FALSE(slider("Strength")->isVisible());
    QTest::mouseClick(tiles()[1], Qt::LeftButton);
    QApplication::processEvents();
    ASSERT_TRUE(slider("Strength")->isVisible());
    const size_t steps = model->historySteps().size();

    DoubleClickSlider& strength = slider("Strength")->slider();
    const QPoint knob = strength.knobCentre().toPoint();
    QTest::mousePress(&strength, Qt::LeftButton, {}, knob);
    for (int x = 10; x <= 60; x += 10) {
        clock += 1;
        QTest::mouseMove(&strength, knob - QPoint(x, 0));
        QApplication::processEvents(); // the section follows the model, and the drag goes on
    }
    QTest::mouseRelease(&strength, Qt::LeftButton);
    EXPECT_LT(model->lookStrength, 60);
    EXPECT_NEAR(model->adjust.value().at("temperature"), 22 * model->lookStrength / 100, 1e-9);
    EXPECT_EQ(model->historySteps().size(), steps + 1);
    EXPECT_EQ(used(), "warm");
}

TEST_F(LooksSectionTest, AHeldKeyOnStrengthIsOneStepAndTheNextPressAnother)
{
    openFitted();
    QTest::mouseClick(tiles()[1], Qt::LeftButton);
    QApplication::processEvents();
    slider("Strength")->slider().setFocus();
    const size_t steps = model->historySteps().size();
    for (const double pause : {10.0, 0.7, 0.03, 0.03, 0.03}) {
        clock += pause;
        press(Qt::Key_Left);
    }
    EXPECT_EQ(model->lookStrength, 95);
    EXPECT_EQ(model->historySteps().size(), steps + 1);
    clock += 2;
    press(Qt::Key_Left);
    EXPECT_EQ(model->historySteps().size(), steps + 2);
    // What comes between parts them, however quick the hand is.
    model->undo();
    QApplication::processEvents();
    press(Qt::Key_Left);
    EXPECT_EQ(model->lookStrength, 94);
    EXPECT_EQ(model->historySteps().size(), steps + 2);
    model->undo();
    EXPECT_EQ(model->lookStrength, 95);
    model->undo();
    EXPECT_EQ(model->lookStrength, 100);
}

TEST_F(LooksSectionTest, SavedLooksApplyAndGoByTheirButtons)
{
    openFitted();
    int asked = 0;
    QObject::connect(section.get(), &LooksSection::nameAsked, [&] { ++asked; });
    QTest::mouseClick(button("Save This Look…"), Qt::LeftButton);
    EXPECT_EQ(asked, 1);

    for (const double value : {10, 20, 30}) {
        model->setAdjust("exposure", value);
        model->saveLook(std::to_string(int(value)));
    }
    QApplication::processEvents();
    auto* saved = section->findChild<RowList*>();
    ASSERT_EQ(saved->count(), 3);
    EXPECT_TRUE(saved->row(0)->isChecked());
    QTest::mouseClick(saved->row(2), Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(exposure(), 10);
    EXPECT_TRUE(saved->row(2)->isChecked());
    EXPECT_FALSE(saved->row(0)->isChecked());

    QTest::mouseClick(saved->removeButton(1), Qt::LeftButton);
    QApplication::processEvents();
    ASSERT_EQ(saved->count(), 2);
    EXPECT_EQ(saved->row(1)->text(), "10");
    saved->row(1)->setFocus();
    press(Qt::Key_Delete);
    ASSERT_EQ(saved->count(), 1);
    EXPECT_EQ(QApplication::focusWidget(), saved->row(0));
    press(Qt::Key_Right);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Remove 30");
    press(Qt::Key_Return);
    EXPECT_TRUE(model->savedLookEntries.value().empty());
    EXPECT_FALSE(saved->isVisible());
}

TEST_F(LooksSectionTest, TellsOfAMissingLutAndPutsALoadedOneOnASlider)
{
    openFitted();
    EXPECT_FALSE(slider("LUT Amount")->isVisible());
    const std::string cube = "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n"
                             "1 1 1\n";
    ASSERT_TRUE(writeFile(folder / "Soft.cube", cube));
    desktop.choices.push_back({folder / "Soft.cube"});
    QTest::mouseClick(button("Load a LUT (.cube)…"), Qt::LeftButton);
    QApplication::processEvents();
    ASSERT_TRUE(slider("LUT Amount")->isVisible());
    const auto labels = section->findChildren<QLabel*>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(),
                            [](QLabel* l) { return l->isVisible() && l->text() == "Soft"; }));
    clock += 10;
    slider("LUT Amount")->slider().setFocus();
    press(Qt::Key_Left);
    EXPECT_EQ(model->lutAmount, 99);
    EXPECT_EQ(model->historySteps().size(), 3u);

    model->lutID = std::string("lut_gone");
    model->ensureLut("lut_gone");
    QApplication::processEvents();
    EXPECT_FALSE(slider("LUT Amount")->isVisible());
    ASSERT_TRUE(button("Re-import"));
    QTest::mouseClick(button("Remove"), Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(model->lutID.value(), "");
    EXPECT_FALSE(button("Re-import"));
}

TEST_F(LooksSectionTest, PopsByItsButton)
{
    openFitted();
    QTest::mouseClick(button("Make it Pop"), Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(model->lastLook.value()->name, "Make it pop");
    EXPECT_EQ(used(), "") << "a grade of its own, not the look of that name";
}

TEST_F(LooksSectionTest, MarksTheLookThatThePictureWearsAndNoOther)
{
    openFitted();
    const auto& recipes = model->lookRecipes.value();
    const auto settled = [this] {
        QApplication::processEvents();
        return used();
    };
    for (const Looks::Look& recipe : recipes) {
        SCOPED_TRACE(recipe.id);
        model->applyLook(recipe.id);
        EXPECT_EQ(settled(), recipe.id);
        model->setLookStrength(0);
        EXPECT_EQ(settled(), recipe.id);
        model->setLookStrength(40);
        EXPECT_EQ(settled(), recipe.id);
        model->jumpHistory(0);
        EXPECT_EQ(settled(), "") << "although what it leaves at 0 is there";
    }
    // A one-click grade bears the id of the first look, and may share most of its sliders.
    model->applyLook(recipes.front().id);
    Looks::Look grade = recipes.front();
    grade.adjustments.begin()->second += 1;
    model->lastLook = grade;
    EXPECT_EQ(settled(), "");
}

} // namespace
} // namespace orvane
