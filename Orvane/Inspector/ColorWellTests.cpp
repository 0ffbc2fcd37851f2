#include "ColorWell.h"

#include "ColorFields.h"
#include "ColorPopover.h"
#include "TestWaiting.h"

#include <QApplication>
#include <QLineEdit>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace orvane {
namespace {

class ColorWellTest : public testing::Test {
protected:
    ColorWellTest()
    {
        QObject::connect(&well, &ColorWell::colorPicked,
                         [this](const QColor& color) { picked << color.name(); });
        QObject::connect(&well, &ColorWell::pickEnded, [this] { ++ends; });
        well.setColor(QColor("#bf4040"));
        well.show();
        waitFor([this] { return well.isActiveWindow(); });
    }

    ColorPopover* open()
    {
        well.setFocus();
        QTest::keyClick(&well, Qt::Key_Return);
        auto* popover = well.findChild<ColorPopover*>();
        waitFor([&] { return popover->isVisible() && QApplication::focusWidget(); });
        return popover;
    }
    /// To the widget that has the focus, as the desktop sends it.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    ColorWell well{"Color"};
    QStringList picked;
    int ends = 0;
};

TEST_F(ColorWellTest, OpensByMouseAndKeysAndClosesByEscape)
{
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_unknown}) {
        if (key == Qt::Key_unknown)
            QTest::mouseClick(&well, Qt::LeftButton);
        else
            QTest::keyClick(&well, key);
        const QPointer<ColorPopover> popover = well.findChild<ColorPopover*>();
        ASSERT_TRUE(popover && popover->isVisible()) << key;
        press(Qt::Key_Escape);
        waitFor([&] { return popover.isNull(); });
    }
    EXPECT_TRUE(picked.isEmpty());
}

TEST_F(ColorWellTest, TellsEveryColourOfADragAndItsEndOnce)
{
    auto* shades = open()->findChild<ShadeField*>();
    QTest::mousePress(shades, Qt::LeftButton, {}, {40, 100});
    QTest::mouseMove(shades, {200, 60});
    QTest::mouseMove(shades, {500, -50}); // out of the field: its corner
    EXPECT_EQ(picked.size(), 3);
    EXPECT_EQ(picked.last(), "#ff0000");
    EXPECT_EQ(ends, 0);
    QTest::mouseRelease(shades, Qt::LeftButton);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(well.color(), QColor("#ff0000"));
    EXPECT_EQ(well.accessibleDescription(), "#ff0000");
}

TEST_F(ColorWellTest, ArrowsWalkTheShadesAndHuesCoarseAndFine)
{
    open();
    press(Qt::Key_Right); // saturation 2/3 and a twentieth
    EXPECT_EQ(picked.last(), QColor::fromHsvF(0, 2 / 3.f + 0.05f, 0xbf / 255.f).name());
    press(Qt::Key_Left);
    press(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(picked.last(), QColor::fromHsvF(0, 2 / 3.f, 0xbf / 255.f + 0.01f).name());
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Hue");
    press(Qt::Key_Right);
    press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(QColor(picked.last()).hsvHue(), 6);
}

TEST_F(ColorWellTest, KeepsTheHueOnTheWayThroughGreyAndBlack)
{
    auto* popover = open();
    // As the model answers: each colour comes back, as its hex number.
    QObject::connect(&well, &ColorWell::colorPicked,
                     [this](const QColor& color) { well.setColor(QColor(color.name())); });
    auto* shades = popover->findChild<ShadeField*>();
    popover->findChild<HueBar*>()->setValue(200);
    QTest::mouseClick(shades, Qt::LeftButton, {}, {1, 1});
    EXPECT_EQ(picked.last().toStdString(), "#ffffff");
    QTest::mouseClick(shades, Qt::LeftButton, {}, {200, 400});
    EXPECT_EQ(picked.last(), "#000000");
    QTest::mouseClick(shades, Qt::LeftButton, {}, {400, 0});
    EXPECT_EQ(QColor(picked.last()).hsvHue(), 200);
    well.setColor(QColor("#808080")); // an undo, say
    QTest::mouseClick(shades, Qt::LeftButton, {}, {400, 1});
    EXPECT_EQ(QColor(picked.last()).hsvHue(), 200);
}

TEST_F(ColorWellTest, TakesHexNumbersAndNothingElse)
{
    auto* hex = open()->findChild<QLineEdit*>();
    EXPECT_EQ(hex->text(), "#bf4040");
    hex->setFocus();
    hex->selectAll();
    QTest::keyClicks(hex, "40z8FFa");
    EXPECT_EQ(hex->text(), "408FFa"); // no digit is no key
    QTest::keyClick(hex, Qt::Key_Backtab);
    EXPECT_EQ(picked, QStringList{"#408ffa"});
    EXPECT_EQ(ends, 1);
    hex->setFocus();
    hex->selectAll();
    QTest::keyClicks(hex, "12");
    press(Qt::Key_Escape);
    EXPECT_EQ(picked.size(), 1);
    EXPECT_EQ(well.color(), QColor("#408ffa"));
}

} // namespace
} // namespace orvane
