// What a store of many edits costs: reading and writing its JSON, looking one edit up, saving a
// hundred. Each time is the median of the runs, in milliseconds.
//
//     store-benchmarks EDIT.json [edits [runs [folder]]]

#include "AtomicFile.h"
#include "EditStateJSON.h"
#include "JSONMapStore.h"
#include "LutStore.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace orvane;
using Edits = std::map<std::string, EditState>;

double milliseconds(const std::function<void()>& work)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

class Table {
public:
    explicit Table(int runs)
        : m_runs(runs)
    {
    }
    void row(const char* what, const std::function<void()>& prepare,
             const std::function<void()>& work) const
    {
        std::vector<double> times;
        for (int run = 0; run < m_runs; ++run) {
            prepare();
            times.push_back(milliseconds(work));
        }
        std::sort(times.begin(), times.end());
        struct rusage usage;
        ::getrusage(RUSAGE_SELF, &usage);
        std::printf("%-52s %9.2f   peak %ld MB\n", what, times[times.size() / 2],
                    usage.ru_maxrss / 1024);
    }
    void row(const char* what, const std::function<void()>& work) const
    {
        row(
            what, [] {}, work);
    }

private:
    int m_runs;
};

std::string sourceOf(int edit)
{
    return "file:/home/someone/Pictures/2024/a folder/IMG_" + std::to_string(100000 + edit)
        + ".jpg";
}

/// Ends the program with the message of whatever failed.
template <class R> R&& needed(R&& result)
{
    if (!result) {
        std::fprintf(stderr, "%s\n", result.error().message.c_str());
        std::exit(1);
    }
    return std::forward<R>(result);
}

Edits manyEdits(const EditState& sample, int count)
{
    Edits edits;
    for (int i = 0; i < count; ++i) {
        EditState state = sample;
        state.adjust["exposure"] = i % 100;
        state.rotation = i / 1000.0;
        edits.emplace(sourceOf(i), std::move(state));
    }
    return edits;
}

void measure(const EditState& sample, int count, int runs, const std::filesystem::path& url)
{
    const Table table(runs);
    table.row("an empty store's lookup", [&] { JSONMapStore<EditState>(url).find("x"); });
    // In a process of its own, so that the peaks below are those of reading and saving.
    if (::fork() == 0) {
        needed(JSONStore::save(manyEdits(sample, count), url));
        std::_Exit(0);
    }
    ::wait(nullptr);
    const std::string text = *needed(readTextFile(url, size_t(1) << 30));
    std::printf("%d edits, %.1f MB\n", count, double(text.size()) / 1e6);

    Edits hundred;
    for (int i = 0; i < 100; ++i)
        hundred.emplace(sourceOf(i * 7), sample);
    std::optional<JSONMapStore<EditState>> store;
    table.row(
        "first lookup", [&] { store.emplace(url); },
        [&] { needed(store->find(sourceOf(5)).has_value() ? Result<void>() : Error{"?"}); });
    table.row("next lookup", [&] { store->find(sourceOf(6)); });
    table.row("100 edits saved, the store known", [&] { needed(store->set(hundred)); });
    table.row(
        "100 edits saved by a fresh start", [&] { store.emplace(url); },
        [&] { needed(store->set(hundred)); });
    store.reset();

    table.row("bytes written and brought to the disk", [&] { needed(writeFile(url, text)); });
    table.row("bytes read", [&] { needed(readTextFile(url, size_t(1) << 30)); });
    table.row("text parsed", [&] { needed(JSONDocument().parse(text)); });
    table.row("text parsed and decoded", [&] { needed(decodedText<Edits>(text)); });
    const Edits decodedEdits = *decodedText<Edits>(text);
    table.row("edits encoded", [&] { needed(encoded(decodedEdits)); });
}

void measureLut(int runs, const std::filesystem::path& folder)
{
    constexpr int dimension = 64;
    std::vector<float> rgb(size_t(dimension * dimension * dimension * 3));
    for (size_t i = 0; i < rgb.size(); ++i)
        rgb[i] = float(i * 7919 % 1000003) / 1000003.0f;
    const auto entry = LutStore::Entry::of("lut_1", "x", *LUT::fromRGB(dimension, rgb));
    const Table table(runs);
    std::optional<LutStore> store;
    table.row(
        "a 64-cube kept", [&] { store.emplace(folder); }, [&] { needed(store->save(entry)); });
    table.row(
        "a 64-cube loaded", [&] { store.emplace(folder); }, [&] { store->load("lut_1"); });
    table.row("the same once more", [&] { store->load("lut_1"); });
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s EDIT.json [edits [runs [folder]]]\n", argv[0]);
        return 2;
    }
    const auto sample = needed(decodeEditState(*needed(readTextFile(argv[1], 1 << 24))));
    std::filesystem::path folder = argc > 4 ? argv[4] : ".";
    folder /= "store-benchmarks";
    std::filesystem::create_directories(folder);
    measure(*sample, argc > 2 ? std::atoi(argv[2]) : 20000, argc > 3 ? std::atoi(argv[3]) : 3,
            folder / "edits.json");
    measureLut(argc > 3 ? std::atoi(argv[3]) : 3, folder);
    std::filesystem::remove_all(folder);
    return 0;
}
