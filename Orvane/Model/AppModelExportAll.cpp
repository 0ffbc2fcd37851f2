// Exporting every open picture to one folder.

#include "AppModel.h"

#include "ExportNaming.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

namespace fs = std::filesystem;

/// Lines of failures that an alert shows; the others are counted.
constexpr size_t shownFailures = 6;

std::string failureText(const std::vector<std::string>& failed)
{
    std::string text;
    for (size_t i = 0; i < std::min(failed.size(), shownFailures); ++i)
        text += (i == 0 ? "" : "\n") + failed[i];
    if (failed.size() > shownFailures)
        text += "\n… and " + std::to_string(failed.size() - shownFailures) + " more";
    return text;
}

OpenPanel folderPanel(size_t count, std::optional<Baker::Metadata> metadata)
{
    const std::string number = std::to_string(count);
    std::string message = "Choose a folder for the " + number + " exported image";
    if (count != 1)
        message += "s";
    if (metadata == Baker::Metadata::stripLocation)
        message = "Choose a folder for " + number
            + " copies with location removed. Your originals stay untouched.";
    return {.choosing = OpenPanel::Choosing::Folder,
            .message = message,
            .prompt = "Export Here",
            .canCreateFolders = true};
}

} // namespace

struct AppModel::ExportBatch {
    struct Image {
        std::string name;
        SourceAhead::Pixels pixels;
        EditState state;
        std::optional<LUT> lut;
    };

    std::vector<Image> images;
    ExportOptions options;
    fs::path folder;
    size_t current = 0; ///< index of the picture in hand
    int exported = 0;
    std::vector<std::string> failed = {}; ///< a line each
    std::shared_ptr<ExportQueue::Ticket> ticket = {}; ///< of the picture in hand
    bool isCancelled = false; ///< too late for the picture in hand
};

void AppModel::exportAll(std::optional<Baker::Metadata> metadata)
{
    if (session.value().empty() || isExportingAll())
        return;
    if (sessionHasMissingLut() && !confirmExportDespiteMissingLut(true))
        return;
    const auto chosen = m_desktop.choose(folderPanel(session.value().size(), metadata));
    // While the panel is open other things may happen.
    if (chosen.empty() || isExportingAll())
        return;
    const fs::path& folder = chosen.front();
    // Who sees the export begin must not see figures of the last one.
    exportedCount = 0;
    batchProgress = BatchProgress{0, int(session.value().size()), {}, 0};
    exportFolder = folder;
    parkActiveState();
    // Beside those that are being exported, only the picture on screen stays decoded.
    if (m_recentSources.size() > 1)
        m_recentSources.resize(1);
    m_batch = std::make_shared<ExportBatch>(exportBatch(folder, metadata.value_or(exportMetadata)));
    exportNext();
}

/// Copies of everything, so that the session may change meanwhile. A LUT that cannot be read is
/// left out, which the user has agreed to.
AppModel::ExportBatch AppModel::exportBatch(const fs::path& folder, Baker::Metadata metadata) const
{
    ExportBatch batch{.images = {}, .options = exportOptions(), .folder = folder};
    batch.options.metadata = metadata;
    for (const EditImage& image : session.value()) {
        auto lut = image.state.lutID.empty() ? std::nullopt : m_lutStore.table(image.state.lutID);
        batch.images.push_back({image.name, image.pixels, image.state, std::move(lut)});
    }
    return batch;
}

/// One picture at a time, and the name of its file only then: so it stays clear of the files that
/// came before it.
void AppModel::exportNext()
{
    ExportBatch& batch = *m_batch;
    if (batch.current == batch.images.size()) {
        const auto ended = std::exchange(m_batch, nullptr);
        finishExportAll(ended->exported, ended->failed);
        return;
    }
    const ExportBatch::Image& image = batch.images[batch.current];
    const BatchProgress start{int(batch.current), int(batch.images.size()), image.name, 0};
    batchProgress = start;
    ExportQueue::Job job{.pixels = image.pixels,
                         .state = image.state,
                         .lut = image.lut,
                         .options = batch.options,
                         .target = freeExportTarget(batch.folder, image.name, batch.options.format),
                         .replaces = false};
    if (batch.current + 1 < batch.images.size())
        job.next = batch.images[batch.current + 1].pixels;
    const auto progressed = [this, progress = start](double share) mutable {
        progress.fraction = share;
        batchProgress = progress;
    };
    const auto ended = [this, name = image.name](const ExportEnd& end) { takeBatchEnd(name, end); };
    batch.ticket = m_exports.start(std::move(job), {progressed, ended});
}

void AppModel::takeBatchEnd(const std::string& name, const ExportEnd& end)
{
    ExportBatch& batch = *m_batch;
    if (end.kind == ExportEnd::Kind::Written)
        exportedCount = ++batch.exported;
    else if (end.kind == ExportEnd::Kind::NotEncoded)
        batch.failed.push_back(name + ": the image couldn't be encoded as "
                               + std::string(info(batch.options.format).name));
    else
        batch.failed.push_back(name + ": " + end.reason);
    ++batch.current;
    // A cancel that came while the last one was put in place has cut nothing off.
    if (batch.isCancelled && batch.current < batch.images.size())
        finishCancelledBatch(false);
    else
        exportNext();
}

void AppModel::finishExportAll(int exported, const std::vector<std::string>& failed)
{
    const std::optional<fs::path> folder = exportFolder.value();
    exportFolder = std::nullopt;
    if (!failed.empty()) {
        std::string message = "Nothing could be exported";
        if (exported >= 1)
            message = std::to_string(exported) + " exported, " + std::to_string(failed.size())
                + " failed";
        m_desktop.ask({.message = message, .informative = failureText(failed)});
    }
    if (exported >= 1 && folder)
        m_desktop.reveal(*folder);
}

void AppModel::cancelExportAll()
{
    if (!m_batch)
        return;
    m_batch->isCancelled = true;
    // A file that is just being put in its place counts as finished.
    if (m_exports.cancel(m_batch->ticket))
        finishCancelledBatch(true);
}

void AppModel::finishCancelledBatch(bool wasUnfinished)
{
    const auto batch = std::exchange(m_batch, nullptr);
    m_exports.forgetNext();
    exportFolder = std::nullopt;
    std::string text = "Nothing was exported.";
    if (batch->exported >= 1)
        text = std::to_string(batch->exported) + " of " + std::to_string(batch->images.size())
            + " exported. Finished files stay"
            + (wasUnfinished ? "; the unfinished one was removed." : ".");
    if (!batch->failed.empty())
        text += "\n" + failureText(batch->failed);
    m_desktop.ask({.message = "Export cancelled", .informative = text});
    if (batch->exported >= 1)
        m_desktop.reveal(batch->folder);
}

} // namespace orvane
