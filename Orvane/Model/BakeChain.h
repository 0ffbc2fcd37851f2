#pragma once

#include "Baker.h"
#include "EditState.h"
#include "LUT.h"
#include "Result.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
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
                    const DrawOptions& drawing = {}, const Baker::Progress& progress = {});

/// What came of an export into a file.
struct ExportEnd {
    enum class Kind {
        Written,
        NotEncoded, ///< the picture could not be drawn, or not in this format
        NotWritten, ///< the disk or the folder refused it
        Cancelled,
    };
    Kind kind = Kind::Written;
    std::string reason = {}; ///< one sentence, unless it was written
};

/// What an export into a file may be told on its way.
struct ExportWatch {
    DrawOptions drawing = {};
    Baker::Progress progress = {};
    /// Asked once, with all bytes on the disk; no: the file does not come into its place.
    std::function<bool()> mayFinish = {};
    /// Whether a file that is in the place already gives way.
    bool replaces = true;
};

/// encode() into a file that comes into being whole or not at all.
ExportEnd bakeFile(const CIImage& finished, const ExportOptions& options,
                   const std::filesystem::path& target, const ExportWatch& watch);

/// The same, without its details.
Result<void> exportFile(const CIImage& finished, const ExportOptions& options,
                        const std::filesystem::path& target, const DrawOptions& drawing = {});

} // namespace orvane
