#include "BakeChain.h"

#include "AtomicFile.h"
#include "EditRendering.h"
#include "Geometry.h"
#include "Pipeline.h"
#include "TextLayers.h"

#include <algorithm>
#include <cctype>

#include <unistd.h>

namespace orvane {

const ExportFormatInfo& info(ExportFormat format)
{
    return exportFormats[size_t(format)];
}

std::optional<ExportFormat> exportFormatOfExtension(std::string_view extension)
{
    if (extension.starts_with('.'))
        extension.remove_prefix(1);
    std::string lower(extension);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    if (lower == "jpeg")
        lower = "jpg";
    if (lower == "tif")
        lower = "tiff";
    if (lower == "heif")
        lower = "heic";
    for (const ExportFormatInfo& row : exportFormats) {
        if (row.ext == lower)
            return row.format;
    }
    return {};
}

CIImage finishedImage(const CIImage& source, const EditState& state, const std::optional<LUT>& lut)
{
    const CIImage graded = Pipeline::render(framed(source, state), adjustments(state, lut));
    return TextLayers::draw(state.textItems(), graded);
}

Result<void> encode(const CIImage& finished, const ExportOptions& options, ByteSink& bytes,
                    const DrawOptions& drawing, const Baker::Progress& progress)
{
    const CIImage sized = Geometry::resized(finished, options.longEdge);
    const Baker::FileSettings settings{info(options.format).encoded, options.quality,
                                       options.png16};
    return Baker::encode(Baker::apply(sized, options.metadata), settings, bytes, drawing, progress);
}

ExportEnd bakeFile(const CIImage& finished, const ExportOptions& options,
                   const std::filesystem::path& target, const ExportWatch& watch)
{
    using enum ExportEnd::Kind;
    const CancellationToken* const token = watch.drawing.cancellation;
    Result<AtomicFile> file = AtomicFile::create(target);
    if (!file)
        return {NotWritten, file.error().message};
    FileByteSink bytes(file->descriptor());
    const Result<void> encoded = encode(finished, options, bytes, watch.drawing, watch.progress);
    // An encoder may have been past its last look at the token.
    if (token && token->isCancelled())
        return {Cancelled, "Cancelled."};
    // The sink remembers its first failure, however the encoder has worded it.
    if (!bytes.flush())
        return {NotWritten, bytes.failure()};
    if (!encoded)
        return {NotEncoded, encoded.error().message};
    // What takes long comes before the last question, what comes after it is a rename.
    if (const Result<void> synced = file->sync(); !synced)
        return {NotWritten, synced.error().message};
    std::error_code none;
    if (!watch.replaces && std::filesystem::exists(target, none))
        return {NotWritten, "A file of that name has come into the folder meanwhile."};
    const auto existing =
        watch.replaces ? AtomicFile::Existing::Replaced : AtomicFile::Existing::Respected;
    if (watch.mayFinish && !watch.mayFinish())
        return {Cancelled, "Cancelled."};
    if (const Result<void> committed = file->commit(existing); !committed)
        return {NotWritten, committed.error().message};
    return {};
}

Result<void> exportFile(const CIImage& finished, const ExportOptions& options,
                        const std::filesystem::path& target, const DrawOptions& drawing)
{
    const ExportEnd end = bakeFile(finished, options, target, {.drawing = drawing});
    return end.kind == ExportEnd::Kind::Written ? Result<void>() : Error{end.reason};
}

} // namespace orvane
