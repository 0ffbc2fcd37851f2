#include "CollectionBar.h"

#include "DroppedItems.h"
#include "ModelTesting.h"
#include "WidgetTesting.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QProgressBar>
#include <QScrollBar>
#include <QUrl>

#include <gtest/gtest.h>

namespace orvane {
namespace {

class CollectionBarTest : public ModelTest {
protected:
    void showBar()
    {
        bar = std::make_unique<CollectionBar>(
            *model, [this](const std::vector<std::filesystem::path>& files) { opened = files; });
        bar->resize(700, bar->height());
        bar->show();
        waitFor([&] { return bar->isActiveWindow(); });
    }
    QAbstractButton* button(const QString& name) const { return buttonNamed(*bar, name); }
    QWidget* sessionMenu() const { return bar->findChild<QWidget*>("sessionMenu"); }
    QListView& strip() const { return *bar->findChild<QListView*>(); }
    QPoint middleOf(int row) const
    {
        return strip().visualRect(strip().model()->index(row, 0)).center();
    }
    /// What the menu of collections offers; what is disabled stands in brackets.
    QStringList menuTexts() const
    {
        QStringList texts;
        withMenu([&] { click(sessionMenu()); },
                 [&](QMenu& menu) {
                     for (const QAction* action : menu.actions()) {
                         if (!action->text().isEmpty())
                             texts +=
                                 action->isEnabled() ? action->text() : "(" + action->text() + ")";
                     }
                 });
        return texts;
    }
    void chooseFromMenu(const QString& text) const
    {
        withMenu([&] { click(sessionMenu()); }, [&](QMenu& menu) { choose(menu, text); });
    }
    /// Types a name into the dialog that has opened, and presses a key.
    void answerDialog(const QString& name, Qt::Key key) const
    {
        waitFor([] { return QApplication::activeModalWidget() != nullptr; });
        QWidget* const dialog = QApplication::activeModalWidget();
        auto* field = dialog->findChild<QLineEdit*>();
        QTest::keyClicks(field, name);
        QTest::keyClick(field, key);
    }

    std::unique_ptr<CollectionBar> bar;
    std::vector<std::filesystem::path> opened;
};

TEST_F(CollectionBarTest, ShowsWhatIsOfUse)
{
    const struct {
        std::vector<std::string> images;
        int height;
        std::string names;
    } cases[] = {
        {{}, 38, "Collection"},
        {{"a.jpg"}, 38, "Add images; Collection; Copy style; Duplicate image"},
        {{"a.jpg", "b.jpg"},
         116,
         "Add images; Add images to this collection; Collection; Copy style; Duplicate image; "
         "Export All; Images"},
    };
    showBar();
    for (const auto& each : cases) {
        open(each.images);
        settle();
        EXPECT_EQ(bar->height(), each.height);
        EXPECT_EQ(strip().isVisible(), each.height > 38);
        QStringList names = namesOnTheWayOfTab(*bar);
        names.sort(); // the round starts where the focus happens to be
        EXPECT_EQ(names.join("; ").toStdString(), each.names) << each.images.size();
    }
    model->copyStyle();
    settle();
    for (const char* name : {"Paste style", "Apply style to all"})
        EXPECT_TRUE(button(name) && button(name)->isEnabled()) << name;
}

TEST_F(CollectionBarTest, StylesAndDuplicatesByClick)
{
    open({"a.jpg", "b.jpg"});
    showBar();
    expose(40);
    click(button("Copy style"));
    settle();
    activate(1);
    click(button("Paste style"));
    EXPECT_EQ(exposure(), 40);
    click(button("Duplicate image"));
    EXPECT_EQ(model->session.value().size(), 3U);
    desktop.choices.push_back({picture("c.jpg")});
    settle();
    click(button("Add images to this collection"));
    EXPECT_EQ(desktop.openPanels.back().prompt, "Add");
    EXPECT_EQ(model->session.value().size(), 4U);
    expose(10);
    click(button("Copy style"));
    click(button("Apply style to all"));
    model->parkActiveState();
    for (const EditImage& each : model->session.value())
        EXPECT_EQ(each.state.adjust.at("exposure"), 10) << each.name;
}

TEST_F(CollectionBarTest, KeepsASetAsACollectionByMenuAndKeys)
{
    open({"a.jpg", "b.jpg"});
    showBar();
    EXPECT_EQ(menuTexts(), (QStringList{"Save Collection…"}));
    chooseFromMenu("Save Collection…");
    answerDialog("Fish & Chips", Qt::Key_Return);
    settle();
    EXPECT_EQ(model->currentCollectionName.value(), "Fish & Chips");
    EXPECT_EQ(sessionMenu()->accessibleName(), "Collection: Fish & Chips");
    EXPECT_EQ(menuTexts(),
              (QStringList{"(Update “Fish && Chips”)", "Save as New Collection…",
                           "Rename “Fish && Chips”…", "Open", "Fish && Chips · 2 images", "Delete",
                           "Fish && Chips · 2 images"}));

    expose(20);
    EXPECT_EQ(menuTexts().front(), "Update “Fish && Chips”");
    chooseFromMenu("Update “Fish && Chips”");
    EXPECT_FALSE(model->isDirty());
    chooseFromMenu("Rename “Fish && Chips”…");
    answerDialog("Sea", Qt::Key_Return); // the old name is selected, so this takes its place
    EXPECT_EQ(model->currentCollectionName.value(), "Sea");
}

TEST_F(CollectionBarTest, OpensAndDeletesCollectionsFromItsMenu)
{
    open({"a.jpg"});
    model->saveCollection("Old");
    open({"a.jpg", "b.jpg"});
    clock += 10;
    model->saveCollection("New");
    showBar();
    const QStringList texts = menuTexts();
    EXPECT_EQ(texts.mid(3),
              (QStringList{"Open", "New · 2 images", "Old · 1 image", "Delete", "New · 2 images",
                           "Old · 1 image"}));

    chooseFromMenu("Old · 1 image");
    EXPECT_EQ(model->currentCollectionName.value(), "Old");
    EXPECT_EQ(imageNames(), "a.jpg");
    desktop.answers = {0};
    withMenu([&] { click(sessionMenu()); },
             [](QMenu& menu) {
                 menu.setActiveAction(menu.actions().back());
                 QTest::keyClick(&menu, Qt::Key_Return);
             });
    ASSERT_EQ(model->collections.value().size(), 1U);
    EXPECT_EQ(model->collections.value().front().name, "New");
}

TEST_F(CollectionBarTest, FilmstripChoosesByClickAndKeysAndTakesOutByMenu)
{
    open({"a.jpg", "b.jpg", "c.jpg"});
    showBar();
    QTest::mouseClick(strip().viewport(), Qt::LeftButton, {}, middleOf(2));
    EXPECT_EQ(model->activeName(), "c.jpg");
    strip().setFocus();
    QTest::keyClick(&strip(), Qt::Key_Left);
    EXPECT_EQ(model->activeName(), "c.jpg"); // only looked at
    QTest::keyClick(&strip(), Qt::Key_Return);
    EXPECT_EQ(model->activeName(), "b.jpg");

    const auto menuAt = [&](int row) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, middleOf(row),
                                strip().viewport()->mapToGlobal(middleOf(row)));
        QApplication::sendEvent(strip().viewport(), &event);
    };
    withMenu([&] { menuAt(0); }, [](QMenu& menu) { choose(menu, "Remove Image"); });
    settle();
    EXPECT_EQ(imageNames(), "b.jpg, c.jpg");
    model->saveCollection("Sea");
    withMenu([&] { menuAt(1); }, [](QMenu& menu) { choose(menu, "Remove from “Sea”"); });
    EXPECT_EQ(imageNames(), "b.jpg");
}

TEST_F(CollectionBarTest, FilmstripMarksWhatIsNotStored)
{
    open({"a.jpg", "b.jpg"});
    showBar();
    const auto text = [&](int row) {
        return strip().model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
    };
    expose(30);
    settle();
    EXPECT_EQ(text(0), "a.jpg, edits not saved");
    EXPECT_EQ(text(1), "b.jpg");
    model->saveWork();
    settle();
    EXPECT_EQ(text(0), "a.jpg");
    // In a collection its own edits count: two versions of a photo, each with its own.
    model->duplicateImage();
    expose(60);
    model->saveWork();
    settle();
    for (const int row : {0, 1, 2})
        EXPECT_FALSE(text(row).endsWith("saved")) << row;
    activate(0);
    expose(60);
    settle();
    EXPECT_TRUE(text(0).endsWith("edits not saved"));
}

TEST_F(CollectionBarTest, FilmstripKeepsTheActiveOneInViewAndScrollsByWheel)
{
    open(std::vector<std::string>(40, "a.jpg"));
    showBar();
    const auto isInView = [&](int row) {
        // The outermost point of a cell is empty, and the list's own scrolling may spare it.
        return strip().viewport()->rect().contains(
            strip().visualRect(strip().model()->index(row, 0)).adjusted(1, 0, -1, 0));
    };
    settle();
    EXPECT_TRUE(isInView(0));
    activate(30);
    settle();
    EXPECT_TRUE(isInView(30));
    const int before = strip().horizontalScrollBar()->value();
    QWheelEvent wheel(QPointF(50, 30), strip().viewport()->mapToGlobal(QPointF(50, 30)), {},
                      {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(strip().viewport(), &wheel);
    EXPECT_EQ(strip().horizontalScrollBar()->value(), before - 120);

    // An image that goes elsewhere leaves the place as it is.
    const int place = strip().horizontalScrollBar()->value();
    expose(10);
    settle();
    EXPECT_EQ(strip().horizontalScrollBar()->value(), place);
}

TEST_F(CollectionBarTest, TakesFilesAndPhotosThatAreDropped)
{
    FakePhotos library;
    photos = &library;
    restart();
    open({"a.jpg", "b.jpg"});
    showBar();
    const auto drop = [&](QMimeData& data) {
        const QPoint place(300, 80); // over the strip
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        enter.ignore();
        QApplication::sendEvent(bar.get(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(bar.get(), &event);
        return event.isAccepted();
    };
    const std::filesystem::path file = picture("sea ö.jpg");
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(file.string())),
                   QUrl("https://orvane.example/a.jpg")});
    EXPECT_TRUE(drop(files));
    EXPECT_EQ(opened, std::vector{file});
    QMimeData ids;
    ids.setData(photosMimeType, "one\ntwo/2\n");
    EXPECT_TRUE(drop(ids));
    EXPECT_EQ(library.asked, (std::vector<std::string>{"one", "two/2"}));
    QMimeData text;
    text.setText("hello");
    EXPECT_FALSE(drop(text));
}

TEST_F(CollectionBarTest, TellsHowFarABatchIsAndStopsIt)
{
    open({"a.jpg", "b.jpg", "c.jpg"});
    showBar();
    std::filesystem::create_directory(folder / "out");
    desktop.choices.push_back({folder / "out"});
    QTest::mouseClick(button("Export All"), Qt::LeftButton);
    QStringList texts;
    bool wasStopped = false;
    desktop.answers = {0, 0};
    waitFor([&] {
        const auto* shown = button("Cancel");
        if (shown && !wasStopped && model->batchProgress.value().index == 1) {
            settle();
            if (QAbstractButton* const cancel = button("Cancel")) {
                EXPECT_TRUE(button("Exporting 2 of 3"));
                EXPECT_FALSE(button("Exporting 2 of 3")->isEnabled());
                EXPECT_GE(bar->findChild<QProgressBar*>()->value(), 333);
                click(cancel);
                wasStopped = true;
            }
        }
        return !model->isExportingAll();
    });
    settle();
    EXPECT_TRUE(button("Export All") && button("Export All")->isEnabled());
    EXPECT_FALSE(button("Cancel"));
}

} // namespace
} // namespace orvane
