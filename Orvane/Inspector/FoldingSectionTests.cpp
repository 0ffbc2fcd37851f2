#include "FoldingSection.h"

#include "CurveEditor.h"
#include "LevelsView.h"
#include "TestWaiting.h"

#include <QApplication>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace orvane {
namespace {

template <class Content> QWidget* made(QWidget*)
{
    return new Content;
}

TEST(FoldingSection, FoldsByKeyAndAsksForAResetOnlyWhenEdited)
{
    FoldingSection section("Levels", made<LevelsView>, true);
    section.show();
    QWidget* content = section.content();
    int resets = 0;
    std::vector<bool> told;
    QObject::connect(&section, &FoldingSection::resetAsked, [&] { ++resets; });
    QObject::connect(&section, &FoldingSection::expandedChanged,
                     [&](bool isOpen) { told.push_back(isOpen); });

    waitFor([&] { return section.isActiveWindow(); });
    section.findChild<QAbstractButton*>()->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_FALSE(content->isVisible());
    section.setExpanded(true);
    EXPECT_TRUE(content->isVisible());
    EXPECT_EQ(told, (std::vector<bool>{false, true}));

    auto* reset = section.findChild<QPushButton*>();
    EXPECT_FALSE(reset->isVisible());
    section.setEdited(true);
    EXPECT_EQ(reset->accessibleName(), "Reset Levels");
    QTest::mouseClick(reset, Qt::LeftButton);
    EXPECT_EQ(resets, 1);
}

TEST(Panel, TabComesToEveryNamedControlAndRoundAgain)
{
    QWidget panel;
    auto* column = new QVBoxLayout(&panel);
    auto* first = new FoldingSection("Curves", made<CurveEditor>, false);
    column->addWidget(first);
    column->addWidget(new FoldingSection("Levels", made<LevelsView>, true));
    panel.show();
    waitFor([&] { return panel.isActiveWindow(); });
    // What is made late takes its place in the order.
    EXPECT_EQ(first->content(), nullptr);
    first->setExpanded(true);
    panel.findChild<CurveEditor*>()->setCurve({{"master", {{0, 0}, {90, 60}, {255, 255}}}});

    QStringList names;
    panel.findChild<QAbstractButton*>()->setFocus();
    QWidget* start = QApplication::focusWidget();
    do {
        names << QApplication::focusWidget()->accessibleName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (QApplication::focusWidget() != start && names.size() < 50);
    const QStringList expected = {"Curves",
                                  "Channel: RGB",
                                  "Point 1 of 3",
                                  "Point 2 of 3",
                                  "Point 3 of 3",
                                  "Previous point",
                                  "Output for point 3",
                                  "Output for point 3",
                                  "Levels",
                                  "Black input level",
                                  "Gamma",
                                  "White input level",
                                  "Output black",
                                  "Output black",
                                  "Output white",
                                  "Output white"};
    EXPECT_EQ(names.join('\n').toStdString(), expected.join('\n').toStdString());
}

} // namespace
} // namespace orvane
