// Exporting one picture, into a file or to share it, and what all exports have in common.

#include "AppModel.h"

#include "ExportNaming.h"
#include "Geometry.h"
#include "SourceKey.h"
#include "Wording.h"

#include <algorithm>
#include <utility>

#include <stdlib.h>

namespace orvane {

namespace {

namespace fs = std::filesystem;

/// A folder that only this user can reach: the names of shared files can be guessed, and the place
/// for temporary files belongs to everybody.
Result<fs::path> newShareFolder()
{
    std::error_code error;
    std::string pattern = fs::temp_directory_path(error) / "orvane-share-XXXXXX";
    if (error || !::mkdtemp(pattern.data()))
        return Error{"There is no place for temporary files, or no space in it."};
    return fs::path(pattern);
}

std::string encodingFailure(ExportFormat format)
{
    return "The image couldn't be encoded as " + std::string(info(format).name) + ".";
}

} // namespace

AppModel::ExportOptions AppModel::exportOptions() const
{
    return {.format = exportFormat,
            .quality = exportQuality / 100,
            .longEdge = exportLongEdge,
            .metadata = exportMetadata,
            .png16 = exportPNG16};
}

std::optional<std::string> AppModel::activeExportName() const
{
    if (!sourceImage.value())
        return std::nullopt;
    const auto& open = session.value();
    const std::string name =
        open.empty() ? "Orvane" : open[indexOf(activeImageID).value_or(0)].name;
    return exportName(name, exportFormat);
}

Baker::Bytes AppModel::encodeCI(const CIImage& image, const ExportOptions& options)
{
    MemoryByteSink bytes;
    return encode(image, options, bytes) ? Baker::Bytes(bytes.take()) : std::nullopt;
}

CIImage AppModel::resizedCI(const CIImage& image, int longEdge)
{
    return Geometry::resized(image, longEdge);
}

bool AppModel::confirmExportDespiteMissingLut(bool missing)
{
    if (!missing)
        return true;
    const size_t answer = m_desktop.ask(
        {.message = "Export without the missing LUT?",
         .informative = "This edit uses a LUT whose file couldn't be loaded, so the export won't "
                        "include its colour. Re-import the LUT, or remove it from the edit, to "
                        "change that.",
         .buttons = {"Export Anyway", "Cancel"}});
    return answer == 0;
}

void AppModel::exportImage()
{
    if (!session.value().empty() && confirmExportDespiteMissingLut(lutMissing))
        exportSheetShown = true;
}

void AppModel::performExport()
{
    exportSheetShown = false;
    exportNativeCI();
}

/// Whatever the panel has asked: no original is written.
Result<void> AppModel::mayExportTo(const fs::path& target) const
{
    const auto isOriginal = [&](const EditImage& image) {
        const auto file = image.source ? SourceKey::filePath(*image.source) : std::nullopt;
        std::error_code none;
        return file && fs::equivalent(*file, target, none);
    };
    const auto& open = session.value();
    if (std::any_of(open.begin(), open.end(), isOriginal))
        return Error{"This is the original, which is never written. Choose another name."};
    return {};
}

/// The active picture, as it is now. With the bytes on the disk `isExporting` falls, then comes
/// done().
void AppModel::startExport(const fs::path& target, ExportDone done)
{
    isExporting = true;
    exportProgress = 0;
    ExportQueue::Job job{.source = *sourceImage.value(),
                         .state = editState(),
                         .lut = ciLUT.value(),
                         .options = exportOptions(),
                         .target = target};
    const auto progressed = [this](double share) { exportProgress = share; };
    const auto ended = [this, done = std::move(done)](const ExportEnd& end) {
        m_export.reset();
        isExporting = false;
        done(end);
    };
    m_export = m_exports.start(std::move(job), {progressed, ended});
}

void AppModel::exportNativeCI()
{
    const auto name = activeExportName();
    if (!name || isExporting)
        return;
    const std::string extension(info(exportFormat).ext);
    const auto target = m_desktop.chooseTarget({.suggestedName = *name, .extension = extension});
    // While the panel is open other things may happen.
    if (!target || !sourceImage.value() || isExporting)
        return;
    const std::string title = "Couldn't export " + inQuotes(*name);
    if (const Result<void> allowed = mayExportTo(*target); !allowed) {
        report(title, allowed.error());
        return;
    }
    startExport(*target, [this, title, format = exportFormat.value()](const ExportEnd& end) {
        if (end.kind == ExportEnd::Kind::NotEncoded)
            report(title, Error{encodingFailure(format)});
        else if (end.kind == ExportEnd::Kind::NotWritten)
            report(title, Error{end.reason});
    });
}

void AppModel::shareImage()
{
    if (!confirmExportDespiteMissingLut(lutMissing))
        return;
    const auto fileName = activeExportName();
    if (!fileName || isExporting)
        return;
    const std::string name = activeName();
    if (std::error_code none; m_shareFolder.empty() || !fs::is_directory(m_shareFolder, none)) {
        const Result<fs::path> made = newShareFolder();
        if (!made) {
            report("Couldn't prepare " + inQuotes(name) + " to share", made.error());
            return;
        }
        m_shareFolder = *made;
    }
    const fs::path file = m_shareFolder / *fileName;
    startExport(file, [this, name, file](const ExportEnd& end) { finishShare(name, file, end); });
}

/// The file stays: whoever it was handed to may read it late.
void AppModel::finishShare(const std::string& name, const fs::path& file, const ExportEnd& end)
{
    const std::string title = "Couldn't prepare " + inQuotes(name) + " to share";
    if (end.kind == ExportEnd::Kind::NotEncoded)
        report(title, Error{"The image couldn't be encoded."});
    else if (end.kind == ExportEnd::Kind::NotWritten)
        report(title, Error{end.reason});
    else if (m_desktop.hasWindow())
        m_desktop.share(file);
}

void AppModel::cancelExport()
{
    if (!m_export || !m_exports.cancel(m_export))
        return;
    m_export.reset();
    isExporting = false;
    m_desktop.ask({.message = "Export cancelled", .informative = "No file was written."});
}

} // namespace orvane
