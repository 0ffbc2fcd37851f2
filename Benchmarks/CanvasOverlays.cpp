// canvas-overlays PICTURE [WIDTH HEIGHT]: how long the window is busy with one move of the pointer
// while a tool drags over the picture, event and paint together. Offscreen, so without the time
// that a desktop takes to show what was painted.

#include "AppModel.h"
#include "BenchmarkInputs.h"
#include "CIPreviewView.h"
#include "ScriptedDesktop.h"

#include <QApplication>
#include <QThreadPool>
#include <QtTest/QTest>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>

using namespace orvane;

namespace {

constexpr int moves = 200;

struct Row {
    const char* name;
    std::function<void(AppModel&)> begin;
    std::function<void(AppModel&)> end;
    CGPoint from; ///< fractions of the picture
    CGPoint to;
    double zoom = 1;
};

const Row rows[] = {
    {"crop, a corner",
     [](AppModel& m) { m.enterCrop(); },
     [](AppModel& m) { m.cancelCrop(); },
     {0.01, 0.01},
     {0.6, 0.6}},
    {"crop, moved",
     [](AppModel& m) {
         m.enterCrop();
         m.setCropNative({0.05, 0.05, 0.6, 0.6});
     },
     [](AppModel& m) { m.cancelCrop(); },
     {0.3, 0.3},
     {0.6, 0.6}},
    {"a light's centre",
     [](AppModel& m) { m.enterRelight(); },
     [](AppModel& m) { m.cancelRelight(); },
     {0.5, 0.5},
     {0.1, 0.2}},
    {"a light's ring",
     [](AppModel& m) { m.enterRelight(); },
     [](AppModel& m) { m.cancelRelight(); },
     {0.74, 0.5},
     {1, 0.5}},
    {"a linear light",
     [](AppModel& m) {
         m.enterRelight();
         m.addLightAt("gradient", 0.5, 0.3);
     },
     [](AppModel& m) { m.cancelRelight(); },
     {0.5, 0.3},
     {0.2, 0.6}},
    {"a light brush",
     [](AppModel& m) {
         m.enterRelight();
         m.addLightAt("brush", 0.5, 0.5);
     },
     [](AppModel& m) { m.cancelRelight(); },
     {0.1, 0.1},
     {0.9, 0.9}},
    {"a caption",
     [](AppModel& m) { m.addText(); },
     [](AppModel& m) { m.deleteText(m.selectedTextID.value()); },
     {0.5, 0.85},
     {0.3, 0.2}},
    {"pan at zoom 2", [](AppModel&) {}, [](AppModel&) {}, {0.5, 0.5}, {0.7, 0.7}, 2},
    {"retouch",
     [](AppModel& m) { m.toggleHeal(); },
     [](AppModel& m) { m.toggleHeal(); },
     {0.1, 0.9},
     {0.9, 0.1}},
};

void waitUntil(const std::function<bool()>& condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}

void drag(AppModel& model, CIPreviewView& view, const Row& row)
{
    model.zoom = row.zoom;
    row.begin(model);
    QTest::qWait(600); // renders and scaled copies
    const auto at = [&](double progress) {
        const CGPoint place = viewPoint(
            {std::lerp(row.from.x, row.to.x, progress), std::lerp(row.from.y, row.to.y, progress)},
            view.mapping());
        return QPointF(place.x, place.y).toPoint();
    };
    std::vector<QPoint> path;
    for (int i = 0; i <= moves; ++i)
        path.push_back(at(double(i) / moves));
    QTest::mousePress(&view, Qt::LeftButton, {}, path.front());
    std::vector<double> times;
    for (const QPoint& point : path) {
        const auto start = std::chrono::steady_clock::now();
        QTest::mouseMove(&view, point);
        QCoreApplication::processEvents();
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count());
    }
    QTest::mouseRelease(&view, Qt::LeftButton, {}, path.back());
    row.end(model);
    QTest::qWait(600);
    std::sort(times.begin(), times.end());
    std::printf("  %-18s %8.1f %8.1f %8.1f\n", row.name, times[times.size() / 2],
                times[times.size() * 99 / 100], times.back());
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // each line as it is measured
    if (argc != 2 && argc != 4) {
        std::fprintf(stderr, "canvas-overlays PICTURE [WIDTH HEIGHT]\n");
        return 2;
    }
    const Result<CIImage> picture = readPicture(argv[1]);
    if (!picture) {
        std::fprintf(stderr, "%s\n", picture.error().message.c_str());
        return 1;
    }
    QThreadPool pool;
    ScriptedDesktop desktop;
    AppModel model({.desktop = desktop,
                    .supportFolder = std::filesystem::temp_directory_path() / "canvas-overlays"});
    CIPreviewView view(model, pool);
    view.resize(argc == 4 ? QString(argv[2]).toInt() : 3840,
                argc == 4 ? QString(argv[3]).toInt() : 2160);
    view.show();
    bool isPainted = false;
    QObject::connect(&view, &CIPreviewView::picturePainted, &application,
                     [&] { isPainted = true; });
    model.sourceImage = *picture;
    model.sourceImageVersion = 1;
    waitUntil([&] { return isPainted; });
    std::printf("milliseconds for a move, %d moves, %d x %d\n  %-18s %8s %8s %8s\n", moves,
                view.width(), view.height(), "", "median", "99 %", "max");
    for (const Row& row : rows)
        drag(model, view, row);
    pool.waitForDone();
    return 0;
}
