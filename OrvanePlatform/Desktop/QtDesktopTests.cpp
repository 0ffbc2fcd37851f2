#include "FileAddress.h"
#include "FileManager.h"
#include "Pasteboard.h"
#include "TemporaryFolder.h"

#include <QClipboard>
#include <QDBusConnection>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QMimeData>

#include <gmock/gmock.h>

#include <unistd.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr const char* odd = "/a folder/caf\xe9 & 100%#?'\n日本.jpg"; // not UTF-8 throughout

TEST(FileAddress, CarriesEveryByteThereAndBack)
{
    EXPECT_EQ(fileAddress("/a b/ü%.jpg"), "file:///a%20b/%C3%BC%25.jpg");
    EXPECT_EQ(pathOfFileAddress(fileAddress(odd)), odd);
    EXPECT_EQ(pathOfFileAddress("file://localhost/a%20b\r"), "/a b");
    for (const char* other : {"", "https://example.org/a", "file://elsewhere/a", "# file:///a"})
        EXPECT_EQ(pathOfFileAddress(other), "") << other;
}

TEST(Pasteboard, HoldsFilesAsProgramsExpectThem)
{
    Pasteboard::copyFile(odd);
    EXPECT_THAT(Pasteboard::files(), ElementsAre(odd));
    EXPECT_FALSE(Pasteboard::picture());
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    EXPECT_TRUE(data->data("x-special/gnome-copied-files").startsWith("copy\nfile:///a%20folder/"));

    auto* several = new QMimeData;
    several->setData("text/uri-list", "# two\r\nfile:///a.jpg\r\nhttps://x/\r\nfile:///b.jpg\r\n");
    QGuiApplication::clipboard()->setMimeData(several);
    EXPECT_THAT(Pasteboard::files(), ElementsAre("/a.jpg", "/b.jpg"));
}

TEST(Pasteboard, HoldsPicturesAndPrefersPng)
{
    Pasteboard::copyPicture({PastedPicture::Kind::Tiff, {1, 0, 2}});
    ASSERT_TRUE(Pasteboard::picture());
    EXPECT_EQ(Pasteboard::picture()->kind, PastedPicture::Kind::Tiff);
    EXPECT_THAT(Pasteboard::picture()->bytes, ElementsAre(1, 0, 2));
    EXPECT_TRUE(Pasteboard::files().empty());

    auto* both = new QMimeData;
    both->setData("image/tiff", "tiff");
    both->setData("image/png", "png");
    QGuiApplication::clipboard()->setMimeData(both);
    EXPECT_EQ(Pasteboard::picture()->kind, PastedPicture::Kind::Png);
}

/// Programs of the test's own in the place of the desktop's; each writes down what it was given.
class FileManager : public TemporaryFolder {
protected:
    FileManager()
    {
        for (const char* name : {"xdg-open", "xdg-email"}) {
            const fs::path script = tools / name;
            fs::create_directories(tools);
            put(std::string("tools/") + name,
                "#!/bin/sh\nfor each; do printf '%s|' \"$each\"; done > \"" + said.string()
                    + ".part\"\n/bin/mv \"" + said.string() + ".part\" \"" + said.string()
                    + "\"\n");
            fs::permissions(script, fs::perms::owner_all);
        }
        ::setenv("PATH", tools.c_str(), 1);
    }
    ~FileManager() override { ::setenv("PATH", path.c_str(), 1); }

    /// What a tool was started with, as soon as it says so.
    std::string arguments() const
    {
        QElapsedTimer waited;
        waited.start();
        while (!fs::exists(said) && waited.elapsed() < 30'000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        std::string text = content("said");
        fs::remove(said);
        return text;
    }

    const std::string path = ::getenv("PATH");
    const fs::path tools = folder / "tools";
    const fs::path said = folder / "said";
};

TEST_F(FileManager, HandsFilesToTheToolsAsTheyAre)
{
    ASSERT_TRUE(emailFile("/a b/ü & $(x).jpg"));
    EXPECT_EQ(arguments(), "--attach|/a b/ü & $(x).jpg|");
    ASSERT_TRUE(openAddress("https://orvane.example/?a=b&c"));
    EXPECT_EQ(arguments(), "https://orvane.example/?a=b&c|");
    ASSERT_TRUE(openFile(odd));
    EXPECT_EQ(arguments(), fileAddress(odd).toStdString() + "|");
    ::setenv("PATH", folder.c_str(), 1);
    const Result<void> missing = emailFile("/a.jpg");
    ASSERT_FALSE(missing);
    EXPECT_THAT(missing.error().message, testing::HasSubstr("xdg-email"));
}

/// Stands in for a file manager on the bus.
class BusFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
public:
    QStringList shown;
public Q_SLOTS:
    void ShowItems(const QStringList& addresses, const QString&) { shown = addresses; }
};

TEST_F(FileManager, ShowsFilesSelectedOrTheirFolder)
{
    put("a b.jpg", "");
    // Nobody listens: the folder is opened.
    showInFileManager(folder / "a b.jpg");
    EXPECT_EQ(arguments(), fileAddress(folder).toStdString() + "|");
    showInFileManager(folder);
    EXPECT_EQ(arguments(), fileAddress(folder).toStdString() + "|");

    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        GTEST_SKIP() << "There is no program dbus-run-session.";
    BusFileManager manager;
    ASSERT_TRUE(bus.registerObject("/org/freedesktop/FileManager1", &manager,
                                   QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService("org.freedesktop.FileManager1"));
    showInFileManager(folder / "a b.jpg");
    QElapsedTimer waited;
    waited.start();
    while (manager.shown.isEmpty() && waited.elapsed() < 30'000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(manager.shown, QStringList(fileAddress(folder / "a b.jpg")));
}

} // namespace
} // namespace orvane

#include "QtDesktopTests.moc"

int main(int argc, char** argv)
{
    // On a bus of its own, where no real file manager listens.
    constexpr const char* mark = "ORVANE_TEST_BUS";
    if (!::getenv(mark)) {
        ::setenv(mark, "1", 1);
        std::vector<char*> command{const_cast<char*>("dbus-run-session"), const_cast<char*>("--")};
        command.insert(command.end(), argv, argv + argc + 1);
        ::execvp(command[0], command.data());
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); // without that program there is none
    }
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
