#include "CurveEditor.h"

#include "CurvePlot.h"
#include "PlotHandle.h"
#include "SliderRow.h"
#include "TestWaiting.h"

#include <QApplication>
#include <QPushButton>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using CurveEditing::Points;

/// A shown editor whose plot is 255 view points wide, so that a level is a view point, with what it
/// told. What it tells comes back to it, as from the model.
class CurveEditorTest : public testing::Test {
protected:
    CurveEditorTest()
    {
        editor.show();
        const int rest = editor.plot().width() - int(editor.plot().plot().width());
        editor.resize(255 + rest, editor.heightForWidth(255 + rest));
        QApplication::processEvents();
        QObject::connect(&editor, &CurveEditor::curveEdited, &editor,
                         [this](const QString& channel, const Points& points) {
                             ++edits;
                             curve[channel.toStdString()] = points;
                             editor.setCurve(CurveEditor::Curve(curve));
                         });
        QObject::connect(&editor, &CurveEditor::editingChanged, &editor,
                         [this](bool isEditing) { drags += isEditing ? '(' : ')'; });
    }

    void show(const Points& points)
    {
        curve = {{"master", points}};
        editor.setCurve(curve);
    }
    const Points& points() { return curve["master"]; }
    CurvePlot& plot() { return editor.plot(); }
    /// A place in the plot, from its upper left corner, in the widget.
    QPoint at(int x, int y) { return (plot().plot().topLeft() + QPointF(x, y)).toPoint(); }
    void drag(const QPoint& from, const QPoint& to)
    {
        QTest::mousePress(&plot(), Qt::LeftButton, {}, from);
        QTest::mouseMove(&plot(), to);
        QTest::mouseRelease(&plot(), Qt::LeftButton, {}, to);
    }
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), pressed, modifiers);
    }

    CurveEditor editor;
    CurveEditor::Curve curve;
    int edits = 0;
    std::string drags;
};

TEST_F(CurveEditorTest, APressTakesAPointWithinItsReachAndElseAddsOne)
{
    ASSERT_EQ(plot().plot().width(), 255);
    struct Row {
        QPoint press;
        size_t count;
        size_t selected;
    };
    const Row rows[] = {
        {{109, 127}, 3, 1}, // 9 away from (100, 127)
        {{110, 127}, 4, 2}, {{90, 127}, 4, 1}, {{107, 134}, 3, 1}, // hypot 9.9
        {{3, 250}, 3, 0},   {{-6, 100}, 4, 1}, // beside the plot: an end stays an end
        {{260, 100}, 4, 2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.press.x() << ", " << row.press.y());
        show({{0, 0}, {100, 128}, {255, 255}});
        QTest::mousePress(&plot(), Qt::LeftButton, {}, at(row.press.x(), row.press.y()));
        EXPECT_EQ(points().size(), row.count);
        EXPECT_EQ(plot().selected(), row.selected);
        EXPECT_EQ(points().front().x, 0);
        EXPECT_EQ(points().back().x, 255);
        QTest::mouseRelease(&plot(), Qt::LeftButton, {}, at(row.press.x(), row.press.y()));
        EXPECT_EQ(points().size(), row.count);
    }
}

TEST_F(CurveEditorTest, ADragHoldsToTheNeighboursAndThrowsAwayFarOutside)
{
    const Points start = {{0, 0}, {100, 155}, {150, 155}, {255, 255}};
    struct Row {
        QPoint from;
        QPoint to;
        Points expected;
    };
    const Row rows[] = {
        {{100, 100}, {120, 80}, {{0, 0}, {120, 175}, {150, 155}, {255, 255}}},
        {{100, 100}, {180, 100}, {{0, 0}, {149, 155}, {150, 155}, {255, 255}}},
        {{150, 100}, {20, 100}, {{0, 0}, {100, 155}, {101, 155}, {255, 255}}},
        {{0, 255}, {60, 200}, {{0, 55}, {100, 155}, {150, 155}, {255, 255}}},
        {{0, 255}, {-40, 300}, start},
        {{255, 0}, {300, 30}, {{0, 0}, {100, 155}, {150, 155}, {255, 225}}},
        {{100, 100}, {100, -12}, {{0, 0}, {100, 255}, {150, 155}, {255, 255}}},
        {{100, 100}, {100, -13}, {{0, 0}, {150, 155}, {255, 255}}},
        {{100, 100}, {-13, 100}, {{0, 0}, {150, 155}, {255, 255}}},
        {{150, 100}, {150, 268}, {{0, 0}, {100, 155}, {255, 255}}},
        // Taken beside its middle, it does not jump there.
        {{104, 103}, {114, 103}, {{0, 0}, {110, 155}, {150, 155}, {255, 255}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << row.from.x() << " to " << row.to.x() << ", " << row.to.y());
        show(start);
        drag(at(row.from.x(), row.from.y()), at(row.to.x(), row.to.y()));
        EXPECT_EQ(points(), row.expected);
    }
}

TEST_F(CurveEditorTest, AnUndoUnderTheHandEndsTheDrag)
{
    show({{0, 0}, {255, 255}});
    QTest::mousePress(&plot(), Qt::LeftButton, {}, at(100, 100));
    ASSERT_EQ(points().size(), 3U);
    show({{0, 0}, {255, 255}});
    edits = 0;
    QTest::mouseMove(&plot(), at(120, 100));
    QTest::mouseRelease(&plot(), Qt::LeftButton, {}, at(120, 100));
    EXPECT_EQ(edits, 0);
    EXPECT_EQ(drags, "()");

    QTest::mousePress(&plot(), Qt::LeftButton, {}, at(0, 255));
    editor.hide(); // and no release comes
    editor.show();
    QTest::mouseMove(&plot(), at(30, 200));
    EXPECT_EQ(edits, 0);
    EXPECT_EQ(drags, "()()");
}

TEST_F(CurveEditorTest, IsUsedByKeyboardAlone)
{
    show({{0, 0}, {100, 128}, {255, 255}});
    auto* lastSegment = editor.findChildren<QPushButton*>().last();
    lastSegment->setFocus();
    editor.activateWindow();
    key(Qt::Key_Tab);
    key(Qt::Key_Tab);
    ASSERT_EQ(plot().selected(), 1U);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Point 2 of 3");
    key(Qt::Key_Right);
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(points()[1], (CurveEditing::Point{101, 138}));
    EXPECT_EQ(QApplication::focusWidget()->accessibleDescription(), "Input 101, output 138");

    // A new point takes its place in the order, before the points that come after it.
    QTest::mouseClick(&plot(), Qt::LeftButton, {}, at(50, 100));
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Point 2 of 4");
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Point 3 of 4");
    key(Qt::Key_Delete);
    EXPECT_EQ(points().size(), 3U);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Point 2 of 3");
    key(Qt::Key_Tab);
    key(Qt::Key_Delete); // an end
    key(Qt::Key_Left);
    EXPECT_EQ(points().size(), 3U);
    EXPECT_EQ(points().back(), (CurveEditing::Point{255, 255}));
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), "Previous point");
}

TEST_F(CurveEditorTest, ThePointRowTypesWithinTheSameLimits)
{
    show({{0, 0}, {100, 128}, {255, 255}});
    EXPECT_FALSE(editor.input().isEnabled());
    for (auto* button : editor.findChildren<QAbstractButton*>()) {
        if (button->toolTip() == "Next point")
            QTest::mouseClick(button, Qt::LeftButton);
    }
    ASSERT_TRUE(editor.input().isEnabled());
    EXPECT_EQ(editor.output().slider().accessibleName(), "Output for point 2");

    QLineEdit& field = editor.input().field();
    field.selectAll();
    QTest::keyClicks(&field, "1000");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(points()[1], (CurveEditing::Point{254, 128}));
    EXPECT_EQ(field.text(), "254");
    editor.output().slider().setFocus();
    key(Qt::Key_Left);
    EXPECT_EQ(points()[1], (CurveEditing::Point{254, 127}));
    QTest::mouseDClick(&editor.output().slider(), Qt::LeftButton);
    EXPECT_EQ(points()[1].y, 127);
}

TEST_F(CurveEditorTest, EachChannelHasItsOwnCurve)
{
    show({{0, 0}, {100, 128}, {255, 255}});
    edits = 0;
    QTest::mouseClick(editor.findChildren<QPushButton*>()[1], Qt::LeftButton);
    EXPECT_EQ(editor.channel(), "r");
    EXPECT_EQ(plot().accessibleName(), "Tone curve for Red");
    EXPECT_EQ(plot().points(), CurveEditing::identity());
    EXPECT_EQ(edits, 0);
    drag(at(60, 195), at(60, 100));
    EXPECT_EQ(curve["r"].size(), 3U);
    EXPECT_EQ(points().size(), 3U);
    // What a file may hold: a single point, or points in any order.
    editor.setCurve({{"r", {{10, 10}}}});
    EXPECT_EQ(plot().points(), CurveEditing::identity());
    editor.setCurve({{"r", {{255, 9}, {0, 1}}}});
    EXPECT_EQ(plot().points().front().y, 1);
    EXPECT_TRUE(CurveEditing::isBent({{"r", {{255, 9}, {0, 1}}}}));
    EXPECT_FALSE(CurveEditing::isBent({{"master", CurveEditing::identity()}, {"r", {}}}));
}

} // namespace
} // namespace orvane
