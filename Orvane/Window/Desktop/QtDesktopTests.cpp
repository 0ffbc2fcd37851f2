#include "DesktopTesting.h"
#include "OpenEventLog.h"
#include "Pasteboard.h"
#include "QtDesktop.h"
#include "TemporaryFolder.h"
#include "TestWaiting.h"

#include <QImage>
#include <QMenu>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(QtDesktop, ShowsTheWorkInTheTitle)
{
    QMainWindow window;
    window.show();
    QtDesktop desktop;
    desktop.showChrome({"nobody sees this", {}, true}); // no window yet
    desktop.setWindow(&window);
    const struct {
        WindowChrome chrome;
        const char* title;
    } cases[] = {
        {{"Orvane"}, "Orvane"},
        {{"a.jpg", "/p/a.jpg", false}, "a.jpg — Orvane"},
        {{"a.jpg", "/p/a.jpg", true}, "a.jpg* — Orvane"},
        {{"a[*].jpg", {}, false}, "a[*].jpg — Orvane"},
        {{"a[*]", {}, true}, "a[*]* — Orvane"},
    };
    for (const auto& c : cases) {
        desktop.showChrome(c.chrome);
        EXPECT_EQ(window.windowHandle()->title().toStdString(), c.title);
        EXPECT_EQ(window.windowFilePath().isEmpty(), !c.chrome.representedFile);
    }
}

TEST_F(TemporaryFolder, SharingOffersWaysOnTheNextTurn)
{
    const std::filesystem::path file = folder / "ü.jpg";
    QImage picture(8, 6, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    ASSERT_TRUE(picture.save(QString::fromStdString(file.string())));
    QMainWindow window;
    window.resize(640, 480);
    window.show();
    QtDesktop desktop;
    desktop.setWindow(&window);
    const auto choose = [&](const QString& name) {
        desktop.share(file);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        waitFor([] { return QApplication::activePopupWidget(); });
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        const QRect place(window.mapToGlobal(QPoint()), window.size());
        EXPECT_TRUE(place.contains(menu->geometry()));
        EXPECT_GT(menu->geometry().center().x(), place.center().x());
        for (QAction* action : menu->actions()) {
            if (action->text() == name)
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
        }
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << name.toStdString();
    };
    choose("Copy File");
    EXPECT_EQ(desktop.pastedFiles(), std::vector{file});
    choose("Copy Image");
    waitFor([&] { return desktop.pastedPicture().has_value(); });
    QImage pasted;
    const auto png = desktop.pastedPicture();
    ASSERT_TRUE(pasted.loadFromData(png->bytes.data(), int(png->bytes.size()), "PNG"));
    EXPECT_EQ(pasted.size(), picture.size());
}

TEST_F(TemporaryFolder, TheLogHoldsWhatWasAcceptedLast)
{
    logOpenEvents({"/unasked"});
    ::setenv("KQ4_UI_TEST_OPEN_EVENT_LOG", (folder / "log").c_str(), 1);
    logOpenEvents({"/b c.jpg", "/ü.jpg", "/a/x.jpg", "/a.jpg"});
    EXPECT_EQ(content("log"), "/a.jpg\n/a/x.jpg\n/b c.jpg\n/ü.jpg\n");
    logOpenEvents({"/caf\xe9"});
    EXPECT_EQ(content("log"), "/caf\xef\xbf\xbd\n");
    ::setenv("KQ4_UI_TEST_OPEN_EVENT_LOG", (folder / "none" / "log").c_str(), 1);
    logOpenEvents({"/a"});
    ::unsetenv("KQ4_UI_TEST_OPEN_EVENT_LOG");
}

} // namespace
} // namespace orvane
