#include "LevelsView.h"

#include "LevelsPlot.h"
#include "PlotHandle.h"
#include "SliderRow.h"

#include <QApplication>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using Levels = EditState::Levels;
using LevelsStops::Stop;

TEST(LevelsStops, GammaStandsBetweenTheOthers)
{
    struct Row {
        Levels levels;
        double x; ///< on a plot 510 wide
    };
    const Row rows[] = {
        {{0, 255, 100, 0, 255}, 255},   {{100, 200, 100, 0, 255}, 300},
        {{100, 200, 400, 0, 255}, 200}, {{100, 200, 10, 0, 255}, 400},
        {{0, 255, 250, 0, 255}, 127.5}, {{0, 255, 55, 0, 255}, 382.5},
    };
    for (const Row& row : rows)
        EXPECT_NEAR(LevelsStops::position(row.levels, Stop::Gamma, 510), row.x, 1e-9);
}

TEST(LevelsStops, ADragGoesAsFarAsItMay)
{
    struct Row {
        Stop stop;
        Levels levels;
        double x; ///< on a plot 255 wide
        double expected;
    };
    const Row rows[] = {
        {Stop::Black, {0, 255, 100, 0, 255}, 40.4, 40},
        {Stop::Black, {0, 200, 100, 0, 255}, 250, 199},
        {Stop::Black, {0, 200, 100, 0, 255}, -9, 0},
        {Stop::Black, {5, 0, 100, 0, 255}, 90, 5}, // no room
        {Stop::White, {50, 255, 100, 0, 255}, 10, 51},
        {Stop::White, {50, 255, 100, 0, 255}, 999, 255},
        {Stop::Gamma, {0, 255, 100, 0, 255}, 0, 388},
        {Stop::Gamma, {0, 255, 100, 0, 255}, 255, 14},
        {Stop::Gamma, {0, 255, 300, 0, 255}, 127.5, 100},
        {Stop::Gamma, {0, 255, 100, 0, 255}, 63.75, 250},
        {Stop::Gamma, {0, 255, 100, 0, 255}, 191.25, 55},
        {Stop::Gamma, {200, 200, 250, 0, 255}, 10, 100},
    };
    for (const Row& row : rows)
        EXPECT_EQ(LevelsStops::dragged(row.levels, row.stop, row.x, 255), row.expected) << row.x;
}

/// A shown view whose plot is 255 view points wide, with what it told last.
class LevelsViewTest : public testing::Test {
protected:
    LevelsViewTest()
    {
        view.show();
        view.resize(255 + view.plot().width() - int(view.plot().plot().width()), 200);
        QApplication::processEvents();
        QObject::connect(&view, &LevelsView::levelEdited, &view,
                         [this](const QString& key, double value) {
                             ++edits;
                             told = {key.toStdString(), value};
                         });
    }
    QPoint centre(Stop stop) { return view.plot().stopCentre(stop).toPoint(); }

    LevelsView view;
    std::pair<std::string, double> told;
    int edits = 0;
};

TEST_F(LevelsViewTest, StopsFollowTheMouseFromWhereTheyWereTaken)
{
    struct Row {
        Stop stop;
        int grab; ///< beside the stop's middle
        int by;
        const char* key;
        double expected;
    };
    const Row rows[] = {{Stop::Black, 5, 40, "levelsBlackIn", 40},
                        {Stop::White, -5, -55, "levelsWhiteIn", 200},
                        {Stop::Gamma, 0, -30, "levelsGamma", 171}};
    for (const Row& row : rows) {
        view.setLevels({});
        const QPoint from = centre(row.stop) + QPoint(row.grab, 0);
        edits = 0;
        QTest::mousePress(&view.plot(), Qt::LeftButton, {}, from);
        EXPECT_EQ(edits, 0);
        QTest::mouseMove(&view.plot(), from + QPoint(row.by, 3));
        QTest::mouseRelease(&view.plot(), Qt::LeftButton, {}, from + QPoint(row.by, 3));
        EXPECT_EQ(told.first, row.key);
        EXPECT_NEAR(told.second, row.expected, 1);
    }
    // Far from all of them nothing is taken.
    view.setLevels({});
    edits = 0;
    QTest::mousePress(&view.plot(), Qt::LeftButton, {}, centre(Stop::Black) + QPoint(40, 0));
    QTest::mouseMove(&view.plot(), centre(Stop::Black) + QPoint(60, 0));
    EXPECT_EQ(edits, 0);
}

TEST_F(LevelsViewTest, OfStopsInOnePlaceTheOneThatCanMoveIsTaken)
{
    for (const auto& [levels, side, key] :
         {std::tuple{Levels{0, 1, 100, 0, 255}, 4, "levelsWhiteIn"},
          {Levels{254, 255, 100, 0, 255}, -4, "levelsBlackIn"}}) {
        view.setLevels(levels);
        const QPoint from = centre(Stop::Gamma) + QPoint(side, 0);
        QTest::mousePress(&view.plot(), Qt::LeftButton, {}, from);
        QTest::mouseMove(&view.plot(), from + QPoint(10 * side, 0));
        QTest::mouseRelease(&view.plot(), Qt::LeftButton, {}, from);
        EXPECT_EQ(told.first, key);
    }
}

TEST_F(LevelsViewTest, IsUsedByKeyboardAlone)
{
    view.activateWindow();
    auto handles = view.findChildren<PlotHandle*>();
    ASSERT_EQ(handles.size(), 3);
    handles[0]->setFocus();
    const auto key = [](Qt::Key pressed, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), pressed, modifiers);
    };
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(told, std::pair(std::string("levelsBlackIn"), 10.0));
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Gamma");
    key(Qt::Key_Up);
    EXPECT_EQ(told, std::pair(std::string("levelsGamma"), 101.0));
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(told, std::pair(std::string("levelsGamma"), 91.0));
    EXPECT_EQ(QApplication::focusWidget()->accessibleDescription(), "0.91");
    key(Qt::Key_Tab);
    edits = 0;
    key(Qt::Key_Up); // at its end
    EXPECT_EQ(edits, 0);
    key(Qt::Key_Down);
    EXPECT_EQ(view.readout(), "Black 10   Gamma 0.91   White 254");
    key(Qt::Key_Tab);
    key(Qt::Key_Right);
    EXPECT_EQ(told, std::pair(std::string("levelsBlackOut"), 1.0));
}

TEST_F(LevelsViewTest, WhatIsSetIsShownWithoutTellingIt)
{
    view.setLevels({12, 240, 150, 20, 230});
    EXPECT_EQ(view.readout(), "Black 12   Gamma 1.50   White 240");
    EXPECT_EQ(view.whiteOut().value(), 230);
    EXPECT_EQ(edits, 0);
    DoubleClickSlider& slider = view.whiteOut().slider();
    QTest::mouseDClick(&slider, Qt::LeftButton, {}, slider.knobCentre().toPoint());
    EXPECT_EQ(told, std::pair(std::string("levelsWhiteOut"), 255.0));
}

} // namespace
} // namespace orvane
