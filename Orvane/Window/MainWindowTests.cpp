#include "MainWindow.h"

#include "AtomicFile.h"
#include "BakeChain.h"
#include "ExportDialog.h"
#include "ExportOverlay.h"
#include "PathText.h"
#include "PictureDecoder.h"
#include "QtPanels.h"
#include "SliderRow.h"
#include "TestWaiting.h"
#include "Theme.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSemaphore>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QUrl>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace orvane {
namespace {

/// Answers as it was told, and writes down what it was told to show.
class ScriptedPanels final : public Panels {
public:
    std::vector<std::filesystem::path> picturesToOpen() override { return toOpen; }
    std::optional<std::filesystem::path> exportTarget(const std::filesystem::path& suggestion,
                                                      const ExportFormatInfo&) override
    {
        suggested = suggestion;
        whileAsking();
        return target;
    }
    void alert(const QString& message, const QString& informative) override
    {
        alerts << message + " | " + informative;
    }
    bool confirm(const QString& message, const QString&, const QString&) override
    {
        questions << message;
        return agrees;
    }

    std::vector<std::filesystem::path> toOpen;
    std::optional<std::filesystem::path> target;
    std::filesystem::path suggested;
    std::function<void()> whileAsking = [] {}; ///< in the save panel's own event loop
    bool agrees = true;
    QStringList alerts;
    QStringList questions;
};

/// The real window, offscreen, with a folder of pictures.
class MainWindowTest : public testing::Test {
protected:
    MainWindowTest()
    {
        window.show();
        window.resize(1000, 700);
    }
    ~MainWindowTest() override
    {
        window.stopWork();
        pool.waitForDone();
    }

    /// A PNG of 600 x 400 or another size, each quarter of its own sRGB colour: dark and mid greys,
    /// red, blue.
    std::filesystem::path makePicture(const char* name, int width = 600, int height = 400)
    {
        const CIColor colors[] = {
            {0.2, 0.2, 0.2, 1}, {0.5, 0.5, 0.5, 1}, {0.6, 0.1, 0.1, 1}, {0.1, 0.1, 0.6, 1}};
        CIImage picture = CIImage::withColor({}).cropped({0, 0, double(width), double(height)});
        for (int i = 0; i < 4; ++i) {
            const CGRect quarter(i % 2 * width / 2, (1 - i / 2) * height / 2, width / 2,
                                 height / 2);
            picture = CIImage::withColor(colors[i]).cropped(quarter).compositedOver(picture);
        }
        const auto path = folder() / name;
        EXPECT_TRUE(exportFile(picture, {.format = ExportFormat::png}, path));
        return path;
    }
    std::filesystem::path folder() const { return pathFromText(temporary.path()); }

    void open(const std::filesystem::path& path)
    {
        int painted = 0;
        const auto connection = QObject::connect(&window.canvas(), &CIPreviewView::picturePainted,
                                                 [&painted] { ++painted; });
        window.open({textFromPath(path)});
        waitFor([&] { return painted > 0; });
        QObject::disconnect(connection);
    }
    /// The colour on screen at a place of the picture.
    QColor colorAt(const CGPoint& fraction)
    {
        const CGPoint point = viewPoint(fraction, window.canvas().mapping());
        return window.canvas().grab().toImage().pixelColor(int(point.x), int(point.y));
    }
    QAction& action(const char* id) { return *window.findChild<QAction*>(id); }
    void startExportTo(const std::filesystem::path& target)
    {
        panels.target = target;
        action("export").trigger();
        auto* dialog = window.findChild<ExportDialog*>();
        dialog->findChild<QComboBox*>("format")->setCurrentIndex(int(ExportFormat::png));
        dialog->accept();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::sendPostedEvents(&window, QEvent::MetaCall);
    }
    /// One job at a time, the first of which waits for `mayGoOn`: what is started stays queued.
    void holdThePool(QSemaphore& mayGoOn)
    {
        pool.waitForDone();
        pool.setMaxThreadCount(1);
        pool.start([&mayGoOn] { mayGoOn.acquire(); });
    }
    void exportTo(const std::filesystem::path& target)
    {
        startExportTo(target);
        waitFor([&] { return action("export").isEnabled(); });
    }

    QTemporaryDir temporary;
    QThreadPool pool;
    ScriptedPanels panels;
    MainWindow window{pool, panels};
    const CGPoint darkGrey{0.25, 0.25};
    const CGPoint red{0.25, 0.75};
};

TEST_F(MainWindowTest, SlidersMovedByKeyAndMouseChangeThePictureOnScreen)
{
    open(makePicture("a.png"));
    EXPECT_EQ(colorAt(darkGrey), QColor(51, 51, 51));

    DoubleClickSlider& exposure = window.panel().row("exposure").slider();
    exposure.setFocus();
    QTest::keyClick(&exposure, Qt::Key_PageUp);
    QTest::keyClick(&exposure, Qt::Key_Right);
    QTest::keyClick(&exposure, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(window.panel().row("exposure").value(), 11.1);
    waitFor([&] { return colorAt(darkGrey).red() > 51; });

    DoubleClickSlider& saturation = window.panel().row("saturation").slider();
    const QPoint knob = saturation.rect().center();
    QTest::mousePress(&saturation, Qt::LeftButton, {}, knob + QPoint(3, 0));
    QTest::mouseMove(&saturation, QPoint(-500, knob.y()));
    QTest::mouseRelease(&saturation, Qt::LeftButton, {}, QPoint(-500, knob.y()));
    EXPECT_EQ(window.panel().row("saturation").value(), -100);
    waitFor([&] { return colorAt(red).red() == colorAt(red).blue(); });

    QTest::mouseDClick(&saturation, Qt::LeftButton, {}, QPoint(10, knob.y()));
    EXPECT_EQ(window.panel().row("saturation").value(), 0);
    waitFor([&] { return colorAt(red).red() > colorAt(red).blue(); });
}

TEST_F(MainWindowTest, TypedValuesAreHeldToTheRange)
{
    open(makePicture("a.png"));
    struct Row {
        const char* typed;
        double value;
        const char* shown;
    };
    const Row rows[] = {{" 12,6 ", 12.6, "13"},
                        {"-3", -3, "-3"},
                        {"999", 55, "55"},
                        {"many", 55, "55"},
                        {"nan", 55, "55"}};
    SliderRow& contrast = window.panel().row("contrast");
    for (const Row& row : rows) {
        contrast.field().selectAll();
        QTest::keyClicks(&contrast.field(), row.typed);
        QTest::keyClick(&contrast.field(), Qt::Key_Return);
        EXPECT_DOUBLE_EQ(contrast.value(), row.value) << row.typed;
        EXPECT_EQ(contrast.field().text(), row.shown) << row.typed;
    }
}

TEST_F(MainWindowTest, TheWheelTurnsOnlyTheSliderThatHasTheFocus)
{
    open(makePicture("a.png"));
    SliderRow& exposure = window.panel().row("exposure");
    const auto turn = [&] {
        QWheelEvent wheel({20, 13}, exposure.slider().mapToGlobal(QPointF(20, 13)), {}, {0, 120},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&exposure.slider(), &wheel);
    };
    window.panel().row("contrast").slider().setFocus();
    turn();
    EXPECT_EQ(exposure.value(), 0);
    exposure.slider().setFocus();
    turn();
    EXPECT_GT(exposure.value(), 0);
}

TEST_F(MainWindowTest, ZoomKeepsThePointUnderThePointerAndADragPans)
{
    open(makePicture("a.png"));
    CIPreviewView& canvas = window.canvas();
    const QPointF pointer(200, 250);
    const auto under = [&] { return normalized({pointer.x(), pointer.y()}, canvas.mapping()); };
    const CGPoint before = under().value();
    for (int i = 0; i < 5; ++i) {
        QWheelEvent wheel(pointer, canvas.mapToGlobal(pointer), {}, {0, 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&canvas, &wheel);
    }
    EXPECT_NEAR(canvas.mapping().zoom, std::pow(1.25, 5), 1e-9);
    EXPECT_NEAR(under()->x, before.x, 1e-9);
    EXPECT_NEAR(under()->y, before.y, 1e-9);
    EXPECT_EQ(canvas.cursor().shape(), Qt::OpenHandCursor);

    const CGPoint pan = canvas.mapping().pan;
    QTest::mousePress(&canvas, Qt::LeftButton, {}, {300, 300});
    QTest::mouseMove(&canvas, {306, 300});
    EXPECT_EQ(canvas.mapping().pan, pan) << "less than a drag";
    QTest::mouseMove(&canvas, {280, 330});
    QTest::mouseRelease(&canvas, Qt::LeftButton, {}, {280, 330});
    EXPECT_EQ(canvas.mapping().pan, (CGPoint{pan.x - 20, pan.y + 30}));

    QTest::mouseDClick(&canvas, Qt::LeftButton, {}, {300, 300});
    EXPECT_EQ(canvas.mapping().zoom, 1);
    EXPECT_EQ(canvas.mapping().pan, CGPoint{});
}

TEST_F(MainWindowTest, TheCompareKeysShowTheUngradedPictureAndAgainTheEdit)
{
    open(makePicture("a.png"));
    window.panel().row("exposure").setValue(60);
    waitFor([&] { return colorAt(darkGrey).red() > 51; });
    const QColor graded = colorAt(darkGrey);
    window.activateWindow();
    waitFor([&] { return window.isActiveWindow(); });
    for (const Qt::Key key : {Qt::Key_B, Qt::Key_Backslash}) {
        EXPECT_EQ(action("compare").text(), "Show Original");
        QTest::keyClick(&window, key);
        waitFor([&] { return colorAt(darkGrey) == QColor(51, 51, 51); });
        EXPECT_EQ(action("compare").text(), "Show Edited");
        QTest::keyClick(&window, key);
        waitFor([&] { return colorAt(darkGrey) == graded; });
    }
    QLineEdit& field = window.panel().row("exposure").field();
    field.setFocus();
    field.clear();
    QTest::keyClicks(&field, "b\\");
    EXPECT_EQ(field.text(), "b\\") << "a text field keeps its letters";
    EXPECT_EQ(action("compare").text(), "Show Original");
}

TEST_F(MainWindowTest, WhatCannotBeOpenedIsToldAndThePictureStays)
{
    const auto good = makePicture("good.png");
    const auto broken = folder() / "broken.jpg";
    ASSERT_TRUE(writeFile(broken, "\xff\xd8\xff\xe0 and then nothing of a picture"));
    const std::string reason = decodePictureFile(broken).error().message;

    open(good);
    window.open({textFromPath(broken)});
    waitFor([&] { return panels.alerts.size() == 1; });
    EXPECT_EQ(panels.alerts[0].toStdString(),
              "Couldn't open that file | Not a readable image: broken.jpg\n“broken.jpg”: "
                  + reason);
    EXPECT_EQ(colorAt(darkGrey), QColor(51, 51, 51));

    window.open({textFromPath(broken), textFromPath(folder() / "gone.png")});
    waitFor([&] { return panels.alerts.size() == 2; });
    EXPECT_TRUE(panels.alerts[1].startsWith("Couldn't open those files | Not a readable image: "
                                            "broken.jpg, gone.png\n“broken.jpg”: "));
    EXPECT_TRUE(panels.alerts[1].endsWith("“gone.png”: The file is no longer there."));
}

TEST_F(MainWindowTest, ADropOpensAPictureOrSaysWhyNot)
{
    const auto drop = [&](const QUrl& url) {
        QMimeData data;
        data.setUrls({url});
        QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window, &event);
    };
    drop(QUrl("https://pictures.invalid/a.png"));
    waitFor([&] { return panels.alerts.size() == 1; });
    EXPECT_TRUE(panels.alerts[0].startsWith("Couldn't open that file | "));

    drop(QUrl::fromLocalFile(textFromPath(makePicture("dropped.png"))));
    waitFor([&] { return window.canvas().mapping().hasFrame(); });
    EXPECT_EQ(window.windowTitle(), "dropped.png — Orvane");
    EXPECT_EQ(panels.alerts.size(), 1);
}

TEST_F(MainWindowTest, AnExportHoldsTheEditAndLeavesTheOriginalAlone)
{
    const auto source = makePicture("holiday.one.png");
    const auto original = readFile(source, 1 << 20);
    open(source);
    window.panel().row("exposure").setValue(50);
    exportTo(folder() / "out.png");
    EXPECT_EQ(panels.suggested, folder() / "holiday.one-edit.png");
    EXPECT_TRUE(panels.alerts.isEmpty()) << panels.alerts.join('\n').toStdString();
    waitFor([&] { return colorAt(darkGrey).red() > 51; });
    const auto written = decodePictureFile(folder() / "out.png");
    ASSERT_TRUE(written);
    EXPECT_EQ(written->bitmap->width(), 600);
    EXPECT_EQ(written->bitmap->row(100)[3 * 150], colorAt(darkGrey).red())
        << "the preview shows what the export writes";

    exportTo(source);
    ASSERT_EQ(panels.alerts.size(), 1);
    EXPECT_TRUE(panels.alerts[0].startsWith("Couldn't export “holiday.one-edit.png” | "));
    EXPECT_EQ(*readFile(source, 1 << 20), *original);

    exportTo(folder() / "no such folder" / "out.png");
    ASSERT_EQ(panels.alerts.size(), 2);
    EXPECT_TRUE(panels.alerts[1].startsWith("Couldn't export “holiday.one-edit.png” | "));
}

TEST_F(MainWindowTest, AnExportIsOfThePictureItWasAskedFor)
{
    const auto first = makePicture("first.png");
    const auto original = readFile(first, 1 << 20);
    const auto second = makePicture("second.png", 300, 200);
    panels.whileAsking = [&] {
        window.open({textFromPath(second)});
        waitFor([&] { return window.windowTitle() == "second.png — Orvane"; });
    };

    open(first);
    window.panel().row("exposure").setValue(50);
    exportTo(folder() / "out.png");
    EXPECT_EQ(panels.suggested.filename(), "first-edit.png");
    const auto written = decodePictureFile(folder() / "out.png");
    ASSERT_TRUE(written);
    EXPECT_EQ(written->bitmap->width(), 600);
    EXPECT_GT(written->bitmap->row(100)[3 * 150], 51) << "with the edit of the first";

    open(first);
    exportTo(first);
    ASSERT_EQ(panels.alerts.size(), 1);
    EXPECT_TRUE(panels.alerts[0].startsWith("Couldn't export “first-edit.png” | "));
    EXPECT_EQ(*readFile(first, 1 << 20), *original);
}

TEST_F(MainWindowTest, ACancelledExportLeavesTheTargetAsItWas)
{
    const auto target = folder() / "out.png";
    ASSERT_TRUE(writeFile(target, "what was there"));
    const auto before = readFile(target, 1 << 20);
    open(makePicture("a.png"));
    auto& overlay = *window.findChild<ExportOverlay*>();
    const std::function<void()> waysToCancel[] = {
        [&] { QTest::mouseClick(overlay.findChild<QPushButton*>(), Qt::LeftButton); },
        [&] { QTest::keyClick(window.focusWidget(), Qt::Key_Escape); }};
    for (const auto& cancel : waysToCancel) {
        QSemaphore mayStart;
        holdThePool(mayStart);
        startExportTo(target);
        EXPECT_FALSE(action("export").isEnabled());
        QTest::keyClick(window.focusWidget(), Qt::Key_Space);
        EXPECT_TRUE(overlay.findChild<QPushButton*>()->isEnabled()) << "a stray Space is nothing";
        cancel();
        mayStart.release();
        waitFor([&] { return action("export").isEnabled(); });
        EXPECT_FALSE(overlay.isVisible());
        EXPECT_EQ(*readFile(target, 1 << 20), *before);
    }
    EXPECT_TRUE(panels.alerts.isEmpty());
    EXPECT_EQ(QDir(temporary.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

TEST_F(MainWindowTest, OfTwoOpeningsOnlyTheLaterIsShown)
{
    const auto first = makePicture("first.png");
    const auto second = makePicture("second.png");
    open(makePicture("before.png"));
    QStringList titles;
    QObject::connect(&window, &QWidget::windowTitleChanged,
                     [&](const QString& title) { titles << title; });
    QSemaphore mayStart;
    holdThePool(mayStart);
    window.open({textFromPath(first)});
    window.open({textFromPath(second)});
    window.resize(900, 600);
    EXPECT_EQ(window.statusBar()->findChild<QLabel*>()->text(), "Opening “second.png”…");
    mayStart.release();
    waitFor([&] { return !titles.isEmpty(); });
    pool.waitForDone();
    QCoreApplication::processEvents();
    EXPECT_EQ(titles, QStringList{"second.png — Orvane"});
}

TEST_F(MainWindowTest, AnEditThatIsNowhereElseIsNotDroppedUnasked)
{
    const auto first = makePicture("first.png");
    const auto second = makePicture("second.png");
    const auto tryToOpen = [&](const std::filesystem::path& path) {
        panels.questions.clear();
        const QString before = window.windowTitle();
        window.open({textFromPath(path)});
        waitFor([&] { return !panels.questions.isEmpty() || window.windowTitle() != before; });
    };
    tryToOpen(first);
    tryToOpen(second);
    EXPECT_TRUE(panels.questions.isEmpty());

    panels.agrees = false;
    window.panel().row("exposure").setValue(50);
    tryToOpen(first);
    EXPECT_EQ(panels.questions, QStringList{"Discard your edits to “second.png”?"});
    EXPECT_EQ(window.windowTitle(), "second.png — Orvane");
    EXPECT_FALSE(window.close());

    exportTo(folder() / "out.png");
    window.panel().row("exposure").setValue(0);
    tryToOpen(first);
    EXPECT_TRUE(panels.questions.isEmpty()) << "back at the defaults";
    window.panel().row("exposure").setValue(50);
    exportTo(folder() / "out.png");
    tryToOpen(second);
    EXPECT_TRUE(panels.questions.isEmpty()) << "exported";
    window.panel().row("exposure").setValue(50);
    panels.agrees = true;
    EXPECT_TRUE(window.close());
    EXPECT_EQ(panels.questions.size(), 1);
}

TEST(WithExtension, AppendsTheFormatsUnlessOneOfItsOwnIsThere)
{
    struct Row {
        const char* typed;
        ExportFormat format;
        const char* expected;
    };
    const Row rows[] = {{"/p/a", ExportFormat::jpeg, "/p/a.jpg"},
                        {"/p/a.JPEG", ExportFormat::jpeg, "/p/a.JPEG"},
                        {"/p/a.png", ExportFormat::jpeg, "/p/a.png.jpg"},
                        {"/p/one.two", ExportFormat::tiff, "/p/one.two.tiff"},
                        {"/p.png/a", ExportFormat::png, "/p.png/a.png"}};
    for (const Row& row : rows)
        EXPECT_EQ(withExtension(row.typed, info(row.format)), row.expected);
}

TEST_F(MainWindowTest, NoKeyIsGivenToTwoCommands)
{
    std::set<QString> keys;
    for (const QAction* action : window.findChildren<QAction*>()) {
        for (const QKeySequence& key : action->shortcuts())
            EXPECT_TRUE(keys.insert(key.toString()).second) << key.toString().toStdString();
    }
    EXPECT_GE(keys.size(), 8U);
}

} // namespace
} // namespace orvane

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    orvane::Theme::apply(application);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
