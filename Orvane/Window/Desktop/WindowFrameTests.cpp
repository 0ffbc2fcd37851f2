#include "TemporaryFolder.h"
#include "UserDefaults.h"
#include "WindowFrame.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSplitter>

#include <gtest/gtest.h>

#include <memory>

namespace orvane {
namespace {

TEST(WindowPlace, ComesBackInSight)
{
    const QRect left(0, 0, 1920, 1080);
    const QRect right(1920, 0, 2560, 1400);
    const QMargins frame(2, 30, 2, 2);
    const struct {
        const char* what;
        QRect kept;
        QList<QRect> screens;
        QRect expected;
    } cases[] = {
        {"as it was", {100, 100, 1280, 800}, {left, right}, {100, 100, 1280, 800}},
        {"the other screen", {2000, 50, 1280, 800}, {left, right}, {2000, 50, 1280, 800}},
        {"a screen that is gone", {2500, 100, 1280, 800}, {left}, {638, 100, 1280, 800}},
        {"left of all", {-3000, -500, 1280, 800}, {left}, {2, 30, 1280, 800}},
        {"across two, more on the right",
         {1800, 100, 1280, 800},
         {left, right},
         {1922, 100, 1280, 800}},
        {"larger than the screen", {0, 0, 3000, 2000}, {left}, {2, 30, 1916, 1048}},
        {"title bar above the screen", {100, 5, 800, 600}, {left}, {100, 30, 800, 600}},
        {"no screen", {100, 5, 800, 600}, {}, {100, 5, 800, 600}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(inSight({c.kept, frame}, c.screens), c.expected) << c.what;
}

TEST(WindowPlace, ReadsOnlyWhatItWrites)
{
    const WindowPlace place{{-5, 6, 700, 800}, {1, 2, 3, 4}, true};
    EXPECT_EQ(textOfPlace(place), "-5 6 700 800 1 2 3 4 maximized");
    EXPECT_EQ(placeOfText(textOfPlace(place)), place);
    for (const char* broken :
         {"", "maximized", "1 2 3 4 5 6 7", "1 2 3 4 5 6 7 8 9", "1 2 0 4 5 6 7 8",
          "1 2 3 -4 5 6 7 8", "1 2 3 4 5 6 7 x", "1 2 3 4 5 6 7 99999999999",
          "2147483647 2 3 4 5 6 7 8", "1 2 3 4 5 6 7 8 minimized"})
        EXPECT_FALSE(placeOfText(broken)) << broken;
}

/// A window of three columns, as in one run of the program.
struct ShownWindow {
    explicit ShownWindow(QSettings& settings)
        : frame((fill(), window), *columns, settings)
    {
        window.show();
    }
    void fill()
    {
        for (int i = 0; i < 3; ++i) {
            auto* column = new QWidget;
            column->setMinimumWidth(50);
            columns->addWidget(column);
        }
        window.setCentralWidget(columns);
    }

    QMainWindow window;
    QSplitter* columns = new QSplitter;
    WindowFrame frame;
};

TEST_F(TemporaryFolder, TheWindowComesBackAsItWas)
{
    QSettings settings(QString::fromStdString((folder / "s.conf").string()), QSettings::IniFormat);
    QList<int> widths;
    {
        ShownWindow run(settings);
        run.window.setGeometry(40, 50, 700, 500);
        run.columns->setSizes({100, 450, 140});
        widths = run.columns->sizes();
        run.columns->widget(2)->hide(); // its width is not forgotten
        run.window.close();
    }
    {
        ShownWindow run(settings);
        EXPECT_EQ(run.window.geometry(), QRect(40, 50, 700, 500));
        EXPECT_EQ(run.columns->sizes(), widths);
        run.window.showMaximized();
        run.window.close();
    }
    {
        ShownWindow run(settings);
        EXPECT_TRUE(run.window.isMaximized());
        run.window.showNormal();
        EXPECT_EQ(run.window.geometry(), QRect(40, 50, 700, 500));
    }
    // From a screen that is gone, and columns of another version.
    settings.setValue("kq4.window.frame", "90000 90000 500 400 0 0 0 0");
    settings.setValue("kq4.sidebar", "1 2 3 4");
    ShownWindow run(settings);
    EXPECT_TRUE(
        QGuiApplication::primaryScreen()->availableGeometry().contains(run.window.geometry()));
}

} // namespace
} // namespace orvane
