#include "TextSection.h"

#include "ColorFields.h"
#include "ColorWell.h"
#include "FontPicker.h"
#include "ModelSlider.h"
#include "ModelTesting.h"
#include "RowList.h"

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QtTest/QTest>

namespace orvane {
namespace {

class TextSectionTest : public ModelTest {
protected:
    TextSectionTest()
    {
        open({"a.jpg"});
        section.setFixedWidth(288);
        section.show();
        waitFor([this] { return section.isActiveWindow(); });
    }
    QAbstractButton* button(const QString& name)
    {
        for (auto* each : section.findChildren<QAbstractButton*>()) {
            if (each->accessibleName() == name && each->isVisible())
                return each;
        }
        return nullptr;
    }
    void click(const QString& name)
    {
        ASSERT_TRUE(button(name)) << name.toStdString();
        QTest::mouseClick(button(name), Qt::LeftButton);
        QApplication::processEvents();
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        QApplication::processEvents();
    }
    const AppModel::TextLayer& layer(size_t index) const { return model->texts.value().at(index); }
    size_t steps() const { return model->historySteps().size(); }

    TextSection section{*model};
    QPlainTextEdit* field = section.findChild<QPlainTextEdit*>();
    FontPicker* font = section.findChild<FontPicker*>();
};

TEST_F(TextSectionTest, TypingIsOneStepAndLeavesTheCursorAlone)
{
    EXPECT_FALSE(field->isVisible());
    click("Add Text");
    ASSERT_TRUE(field->isVisible());
    clock += 10;
    field->setFocus();
    field->selectAll();
    for (const char key : {'A', 'n', 't'}) {
        clock += 0.3;
        QTest::keyClick(field, key);
        QApplication::processEvents();
    }
    press(Qt::Key_Return);
    QTest::keyClicks(field, "Bee");
    QApplication::processEvents();
    EXPECT_EQ(layer(0).text, "Ant\nBee");
    EXPECT_EQ(steps(), 3u) << "the picture, the layer, the typing";
    EXPECT_EQ(section.findChild<RowList*>()->row(0)->text(), "Ant Bee");

    press(Qt::Key_Home);
    QTest::keyClick(field, 'A');
    QApplication::processEvents();
    QTest::keyClick(field, 'x');
    EXPECT_EQ(layer(0).text, "Ant\nAxBee");
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), font);
    model->undo();
    QApplication::processEvents();
    EXPECT_EQ(field->toPlainText(), "Your text");
}

TEST_F(TextSectionTest, ShowsTheSelectedLayerAndMovesItThroughTheStack)
{
    click("Add Text");
    model->setText(model->selectedTextID, " ");
    click("Add Text");
    auto* list = section.findChild<RowList*>();
    EXPECT_EQ(list->row(0)->text(), "Empty");
    EXPECT_FALSE(button("Bring forward")->isEnabled());
    QTest::mouseClick(list->row(0), Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(field->toPlainText(), " ");
    EXPECT_FALSE(button("Send backward")->isEnabled());
    const std::string moved = layer(0).id;
    click("Bring forward");
    EXPECT_EQ(layer(1).id, moved);
    EXPECT_TRUE(list->row(1)->isChecked());
    click("Remove Text");
    EXPECT_EQ(model->texts.value().size(), 1u);
    EXPECT_EQ(field->toPlainText(), "Your text");
    click("Remove Text");
    EXPECT_FALSE(field->isVisible());
}

TEST_F(TextSectionTest, SlidersShadowAndColourWriteTheSelectedLayer)
{
    click("Add Text");
    click("Add Text");
    clock += 10;
    const size_t before = steps();
    const double values[] = {12, 25, 75};
    const auto sliders = section.findChildren<ModelSlider*>();
    ASSERT_EQ(sliders.size(), 3);
    for (int i = 0; i < 3; ++i)
        sliders[i]->slider().moveTo(values[i]);
    EXPECT_NEAR(layer(1).size, 0.12, 1e-12);
    EXPECT_NEAR(layer(1).x, 0.25, 1e-12);
    EXPECT_NEAR(layer(1).y, 0.75, 1e-12);
    EXPECT_EQ(layer(0).x, 0.5);
    EXPECT_EQ(steps(), before + 3);
    click("Shadow");
    EXPECT_FALSE(layer(1).shadow);

    click("Color");
    clock += 10;
    auto* shades = QApplication::activePopupWidget()->findChild<ShadeField*>();
    QTest::mousePress(shades, Qt::LeftButton, {}, {100, 90});
    for (int x = 20; x > 0; x -= 5) {
        clock += 1;
        QTest::mouseMove(shades, {x, 500});
    }
    QTest::mouseRelease(shades, Qt::LeftButton, {}, {1, 500});
    EXPECT_EQ(layer(1).colorHex, "#000000");
    EXPECT_EQ(steps(), before + 5) << "one for the whole drag";
    press(Qt::Key_Escape);
    model->undo();
    QApplication::processEvents();
    EXPECT_EQ(section.findChild<ColorWell*>()->color(), QColor(Qt::white));
}

TEST_F(TextSectionTest, AHeldKeyOnAPositionAndAWalkThroughTheFontsAreOneStepEach)
{
    click("Add Text");
    const auto sliders = section.findChildren<ModelSlider*>();
    QWidget* const controls[] = {&sliders[1]->slider(), &sliders[2]->slider(), font};
    for (QWidget* control : controls) {
        const size_t before = steps();
        control->setFocus();
        for (const double pause : {10.0, 0.7, 0.04, 0.04}) {
            clock += pause;
            press(Qt::Key_Down);
        }
        EXPECT_EQ(steps(), before + 1);
    }
    EXPECT_NEAR(layer(0).x, 0.46, 1e-12);
    EXPECT_NEAR(layer(0).y, 0.81, 1e-12);
    EXPECT_EQ(layer(0).font, AppModel::textFonts()[4].id);
    model->undo();
    QApplication::processEvents();
    EXPECT_EQ(font->text(), "System");
}

TEST_F(TextSectionTest, FontsAreFoundByTypingAndTakenByReturn)
{
    click("Add Text");
    EXPECT_EQ(font->accessibleDescription(), "System");
    font->setFocus();
    press(Qt::Key_Return);
    auto* popover = font->findChild<FontPopover*>();
    ASSERT_TRUE(popover && popover->isVisible());
    const int all = popover->list().model()->rowCount();
    EXPECT_EQ(all, int(AppModel::textFonts().size()));
    const QString wanted = QString::fromStdString(AppModel::textFonts().back().name);
    QTest::keyClicks(QApplication::focusWidget(), wanted.toLower());
    EXPECT_LT(popover->list().model()->rowCount(), all);
    press(Qt::Key_Return);
    EXPECT_EQ(layer(0).font, wanted.toStdString());
    EXPECT_EQ(font->text(), wanted);

    // Up steps back without the list; Escape leaves the font as it is.
    press(Qt::Key_Up);
    const std::string other = AppModel::textFonts()[AppModel::textFonts().size() - 2].id;
    EXPECT_EQ(layer(0).font, other);
    press(Qt::Key_Down, Qt::AltModifier);
    press(Qt::Key_PageUp);
    press(Qt::Key_Escape);
    EXPECT_EQ(layer(0).font, other);
    EXPECT_FALSE(QApplication::activePopupWidget());
}

} // namespace
} // namespace orvane
