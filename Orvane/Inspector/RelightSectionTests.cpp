#include "RelightSection.h"

#include "ModelSlider.h"
#include "ModelTesting.h"
#include "PanelControls.h"
#include "RetouchSection.h"
#include "RowList.h"

#include <QApplication>
#include <QLabel>
#include <QtTest/QTest>

namespace orvane {
namespace {

template <class Section> class PictureSectionTest : public ModelTest {
protected:
    PictureSectionTest()
    {
        open({"a.jpg"});
        section.setFixedWidth(288);
        section.show();
        waitFor([this] { return section.isActiveWindow(); });
    }
    QAbstractButton* button(const QString& text)
    {
        for (auto* each : section.template findChildren<QAbstractButton*>()) {
            if (each->accessibleName() == text && each->isVisible())
                return each;
        }
        return nullptr;
    }
    void click(const QString& text)
    {
        ASSERT_TRUE(button(text)) << text.toStdString();
        QTest::mouseClick(button(text), Qt::LeftButton);
        QApplication::processEvents();
    }
    QStringList visibleSliders()
    {
        QStringList labels;
        for (auto* each : section.template findChildren<ModelSlider*>()) {
            if (each->isVisible())
                labels << each->slider().accessibleName();
        }
        return labels;
    }
    DoubleClickSlider& slider(const QString& label)
    {
        for (auto* each : section.template findChildren<ModelSlider*>()) {
            if (each->slider().accessibleName() == label)
                return each->slider();
        }
        throw std::runtime_error("There is no slider " + label.toStdString());
    }

    Section section{*model};
};

using RelightSectionTest = PictureSectionTest<RelightSection>;

TEST_F(RelightSectionTest, EachKindOfLightHasItsOwnRows)
{
    EXPECT_TRUE(visibleSliders().isEmpty());
    EXPECT_FALSE(button("Clear All")->isEnabled());
    const QString of = "Brightness Warmth Contrast Saturation";
    const QString placed = "Position X Position Y " + of + " Size Softness";
    const struct {
        QString button;
        std::string type;
        QString name;
        QString rows;
        bool inverts;
    } cases[] = {
        {"Light", "radial", "Light", placed, true},
        {"Gradient", "linear", "Gradient", placed, false},
        {"Brush", "brush", "Brush", of, false},
    };
    for (const auto& each : cases) {
        click(each.button);
        EXPECT_EQ(model->lights.value().back().type, each.type);
        EXPECT_EQ(visibleSliders().join(' ').toStdString(), each.rows.toStdString());
        EXPECT_EQ(button("Invert") != nullptr, each.inverts) << each.type;
        EXPECT_TRUE(button("Remove this " + each.name)) << each.type;
    }
    click("Clear All");
    EXPECT_TRUE(model->lights.value().empty());
    EXPECT_TRUE(visibleSliders().isEmpty());
}

TEST_F(RelightSectionTest, RowsWriteWhatTheyShowByTheirScale)
{
    click("Light");
    const auto light = [this] { return model->lights.value().front(); };
    for (const LightRow& row : lightRows()) {
        DoubleClickSlider& shown = slider(row.label);
        EXPECT_EQ(shown.range().rest, row.rest) << row.key;
        shown.moveTo(row.minimum + 3);
        QApplication::processEvents();
        EXPECT_EQ(shown.number(), row.minimum + 3) << row.key;
    }
    EXPECT_NEAR(light().x, 0.03, 1e-12);
    EXPECT_NEAR(light().y, 0.03, 1e-12);
    EXPECT_EQ(light().brightness, -97);
    EXPECT_EQ(light().warmth, -97);
    EXPECT_EQ(light().contrast, -97);
    EXPECT_EQ(light().saturation, -97);
    EXPECT_NEAR(light().radius, 0.05, 1e-12);
    EXPECT_NEAR(light().feather, 0.03, 1e-12);
    EXPECT_TRUE(button("Remove this Burn")) << "below nothing it is called otherwise";
    click("Invert");
    EXPECT_TRUE(light().invert);
}

TEST_F(RelightSectionTest, ADragOutlivesWhatTheListDoesMeanwhile)
{
    click("Light");
    DoubleClickSlider& brightness = slider("Brightness");
    const QPoint knob = brightness.knobCentre().toPoint();
    QTest::mousePress(&brightness, Qt::LeftButton, {}, knob);
    QTest::mouseMove(&brightness, knob - QPoint(40, 0)); // now a "Burn": the list changes
    QApplication::processEvents();
    const double halfway = model->lights.value().front().brightness;
    QTest::mouseMove(&brightness, knob - QPoint(60, 0));
    QApplication::processEvents();
    QTest::mouseRelease(&brightness, Qt::LeftButton);
    EXPECT_LT(halfway, 0);
    EXPECT_LT(model->lights.value().front().brightness, halfway);
}

TEST_F(RelightSectionTest, TheListIsUsedByKeyboardAlone)
{
    for (const char* kind : {"Light", "Gradient", "Brush"})
        click(kind);
    auto* list = section.findChild<RowList*>();
    const auto press = [](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        QApplication::processEvents();
    };
    button("Brush")->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), list->row(2)) << "the selected one";
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    press(Qt::Key_Space);
    EXPECT_EQ(model->selectedLightID.value(), model->lights.value()[0].id);
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), list->removeButton(0));
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Position X");
    press(Qt::Key_Backtab);
    press(Qt::Key_Space);
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(model->lights.value()[0].type, "linear");
    EXPECT_EQ(QApplication::focusWidget(), list->removeButton(0)) << "now of the next one";
}

TEST_F(RelightSectionTest, PlacesOnTheImageByTheModelsTool)
{
    click("Place on Image");
    EXPECT_TRUE(model->relightMode);
    EXPECT_EQ(model->lights.value().size(), 1u);
    EXPECT_EQ(section.findChild<RowList*>()->count(), 1);
    EXPECT_TRUE(button("Place on Image")->isChecked());
    // Once more leaves the tool; what it goes back to is that of the first time.
    click("Place on Image");
    EXPECT_FALSE(model->relightMode);
    EXPECT_FALSE(button("Place on Image")->isChecked());
    EXPECT_EQ(model->lights.value().size(), 1u);
}

TEST_F(RelightSectionTest, ADragThatIsHiddenUnderTheHandEndsAndIsOneStep)
{
    click("Light");
    clock += 10;
    const size_t steps = model->historySteps().size();
    DoubleClickSlider& warmth = slider("Warmth");
    const QPoint knob = warmth.knobCentre().toPoint();
    QTest::mousePress(&warmth, Qt::LeftButton, {}, knob);
    for (int x = 10; x <= 30; x += 10) {
        clock += 1;
        QTest::mouseMove(&warmth, knob + QPoint(x, 0));
    }
    const double reached = model->lights.value().front().warmth;
    section.hide();
    section.show();
    QTest::mouseMove(&warmth, knob + QPoint(60, 0));
    EXPECT_GT(reached, 0);
    EXPECT_EQ(model->lights.value().front().warmth, reached);
    EXPECT_EQ(model->historySteps().size(), steps + 1);
}

using RetouchSectionTest = PictureSectionTest<RetouchSection>;

TEST_F(RetouchSectionTest, ArmsTheBrushAndCountsWhatItHealed)
{
    click("Heal Blemishes");
    EXPECT_TRUE(model->healing);
    click("Click blemishes to heal…");
    EXPECT_FALSE(model->healing);
    EXPECT_TRUE(button("Heal Blemishes"));

    slider("Brush Size").moveTo(25);
    EXPECT_EQ(model->healSize, 20);
    EXPECT_EQ(model->historySteps().size(), 1u) << "a size is no edit";
    EXPECT_FALSE(button("Clear"));
    const auto said = [this] { return section.findChild<QLabel*>("healed")->text().toStdString(); };
    model->healStrokeNative({{0.1, 0.1}, {0.2, 0.2}});
    QApplication::processEvents();
    EXPECT_EQ(said(), "2 spots healed");
    click("Undo Last");
    EXPECT_EQ(said(), "1 spot healed");
    click("Clear");
    EXPECT_TRUE(model->ciHealSpots.value().empty());
    EXPECT_FALSE(button("Clear"));
}

} // namespace
} // namespace orvane
