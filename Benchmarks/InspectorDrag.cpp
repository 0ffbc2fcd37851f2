// inspector-drag PICTURE EDIT.json: what one movement of a slider costs the main thread in the
// panel beside the picture, with every section open and an edit that uses every tool.

#include "AppModel.h"
#include "BenchmarkInputs.h"
#include "FoldingSection.h"
#include "ModelSlider.h"
#include "NativeInspector.h"
#include "ScriptedDesktop.h"
#include "TestWaiting.h"
#include "Theme.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

using namespace orvane;

constexpr int movements = 400;

void send(QWidget& slider, QEvent::Type type, const QPointF& place)
{
    QMouseEvent event(type, place, slider.mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&slider, &event);
}

/// Milliseconds of the main thread for each movement: from the event to the model, and all that the
/// panel then makes of what the model tells. Painting comes after them, once a frame.
std::vector<double> drag(DoubleClickSlider& slider)
{
    std::vector<double> costs;
    send(slider, QEvent::MouseButtonPress, slider.knobCentre());
    for (int i = 0; i < movements; ++i) {
        // To and fro, a number further each time.
        const double share = std::abs((i % 100) - 50) / 50.0;
        QElapsedTimer timer;
        timer.start();
        send(slider, QEvent::MouseMove, {8 + (slider.width() - 16) * share, 13});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
        costs.push_back(double(timer.nsecsElapsed()) / 1e6);
        QCoreApplication::processEvents();
    }
    send(slider, QEvent::MouseButtonRelease, slider.knobCentre());
    return costs;
}

int measure(const char* picture, const char* edit)
{
    const Result<EditState> state = readEdit(edit);
    if (!state) {
        std::fprintf(stderr, "%s\n", state.error().message.c_str());
        return 1;
    }
    const QTemporaryDir folder;
    ScriptedDesktop desktop;
    AppModel model({.desktop = desktop, .supportFolder = folder.path().toStdString()});
    model.adoptIntoSession(model.readImageFiles({picture}), false);
    model.restore(*state);
    model.commitHistory();

    QElapsedTimer timer;
    timer.start();
    NativeInspector panel(model);
    panel.resize(NativeInspector::panelWidth, 900);
    panel.show();
    QCoreApplication::processEvents();
    std::printf("%-28s %.1f ms\n", "made and shown", double(timer.nsecsElapsed()) / 1e6);
    for (auto* section : panel.findChildren<FoldingSection*>())
        section->setExpanded(true);
    // Looks and histogram are counted in the background: their coming is no part of a drag.
    waitFor([&] { return !model.isFittingLooks() && !model.histogram.value().r.empty(); });
    QCoreApplication::processEvents();

    auto* row = panel.section("Light")->findChild<ModelSlider*>();
    if (!row)
        return 1;
    auto costs = drag(row->slider());
    std::sort(costs.begin(), costs.end());
    std::printf("%-28s median %.2f ms, 99 %% %.2f ms, worst %.2f ms\n", "a movement's bindings",
                costs[costs.size() / 2], costs[costs.size() * 99 / 100], costs.back());
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: inspector-drag PICTURE EDIT.json\n");
        return 2;
    }
    QApplication application(argc, argv);
    orvane::Theme::apply(application);
    return measure(argv[1], argv[2]);
}
