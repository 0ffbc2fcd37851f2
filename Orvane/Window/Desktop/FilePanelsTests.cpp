#include "DesktopTesting.h"
#include "QtDesktop.h"
#include "TemporaryFolder.h"
#include "TestWaiting.h"

#include <QAbstractItemView>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>

#include <gmock/gmock.h>

#include <memory>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

QLineEdit& nameField(QWidget* dialog)
{
    auto* field = dialog->findChild<QLineEdit*>("fileNameEdit");
    if (!field)
        throw std::logic_error("The dialog has no field for a name.");
    return *field;
}

void enter(QWidget* dialog, const std::string& name)
{
    QLineEdit& field = nameField(dialog);
    field.selectAll();
    QTest::keyClicks(&field, QString::fromStdString(name));
    QTest::keyClick(&field, Qt::Key_Return);
}

class FilePanelsIn : public TemporaryFolder {
protected:
    FilePanelsIn()
    {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope,
                           QString::fromStdString((folder / "settings").string()));
    }
};

TEST(WithExtension, StandsAtTheEndOnce)
{
    const struct {
        const char* typed;
        const char* extension;
        const char* target;
    } cases[] = {
        {"/a/x", "jpg", "/a/x.jpg"},         {"/a/x.jpg", "jpg", "/a/x.jpg"},
        {"/a/x.JPG", "jpg", "/a/x.JPG"},     {"/a/x.jpeg", "jpg", "/a/x.jpeg"},
        {"/a/x.png", "jpg", "/a/x.png.jpg"}, {"/a/x.tiff", "tif", "/a/x.tiff"},
        {"/a/x.", "png", "/a/x.png"},        {"/a/.jpg", "jpg", "/a/.jpg.jpg"},
        {"/a.jpg/x", "jpg", "/a.jpg/x.jpg"}, {"/a/x.heif", "heic", "/a/x.heif"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(withExtension(c.typed, c.extension), c.target) << c.typed;
}

TEST_F(FilePanelsIn, AskBeforeTheFileThatIsReallyReplaced)
{
    put("there.jpg", "kept");
    fs::create_directories(folder / "box.jpg");
    QtDesktop desktop;
    std::vector<QString> asked;
    const auto answer = [&](Qt::Key key) {
        whenOpen([&asked, key](QWidget* question) {
            asked.push_back(question->accessibleName());
            QTest::keyClick(question, key);
        });
    };
    whenOpen([&](QWidget* panel) {
        static_cast<QFileDialog*>(panel)->setDirectory(QString::fromStdString(folder.string()));
        EXPECT_EQ(nameField(panel).text(), "a-edit.jpg");
        // Typed without the extension, and twice refused: the panel stays.
        answer(Qt::Key_Escape);
        enter(panel, "there");
        EXPECT_TRUE(panel->isVisible());
        answer(Qt::Key_Escape);
        enter(panel, "box");
        EXPECT_TRUE(panel->isVisible());
        answer(Qt::Key_Return);
        enter(panel, "there");
    });
    EXPECT_EQ(desktop.chooseTarget({"a-edit.jpg", "jpg"}), folder / "there.jpg");
    EXPECT_THAT(
        asked,
        ElementsAre("Replace “there.jpg”?", "“box.jpg” is a folder", "Replace “there.jpg”?"));

    // The next run starts where this one ended.
    QtDesktop next;
    whenOpen([&](QWidget* panel) {
        EXPECT_EQ(static_cast<QFileDialog*>(panel)->directory().path().toStdString(),
                  folder.string());
        QTest::keyClick(panel, Qt::Key_Escape);
    });
    EXPECT_EQ(next.chooseTarget({"b.png", "png"}), std::nullopt);
}

TEST_F(FilePanelsIn, ChooseFilesWhateverTheCaseOfTheirNames)
{
    for (const char* name : {"a.JPG", "b.nef", "c.Tiff", "d.txt"})
        put(name, "x");
    QtDesktop desktop;
    const OpenPanel pictures{
        .message = "Choose.", .prompt = "Open", .extensions = {"nef"}, .allowsSeveral = true};
    whenOpen([&](QWidget* widget) {
        auto* const panel = static_cast<QFileDialog*>(widget);
        panel->setDirectory(QString::fromStdString(folder.string()));
        const QAbstractItemModel* const shown =
            panel->findChild<QAbstractItemView*>("treeView")->model();
        const auto root = [&] {
            return panel->findChild<QAbstractItemView*>("treeView")->rootIndex();
        };
        waitFor([&] { return shown->rowCount(root()) == 3; });
        std::vector<std::string> names;
        for (int row = 0; row < 3; ++row)
            names.push_back(shown->index(row, 0, root()).data().toString().toStdString());
        EXPECT_THAT(names, UnorderedElementsAre("a.JPG", "b.nef", "c.Tiff"));
        enter(panel, "\"a.JPG\" \"b.nef\"");
    });
    EXPECT_THAT(desktop.choose(pictures), ElementsAre(folder / "a.JPG", folder / "b.nef"));

    auto window = std::make_unique<QMainWindow>();
    window->show();
    desktop.setWindow(window.get());
    whenOpen([&](QWidget*) { window.reset(); });
    EXPECT_THAT(desktop.choose(pictures), IsEmpty());
}

} // namespace
} // namespace orvane
