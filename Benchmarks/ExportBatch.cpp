// The editor's batch export without a window: pictures, an edit for all of them, a folder.
//
//     export-batch EDIT.json FOLDER [--format jpeg|png|png16|heic|tiff]
//                  [--metadata keep|stripLocation|stripAll] PICTURE...

#include "AppModel.h"
#include "BenchmarkInputs.h"
#include "ScriptedDesktop.h"
#include "SourceKey.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

#include <stdlib.h>
#include <sys/resource.h>

using namespace orvane;

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double processorSeconds()
{
    rusage usage;
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) { return time.tv_sec + time.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// "VmHWM" or another line of the process's status, in megabytes.
double memory(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key + ":"))
            return std::stod(line.substr(key.size() + 1)) / 1024;
    }
    return 0;
}

struct Arguments {
    std::string edit;
    std::filesystem::path folder;
    std::vector<std::filesystem::path> pictures;
    ExportFormat format = ExportFormat::jpeg;
    bool png16 = false;
    Baker::Metadata metadata = Baker::Metadata::stripLocation;
};

std::optional<Arguments> parsed(int count, char** values)
{
    Arguments arguments;
    std::vector<std::string> plain;
    for (int i = 1; i < count; ++i) {
        const std::string word = values[i];
        const std::string value = i + 1 < count ? values[i + 1] : "";
        if (word == "--format") {
            arguments.png16 = value == "png16";
            const auto format =
                exportFormatOfExtension(arguments.png16 ? "png" : std::string_view(value));
            if (!format)
                return {};
            arguments.format = *format;
            ++i;
        } else if (word == "--metadata") {
            const auto metadata = Baker::metadataWithRawValue(value);
            if (!metadata)
                return {};
            arguments.metadata = *metadata;
            ++i;
        } else {
            plain.push_back(word);
        }
    }
    if (plain.size() < 3)
        return {};
    arguments.edit = plain[0];
    arguments.folder = plain[1];
    for (size_t i = 2; i < plain.size(); ++i)
        arguments.pictures.push_back(std::filesystem::absolute(plain[i]));
    return arguments;
}

/// As the edit that each picture had when it was last open.
Result<void> storeEdits(const Arguments& arguments, const EditState& edit,
                        const std::filesystem::path& stores)
{
    std::map<std::string, EditState> edits;
    for (const std::filesystem::path& picture : arguments.pictures)
        edits[SourceKey::ofFile(picture)] = edit;
    return StateStore(stores / "edits.json").save(edits);
}

void open(AppModel& model, const Arguments& arguments)
{
    model.adoptIntoSession(model.readImageFiles(arguments.pictures), false);
    model.exportFormat = arguments.format;
    model.exportPNG16 = arguments.png16;
    model.exportMetadata = arguments.metadata;
}

void exportAll(AppModel& model, ScriptedDesktop& desktop, const std::filesystem::path& folder)
{
    double megapixels = 0;
    for (const EditImage& image : model.session.value())
        megapixels += image.pixels->size().width * image.pixels->size().height / 1e6;
    std::printf("%zu pictures, %.0f MP; opened: peak %.0f MB, now %.0f MB\n",
                model.session.value().size(), megapixels, memory("VmHWM"), memory("VmRSS"));
    std::ofstream("/proc/self/clear_refs") << 5; // the peak begins anew
    const Clock::time_point start = Clock::now();
    const double processor = processorSeconds();
    double before = 0;
    const auto watching = model.exportedCount.onValueChanged([&] {
        const double now = secondsSince(start);
        std::printf("  %3d after %7.2f s (%.2f s), now %.0f MB\n", model.exportedCount.value(), now,
                    now - before, memory("VmRSS"));
        before = now;
    });
    int messages = 0;
    double silence = 0;
    Clock::time_point heard = start;
    const auto listening = model.batchProgress.onValueChanged([&] {
        ++messages;
        silence = std::max(silence, secondsSince(heard));
        heard = Clock::now();
    });
    desktop.choices.push_back({folder});
    model.exportAll();
    while (model.isExportingAll())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const double seconds = secondsSince(start);
    std::printf("%.2f s, %.1f ms a megapixel, %.2f processors busy, peak %.0f MB\n", seconds,
                seconds * 1000 / megapixels, (processorSeconds() - processor) / seconds,
                memory("VmHWM"));
    std::printf("%d messages of progress, the longest silence between two %.2f s\n", messages,
                silence);
    for (const Alert& alert : desktop.alerts)
        std::printf("%s\n%s\n", alert.message.c_str(), alert.informative.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const auto arguments = parsed(argc, argv);
    if (!arguments) {
        std::fprintf(stderr,
                     "export-batch EDIT.json FOLDER [--format jpeg|png|png16|heic|tiff]\n"
                     "             [--metadata keep|stripLocation|stripAll] PICTURE...\n");
        return 2;
    }
    const Result<EditState> edit = readEdit(arguments->edit);
    char stores[] = "/tmp/orvane-batch-XXXXXX";
    if (!edit || !::mkdtemp(stores) || !storeEdits(*arguments, *edit, stores)) {
        std::fprintf(stderr, "%s\n",
                     edit ? "No temporary folder, or no space in it."
                          : edit.error().message.c_str());
        return 1;
    }
    ScriptedDesktop desktop;
    {
        AppModel model({.desktop = desktop, .supportFolder = stores});
        open(model, *arguments);
        exportAll(model, desktop, arguments->folder);
    }
    std::filesystem::remove_all(stores);
    return desktop.alerts.empty() ? 0 : 1;
}
