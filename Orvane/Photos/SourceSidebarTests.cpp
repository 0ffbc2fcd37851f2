#include "SourceSidebar.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(SourceSidebar, OffersTheLibraryByMouseAndKeysInWhateverWidth)
{
    SourceSidebar sidebar;
    const QSignalSpy asked(&sidebar, &SourceSidebar::connectAsked);
    for (const int width : {sidebar.minimumWidth(), sidebar.sizeHint().width(), 400}) {
        sidebar.resize(width, 500);
        sidebar.show();
        QApplication::processEvents();
        for (const QLabel* text : sidebar.findChildren<QLabel*>()) {
            const int needed =
                text->wordWrap() ? text->heightForWidth(text->width()) : text->sizeHint().height();
            EXPECT_GE(text->height(), needed) << width;
            EXPECT_TRUE(text->parentWidget()->rect().contains(text->geometry())) << width;
        }
        auto* const button = sidebar.findChild<QPushButton*>();
        EXPECT_GE(button->width(), button->sizeHint().width()) << width;
        const auto before = asked.count();
        QTest::mouseClick(button, Qt::LeftButton);
        button->setFocus(Qt::TabFocusReason);
        QTest::keyClick(button, Qt::Key_Space);
        EXPECT_EQ(asked.count(), before + 2);
    }
}

} // namespace
} // namespace orvane
