#include "BakeChain.h"

#include "AtomicFile.h"
#include "EditRendering.h"
#include "Geometry.h"
#include "Pipeline.h"
#include "TextLayers.h"

#include <algorithm>
#include <cctype>

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
                    const DrawOptions& drawing)
{
    const CIImage sized = Geometry::resized(finished, options.longEdge);
    const Baker::FileSettings settings{info(options.format).encoded, options.quality,
                                       options.png16};
    return Baker::encode(Baker::apply(sized, options.metadata), settings, bytes, drawing);
}

Result<void> exportFile(const CIImage& finished, const ExportOptions& options,
                        const std::filesystem::path& target, const DrawOptions& drawing)
{
    Result<AtomicFile> file = AtomicFile::create(target);
    if (!file)
        return file.error();
    FileByteSink bytes(file->descriptor());
    if (Result<void> encoded = encode(finished, options, bytes, drawing); !encoded)
        return encoded;
    if (!bytes.flush())
        return Error{"The disk is full, or the folder can no longer be written."};
    // An encoder may have been past its last look at the token.
    if (drawing.cancellation && drawing.cancellation->isCancelled())
        return Error{"Cancelled."};
    return file->commit();
}

} // namespace orvane
