// preview-benchmarks PICTURE EDITS-FOLDER [reference|sliders [KEY]|cancellation]: what a user waits
// for under a slider; all three parts, or one, or one slider.

#include "BakeChain.h"
#include "BenchmarkInputs.h"
#include "Geometry.h"
#include "Schema.h"
#include "StolenTime.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <thread>

using namespace orvane;

namespace {

constexpr int rounds = 5;
/// Changes before the measured ones: a slider that moves draws into memory that is in use already.
constexpr int settling = 3;
/// The long edge of what the window renders.
constexpr int proxyEdge = 2560;

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

/// One preview, as the canvas draws it, kept intermediates and all.
double preview(const CIImage& proxy, const EditState& state, DrawStatistics* statistics = nullptr)
{
    const auto start = Clock::now();
    const auto drawn = Baker::cgImage(finishedImage(proxy, state, {}),
                                      {.keepIntermediates = true, .statistics = statistics});
    if (!drawn)
        std::fprintf(stderr, "A preview was not drawn.\n");
    return millisecondsSince(start);
}

/// A value near the edit's own, another in each round, within the slider's range.
double moved(const EditState& state, const Schema::File::Key& slider, int round)
{
    const auto found = state.adjust.find(slider.key);
    const double now = found == state.adjust.end() ? slider.def : found->second;
    const double step = (slider.max - slider.min) / 100 * (round + 1);
    return now + step <= slider.max ? now + step : now - step;
}

void printReference(const CIImage& proxy, EditState state)
{
    std::printf("reference edit, %.0f x %.0f\n", proxy.extent().width(), proxy.extent().height());
    std::printf("  first picture of all (reduces the source)  %7.1f ms\n", preview(proxy, state));
    for (const char* key : {"exposure", "vignette"}) {
        std::vector<double> times;
        DrawStatistics statistics;
        for (int round = 0; round < settling + rounds; ++round) {
            state.adjust[key] += 1;
            const double time = preview(proxy, state, &statistics);
            if (round >= settling)
                times.push_back(time);
        }
        std::printf("  after a change of %-10s               %7.1f ms  (%d passes, %d drawn, %d "
                    "kept)\n",
                    key, median(times), statistics.passes, statistics.storedImages,
                    statistics.reusedImages);
    }
}

std::vector<Schema::File::Key> sliders()
{
    std::vector<Schema::File::Key> keys;
    for (const auto& group : Schema::groups())
        keys.insert(keys.end(), group.keys.begin(), group.keys.end());
    for (const std::string_view key : EditState::levelsKeys)
        keys.push_back({.key = std::string(key), .label = {}, .min = 0, .max = 255});
    return keys;
}

/// "First": after another slider was the last to move. "Then": while this one goes on moving.
void printEverything(const CIImage& proxy, const EditState& edit, const std::string& only)
{
    std::printf("\neverything edit, one slider moved\n  %-22s %9s %9s %6s %6s\n", "slider",
                "first ms", "then ms", "drawn", "kept");
    for (const Schema::File::Key& slider : sliders()) {
        if (!only.empty() && slider.key != only)
            continue;
        preview(proxy, edit);
        std::vector<double> times;
        DrawStatistics statistics;
        for (int round = 0; round <= settling + rounds; ++round) {
            EditState state = edit;
            state.adjust[slider.key] = moved(edit, slider, round);
            times.push_back(preview(proxy, state, &statistics));
        }
        const double first = times.front();
        times.erase(times.begin(), times.begin() + settling + 1);
        std::printf("  %-22s %9.1f %9.1f %6d %6d\n", slider.key.c_str(), first, median(times),
                    statistics.storedImages, statistics.reusedImages);
    }
}

/// How long the engine goes on after it was told to stop, at full size and at random moments.
void printCancellation(const CIImage& source, const EditState& edit)
{
    constexpr int tries = 12;
    const auto start = Clock::now();
    const auto whole = Baker::cgImage(finishedImage(source, edit, {}));
    const double wholeTime = millisecondsSince(start);
    if (!whole)
        return;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> moments(0.01, 0.95);
    std::vector<double> waits;
    for (int i = 0; i < tries; ++i) {
        CancellationToken token;
        Clock::time_point returned;
        bool finished = false;
        std::thread worker([&] {
            finished = Baker::cgImage(finishedImage(source, edit, {}), {.cancellation = &token})
                           .has_value();
            returned = Clock::now();
        });
        std::this_thread::sleep_for(
            std::chrono::duration<double, std::milli>(wholeTime * moments(random)));
        const auto cancelled = Clock::now();
        token.cancel();
        worker.join();
        if (!finished)
            waits.push_back(
                std::chrono::duration<double, std::milli>(returned - cancelled).count());
    }
    if (waits.empty()) {
        std::printf("\ncancellation: no draw was still running\n");
        return;
    }
    std::printf("\ncancellation of the everything edit at full size (%.0f ms when left alone), %zu "
                "of %d still running\n  from cancel to return: median %.1f ms, at most %.1f ms\n",
                wholeTime, waits.size(), tries, median(waits),
                *std::max_element(waits.begin(), waits.end()));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || argc > 5) {
        std::fprintf(
            stderr,
            "preview-benchmarks PICTURE EDITS-FOLDER [reference|sliders [KEY]|cancellation]\n");
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // minutes go by: each line as it is measured
    const std::string edits = argv[2];
    const Result<CIImage> source = readPicture(argv[1]);
    const Result<EditState> reference = readEdit(edits + "/reference-edit.json");
    const Result<EditState> everything = readEdit(edits + "/everything-edit.json");
    for (const std::string& message :
         {source ? "" : source.error().message, reference ? "" : reference.error().message,
          everything ? "" : everything.error().message}) {
        if (!message.empty()) {
            std::fprintf(stderr, "%s\n", message.c_str());
            return 1;
        }
    }
    const std::string part = argc > 3 ? argv[3] : "";
    const CIImage proxy = Geometry::resized(*source, proxyEdge);
    const auto print = [&](const char* name, const auto& table) {
        if (!part.empty() && part != name)
            return;
        const StolenTime stolen;
        table();
        stolen.print();
    };
    print("reference", [&] { printReference(proxy, *reference); });
    print("sliders", [&] { printEverything(proxy, *everything, argc == 5 ? argv[4] : ""); });
    print("cancellation", [&] { printCancellation(*source, *everything); });
    return 0;
}
