#pragma once

#include "Baker.h"
#include "EditState.h"
#include "LUT.h"
#include "Result.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace orvane {

enum class ExportFormat { jpeg, png, heic, tiff };

/// What the rest of the system needs to know of a format, one row for each, in menu order.
struct ExportFormatInfo {
    ExportFormat format;
    std::string_view rawValue;
    std::string_view ext; ///< file extension, no dot
    bool lossy;
    std::string_view name; ///< in messages
    EncodedFormat encoded;
};
inline constexpr ExportFormatInfo exportFormats[] = {
    {ExportFormat::jpeg, "jpeg", "jpg", true, "JPEG", EncodedFormat::Jpeg},
    {ExportFormat::png, "png", "png", false, "PNG", EncodedFormat::Png},
    {ExportFormat::heic, "heic", "heic", true, "HEIC", EncodedFormat::Heif},
    {ExportFormat::tiff, "tiff", "tiff", false, "TIFF (16-bit)", EncodedFormat::Tiff},
};
const ExportFormatInfo& info(ExportFormat format);
/// By a file's extension, with or without the dot, in any case; "jpeg", "tif" and "heif" too.
std::optional<ExportFormat> exportFormatOfExtension(std::string_view extension);

struct ExportOptions {
    ExportFormat format = ExportFormat::jpeg;
    double quality = 0.9; ///< 0..1
    int longEdge = 0; ///< target longest edge in pixels; 0 or below: full size
    Baker::Metadata metadata = Baker::Metadata::stripLocation;
    bool png16 = false;
};

/// The finished picture of an edit, as a recipe: framed, graded, with its text over it. Previews,
/// thumbnails and exports differ only in the size of the source.
CIImage finishedImage(const CIImage& source, const EditState& state, const std::optional<LUT>& lut);

/// Sizes the finished picture, applies the metadata policy and encodes it into `bytes`.
Result<void> encode(const CIImage& finished, const ExportOptions& options, ByteSink& bytes,
                    const DrawOptions& drawing = {});

/// The same into a file that comes into being whole or not at all.
Result<void> exportFile(const CIImage& finished, const ExportOptions& options,
                        const std::filesystem::path& target, const DrawOptions& drawing = {});

} // namespace orvane
