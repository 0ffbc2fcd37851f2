#pragma once

#include "CIContext.h"
#include "PictureEncoder.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

/// Finished recipes to pixels and files. All output is sRGB, whatever the source was.
namespace orvane::Baker {

/// What a written file tells about its source.
enum class Metadata {
    keep, ///< the image's properties as they are
    stripLocation, ///< all but the location
    stripAll, ///< none
};
inline constexpr std::array allMetadata = {Metadata::keep, Metadata::stripLocation,
                                           Metadata::stripAll};

/// "keep", "stripLocation", "stripAll".
std::string_view rawValue(Metadata metadata);
/// Absent for any other text.
std::optional<Metadata> metadataWithRawValue(std::string_view text);

/// The one drawing context, made on first use. From any thread.
CIContext& context();

/// The image over its extent. Absent when the extent is infinite or empty, before any drawing, or
/// when the draw was cancelled.
std::optional<CGImage> cgImage(const CIImage& image, const DrawOptions& options = {});

/// The image with its properties as the policy asks; comes before encoding.
CIImage apply(const CIImage& image, Metadata metadata);

struct FileSettings {
    EncodedFormat format = EncodedFormat::Jpeg;
    double quality = 0.9; ///< 0..1; JPEG and HEIF
    bool sixteenBit = false; ///< PNG only: TIFF always holds 16 bits, the others 8
};

/// Told the share of the picture's rows, above 0 to 1, that the encoder has taken so far; from the
/// engine's threads, one at a time.
using Progress = std::function<void(double)>;

/// Draws the image row by row straight into a file of its extent, with the properties it carries.
/// Alpha is stored only where the image may have transparent pixels; JPEG gets it over black.
/// Fails when the extent is infinite or empty, when the format cannot hold the picture, when the
/// sink refuses the bytes, and with "Cancelled." The sink then holds part of a file.
Result<void> encode(const CIImage& image, const FileSettings& settings, ByteSink& bytes,
                    const DrawOptions& options = {}, const Progress& progress = {});

/// The same into memory; absent where encode() fails.
using Bytes = std::optional<std::vector<uint8_t>>;
Bytes pngData(const CIImage& image, bool sixteenBit);
Bytes jpegData(const CIImage& image, double quality);
Bytes heifData(const CIImage& image, double quality);
Bytes tiff16Data(const CIImage& image);

} // namespace orvane::Baker
