#include "CanvasColumn.h"
#include "WindowTesting.h"

#include <QDialog>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace orvane {
namespace {

std::string namesOf(const AppModel& model)
{
    std::string text;
    for (const auto& item : model.images())
        text += (text.empty() ? "" : " ") + item.name;
    return text;
}

TEST_F(WindowTest, FilesComeInInTheirOrderAndWhatIsNoPictureIsToldOnce)
{
    picture("a.jpg");
    put("broken.jpg", "no picture at all");
    put("empty.png", "");
    picture("c.jpg");
    app->delegate.accept({folder / "broken.jpg", folder / "a.jpg", folder / "empty.png",
                          folder / "c.jpg", folder / "missing.jpg"});
    waitFor([&] { return !app->opener.isOpening(); });
    EXPECT_EQ(namesOf(model()), "a.jpg c.jpg");
    ASSERT_EQ(desktop.alerts.size(), 1U);
    EXPECT_EQ(desktop.alerts[0].message, "2 opened, 3 couldn't be read");
    EXPECT_EQ(desktop.alerts[0].informative,
              "Not a readable image: broken.jpg, empty.png, missing.jpg");
    // Sent again at once, as some desktops do.
    app->delegate.accept({folder / "a.jpg"});
    EXPECT_FALSE(app->opener.isOpening());
}

TEST_F(WindowTest, DroppedFilesJoinTheSessionAndADroppedPictureHasNoSource)
{
    openFiles({"a.jpg"});
    const auto drop = [&](const QMimeData& data) {
        auto* column = app->window.findChild<CanvasColumn*>();
        const auto actions = Qt::MoveAction | Qt::CopyAction;
        QDragEnterEvent enter(QPoint(100, 100), actions, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(column, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event(QPointF(100, 100), actions, &data, Qt::LeftButton, {});
        event.setDropAction(Qt::MoveAction);
        QCoreApplication::sendEvent(column, &event);
        EXPECT_TRUE(event.isAccepted());
        EXPECT_EQ(event.dropAction(), Qt::CopyAction) << "a move takes the file away";
    };
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(picture("b.jpg").string()))});
    drop(files);
    waitFor([&] { return namesOf(model()) == "a.jpg b.jpg"; });
    QMimeData loose;
    QImage image(30, 20, QImage::Format_RGB32);
    image.fill(Qt::red);
    loose.setImageData(image);
    drop(loose);
    waitFor([&] { return model().session.value().size() == 3; });
    EXPECT_FALSE(model().session.value().back().source);
    EXPECT_EQ(model().activeImageID.value(), model().session.value().back().id);
    QMimeData address;
    address.setUrls({QUrl("https://example.org/picture.jpg")});
    drop(address);
    waitFor([&] { return !desktop.alerts.empty(); });
    EXPECT_EQ(desktop.alerts[0].message, "Couldn't open that file");
    EXPECT_EQ(model().session.value().size(), 3U);
}

TEST_F(WindowTest, ANewOpeningReplacesTheOneThatRunsAndAsksAboutWorkDoneMeanwhile)
{
    openFiles({"a.jpg"});
    app->delegate.accept({picture("b.jpg")});
    model().setAdjust("exposure", 50); // while b is being read
    model().commitHistory();
    desktop.answers = {2}; // Cancel
    waitFor([&] { return !app->opener.isOpening(); });
    EXPECT_EQ(namesOf(model()), "a.jpg");
    EXPECT_EQ(desktop.takeAlerts().size(), 1U);

    model().saveWork();
    app->opener.open({picture("c.jpg"), picture("d.jpg")}, PictureOpener::How::Replace);
    app->opener.open({picture("e.jpg")}, PictureOpener::How::Replace);
    app->opener.open({folder / "a.jpg"}, PictureOpener::How::Append);
    waitFor([&] { return !app->opener.isOpening(); });
    EXPECT_EQ(namesOf(model()), "e.jpg a.jpg");
}

TEST_F(WindowTest, FilesWaitUntilAnOpenQuestionIsAnswered)
{
    openFiles({"a.jpg"});
    QDialog question(&app->window);
    question.open();
    app->delegate.accept({picture("b.jpg")});
    settle();
    EXPECT_FALSE(app->opener.isOpening());
    question.accept();
    waitFor([&] { return namesOf(model()) == "b.jpg"; });
}

TEST_F(WindowTest, TheSidebarGivesWayInANarrowWindowAndComesBack)
{
    MainWindow& window = app->window;
    window.resize(1024, 700);
    EXPECT_EQ(window.width(), 1024);
    EXPECT_FALSE(window.isSidebarShown());
    window.resize(1280, 800);
    EXPECT_TRUE(window.isSidebarShown());
    EXPECT_TRUE(window.isInspectorShown());
    // Asked for in a narrow one it takes the inspector's room, and the other way round.
    window.resize(1024, 700);
    trigger("sidebar");
    EXPECT_TRUE(window.isSidebarShown());
    EXPECT_FALSE(window.isInspectorShown());
    trigger("inspector");
    EXPECT_FALSE(window.isSidebarShown());
    EXPECT_TRUE(window.isInspectorShown());
    EXPECT_EQ(window.width(), 1024);
    window.resize(1280, 800);
    trigger("sidebar"); // put away by hand it stays away
    window.resize(1400, 900);
    EXPECT_FALSE(window.isSidebarShown());
}

TEST_F(WindowTest, ClosingWithUnsavedWorkAsks)
{
    openFiles({"a.jpg"});
    model().setAdjust("exposure", 50);
    model().commitHistory();
    // Cancel, then Discard, then Save.
    const auto closeWith = [&](const std::string& answer) {
        desktop.takeAlerts();
        desktop.answers.clear();
        // The buttons stand in the alert itself: ask once to learn their order.
        desktop.answers = {answer == "Save" ? 0U : answer == "Discard" ? 1U : 2U};
        const bool closed = app->window.close();
        EXPECT_EQ(desktop.alerts.size(), 1U);
        if (!desktop.alerts.empty()) {
            const auto& buttons = desktop.alerts[0].buttons;
            const size_t index = answer == "Save" ? 0 : answer == "Discard" ? 1 : 2;
            EXPECT_EQ(index < buttons.size() ? buttons[index] : "", answer);
        }
        return closed;
    };
    EXPECT_FALSE(closeWith("Cancel"));
    EXPECT_TRUE(app->window.isVisible());
    EXPECT_TRUE(model().isDirty());
    EXPECT_TRUE(closeWith("Discard"));
    EXPECT_FALSE(std::filesystem::exists(folder / "stores/edits.json"));
    end();
    start();
    openFiles({"a.jpg"});
    EXPECT_EQ(model().adjust.value().count("exposure"), 0U);
    model().setAdjust("exposure", 50);
    model().commitHistory();
    EXPECT_TRUE(closeWith("Save"));
    EXPECT_TRUE(app->delegate.applicationShouldTerminate()) << "the end asks no more";
    end();
    start();
    openFiles({"a.jpg"});
    EXPECT_EQ(model().adjust.value().at("exposure"), 50);
    EXPECT_FALSE(model().isDirty());
}

} // namespace
} // namespace orvane
