// window-latency PICTURE EDIT.json [WIDTH HEIGHT [sliders]]: how soon a change is on the canvas,
// and how long the window is busy at a time while a slider is dragged. Offscreen, so without the
// time that a desktop takes to show what was painted.

#include "AppModel.h"
#include "BenchmarkInputs.h"
#include "CIPreviewView.h"
#include "Schema.h"
#include "ScriptedDesktop.h"

#include <QApplication>
#include <QThreadPool>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <thread>

using namespace orvane;

namespace {

constexpr int changes = 7;
constexpr int dragMoves = 90;
constexpr std::chrono::milliseconds betweenMoves(16);

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void waitUntil(const std::function<bool()>& condition)
{
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}

/// A canvas that shows an edited picture, and what came on screen since the last change.
struct Window {
    QThreadPool pool;
    ScriptedDesktop desktop;
    AppModel model{{.desktop = desktop,
                    .supportFolder = std::filesystem::temp_directory_path() / "window-latency"}};
    CIPreviewView view{model, pool};
    Clock::time_point changed;
    int painted = 0;
    double first = 0; ///< milliseconds from the change to the first picture
    std::optional<double> finished; ///< to the finished one

    explicit Window(const QSize& size)
    {
        QObject::connect(&view, &CIPreviewView::picturePainted, [this] {
            if (painted++ == 0)
                first = millisecondsSince(changed);
            // The canvas tells the window of a finished picture before that is painted.
            if (!desktop.chrome.title.empty() && !finished)
                finished = millisecondsSince(changed);
        });
        view.resize(size);
        view.show();
    }
    ~Window() { pool.waitForDone(); }

    void begin()
    {
        changed = Clock::now();
        painted = 0;
        finished.reset();
        desktop.chrome = {};
    }
    void setExposure(double value)
    {
        begin();
        model.setAdjust("exposure", value);
    }
    void waitForFinished()
    {
        waitUntil([this] { return finished.has_value(); });
    }
};

void printChanges(Window& window)
{
    std::vector<double> first;
    std::vector<double> finished;
    int drafts = 0;
    for (int i = 0; i < changes; ++i) {
        window.setExposure(3 + i);
        window.waitForFinished();
        first.push_back(window.first);
        finished.push_back(*window.finished);
        drafts += window.painted > 1;
    }
    std::printf("  a change of exposure: first picture %.0f ms, finished %.0f ms, after a draft in "
                "%d of %d\n",
                median(first), median(finished), drafts, changes);
}

/// Each slider of the panel, changed while the window rests.
void printSliders(Window& window)
{
    std::printf("  %-22s %9s %12s\n", "a change of", "first ms", "finished ms");
    for (const auto& group : Schema::groups()) {
        for (const Schema::File::Key& slider : group.keys) {
            std::vector<double> first;
            std::vector<double> finished;
            const double middle = (slider.min + slider.max) / 2;
            for (int i = 1; i <= 3; ++i) {
                window.begin();
                window.model.setAdjust(slider.key,
                                       middle + (slider.max - middle) * (i + 0.37) / 10);
                window.waitForFinished();
                first.push_back(window.first);
                finished.push_back(*window.finished);
            }
            std::printf("  %-22s %9.0f %12.0f\n", slider.key.c_str(), median(first),
                        median(finished));
            std::fflush(stdout);
        }
    }
}

void printDrag(Window& window)
{
    window.begin();
    std::vector<double> busy;
    for (int i = 0; i < dragMoves; ++i) {
        const auto start = Clock::now();
        window.model.setAdjust("exposure", 10 + i * 0.5);
        QCoreApplication::processEvents();
        const auto took = Clock::now() - start;
        busy.push_back(std::chrono::duration<double, std::milli>(took).count());
        if (took < betweenMoves)
            std::this_thread::sleep_for(betweenMoves - took);
    }
    const double seconds = millisecondsSince(window.changed) / 1000;
    std::printf("  a drag of %.1f s: %d pictures, the first after %.0f ms; busy at a time %.1f ms, "
                "at most %.1f\n",
                seconds, window.painted, window.first, median(busy),
                *std::max_element(busy.begin(), busy.end()));
    window.waitForFinished();
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc != 3 && argc != 5 && argc != 6) {
        std::fprintf(stderr, "window-latency PICTURE EDIT.json [WIDTH HEIGHT [sliders]]\n");
        return 2;
    }
    const Result<CIImage> picture = readPicture(argv[1]);
    const Result<EditState> edit = readEdit(argv[2]);
    if (!picture || !edit) {
        std::fprintf(stderr, "%s\n", (picture ? edit.error() : picture.error()).message.c_str());
        return 1;
    }
    Window window(argc > 3 ? QSize(QString(argv[3]).toInt(), QString(argv[4]).toInt())
                           : QSize(1040, 740));
    window.begin();
    window.model.sourceImage = *picture;
    window.model.sourceImageVersion = 1;
    window.waitForFinished();
    std::printf("a view of %d x %d\n  the picture without an edit: %.0f ms\n", window.view.width(),
                window.view.height(), *window.finished);
    window.begin();
    window.model.restore(*edit);
    window.waitForFinished();
    std::printf("  the edit, first of all: %.0f ms\n", *window.finished);
    if (argc == 6) {
        printSliders(window);
    } else {
        printChanges(window);
        printDrag(window);
    }
    return 0;
}
