#include "DropFrame.h"
#include "EmptyPage.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(EmptyPage, OpensAndImportsAlsoUnderTheFrameOfADrop)
{
    EmptyPage page;
    DropFrame frame(&page);
    page.resize(560, 440);
    page.show();
    const QSignalSpy opened(&page, &EmptyPage::openAsked);
    const QSignalSpy imported(&page, &EmptyPage::importAsked);
    const QImage plain = page.grab().toImage();
    page.setDropTargeted(true);
    frame.setDropTargeted(true);
    page.resize(700, 500);
    EXPECT_EQ(frame.size(), page.size());
    EXPECT_NE(page.grab().toImage(), plain);
    // Where the frame lies over them, the buttons still get what is theirs.
    for (QPushButton* button : page.findChildren<QPushButton*>()) {
        EXPECT_EQ(page.childAt(button->mapTo(&page, button->rect().center())), button);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    EXPECT_EQ(opened.count(), 1);
    EXPECT_EQ(imported.count(), 1);
    page.setDropTargeted(false);
    frame.setDropTargeted(false);
    page.resize(560, 440);
    EXPECT_EQ(page.grab().toImage(), plain);
}

} // namespace
} // namespace orvane
