#include "SliderRow.h"

#include "TestWaiting.h"

#include <QAccessible>
#include <QApplication>
#include <QWheelEvent>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// A shown row from -100 to 100, with what it told.
class SliderRowTest : public testing::Test {
protected:
    explicit SliderRowTest(const SliderRange& range = {.minimum = -100, .maximum = 100})
        : row("Exposure", range)
    {
        row.resize(288, row.height());
        row.show();
        waitFor([this] { return row.isActiveWindow(); });
        QObject::connect(&row, &SliderRow::valueChanged, &row,
                         [this](double value) { told.push_back(value); });
        QObject::connect(&row, &SliderRow::editingChanged, &row,
                         [this](bool isEditing) { edits += isEditing ? '(' : ')'; });
    }
    QPoint knob() { return row.slider().knobCentre().toPoint(); }
    void type(const QString& text, Qt::Key end = Qt::Key_Return)
    {
        QTest::mouseClick(&row.field(), Qt::LeftButton);
        QTest::keyClicks(&row.field(), text);
        QTest::keyClick(&row.field(), end);
    }

    SliderRow row;
    std::vector<double> told;
    std::string edits;
};

TEST_F(SliderRowTest, ADoubleClickResetsOnTheKnobAlone)
{
    row.setValue(40);
    EXPECT_TRUE(told.empty());
    QTest::mouseClick(&row.slider(), Qt::LeftButton, {}, knob());
    QTest::mouseDClick(&row.slider(), Qt::LeftButton, {}, knob());
    EXPECT_EQ(told, std::vector<double>{0});
    EXPECT_EQ(edits, "()()");

    // Beside it the first press brings the knob along, and the second one takes it.
    const QPoint beside(knob().x() + 40, knob().y());
    QTest::mouseClick(&row.slider(), Qt::LeftButton, {}, beside);
    const double there = row.value();
    EXPECT_GT(there, 30);
    QTest::mouseDClick(&row.slider(), Qt::LeftButton, {}, beside);
    EXPECT_EQ(row.value(), there);
}

TEST(SliderRow, WithoutAResetADoubleClickDoesNothing)
{
    SliderRow row("Input", {.minimum = 0, .maximum = 255, .rest = 0, .resets = false});
    row.resize(288, row.height());
    row.setValue(100);
    bool isEditing = false;
    QObject::connect(&row, &SliderRow::editingChanged, &row, [&](bool is) { isEditing = is; });
    QTest::mouseDClick(&row.slider(), Qt::LeftButton, {}, row.slider().knobCentre().toPoint());
    EXPECT_EQ(row.value(), 100);
    EXPECT_FALSE(isEditing);
    EXPECT_EQ(row.toolTip(), "");
}

TEST_F(SliderRowTest, AKnobFollowsTheHandFromWhereItWasTaken)
{
    const QPoint from = knob() + QPoint(5, 0);
    QTest::mousePress(&row.slider(), Qt::LeftButton, {}, from);
    EXPECT_TRUE(told.empty());
    QTest::mouseMove(&row.slider(), from + QPoint(12, 0));
    QTest::mouseMove(&row.slider(), from + QPoint(2000, 0));
    EXPECT_EQ(edits, "(");
    QTest::mouseRelease(&row.slider(), Qt::LeftButton, {}, from + QPoint(2000, 0));
    ASSERT_EQ(told.size(), 2U);
    EXPECT_NEAR(told[0], 12 * 200.0 / (row.slider().width() - 12), 1);
    EXPECT_EQ(told[1], 100);
    EXPECT_EQ(edits, "()");
}

TEST_F(SliderRowTest, TypedNumbersAreHeldToTheRangeAndOthersLeaveIt)
{
    struct Row {
        QString text;
        double expected;
        QString shown;
    };
    const Row rows[] = {
        {"1e9", 100, "100"},     {"-1e9", -100, "-100"}, {" 12 ", 12, "12"},  {"0,5", 0.5, "1"},
        {"-33.4", -33.4, "-33"}, {"abc", 7, "7"},        {"", 7, "7"},        {"nan", 7, "7"},
        {"1e999", 7, "7"},       {"5 5", 7, "7"},        {"1.000,5", 7, "7"},
    };
    for (const Row& each : rows) {
        row.setValue(7);
        told.clear();
        type(each.text);
        EXPECT_EQ(row.value(), each.expected) << each.text.toStdString();
        EXPECT_EQ(row.field().text(), each.shown);
        EXPECT_EQ(told.size(), each.expected == 7 ? 0U : 1U);
    }
    type("55", Qt::Key_Escape);
    EXPECT_EQ(row.value(), 7);
    EXPECT_EQ(row.field().text(), "7");
    type("55", Qt::Key_Tab);
    EXPECT_EQ(row.value(), 55);
}

TEST_F(SliderRowTest, WhatIsSetFromOutsideDoesNotDisturbTyping)
{
    QTest::mouseClick(&row.field(), Qt::LeftButton);
    QTest::keyClicks(&row.field(), "4");
    row.setValue(-60);
    QTest::keyClicks(&row.field(), "2");
    EXPECT_EQ(row.field().text(), "42");
    QTest::keyClick(&row.field(), Qt::Key_Return);
    EXPECT_EQ(row.value(), 42);
}

TEST_F(SliderRowTest, KeysStepByAHundredthOfTheRange)
{
    struct Row {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        double expected; ///< from 10
    };
    const Row rows[] = {{Qt::Key_Right, {}, 12},     {Qt::Key_Up, {}, 12},
                        {Qt::Key_Left, {}, 8},       {Qt::Key_Right, Qt::ShiftModifier, 10.2},
                        {Qt::Key_PageDown, {}, -10}, {Qt::Key_Home, {}, -100},
                        {Qt::Key_End, {}, 100},      {Qt::Key_Right, Qt::ControlModifier, 10}};
    for (const Row& each : rows) {
        row.setValue(10);
        QTest::keyClick(&row.slider(), each.key, each.modifiers);
        EXPECT_DOUBLE_EQ(row.value(), each.expected) << each.key;
    }
    EXPECT_EQ(edits, "");
}

TEST_F(SliderRowTest, TheWheelTurnsItOnlyWithTheFocus)
{
    const auto turn = [this](int delta) {
        QWheelEvent event(QPointF(20, 10), QPointF(20, 10), {}, {0, delta}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        event.ignore();
        QApplication::sendEvent(&row.slider(), &event);
        return event.isAccepted();
    };
    row.field().setFocus();
    EXPECT_FALSE(turn(120));
    EXPECT_EQ(row.value(), 0);
    row.slider().setFocus();
    EXPECT_TRUE(turn(-120));
    EXPECT_EQ(row.value(), -2);
    turn(60); // a touchpad's halves
    EXPECT_EQ(row.value(), -2);
    turn(60);
    EXPECT_EQ(row.value(), 0);
}

TEST_F(SliderRowTest, ScreenReadersAdjustItInItsOwnUnit)
{
    auto* spoken = QAccessible::queryAccessibleInterface(&row.slider());
    ASSERT_TRUE(spoken);
    EXPECT_EQ(spoken->role(), QAccessible::Slider);
    EXPECT_EQ(spoken->text(QAccessible::Name), "Exposure");
    auto* value = spoken->valueInterface();
    ASSERT_TRUE(value);
    EXPECT_EQ(value->minimumStepSize().toDouble(), 2);
    EXPECT_EQ(value->maximumValue().toDouble(), 100);
    row.setValue(99);
    spoken->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_EQ(told, std::vector<double>{100});
}

TEST(SliderRow, ANarrowRangeIsDraggedInFractions)
{
    SliderRow row("Radius", {.minimum = 0.5, .maximum = 3, .rest = 1}, "px");
    row.resize(288, row.height());
    EXPECT_EQ(row.field().text(), "1px");
    QTest::mouseClick(&row.slider(), Qt::LeftButton, {}, {row.slider().width() / 2, 13});
    EXPECT_NEAR(row.value(), 1.75, 0.02);
    EXPECT_EQ(row.field().text(), "2px");
}

} // namespace
} // namespace orvane
