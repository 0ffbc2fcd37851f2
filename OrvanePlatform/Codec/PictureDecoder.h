#pragma once

#include "Bitmap.h"
#include "CIImage.h"
#include "Result.h"

#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace orvane {

/// What a file really is, by its first bytes.
enum class PictureFormat { Unknown, Jpeg, Png, Tiff, Heif, Avif, WebP, Raw };

PictureFormat detectPictureFormat(std::span<const uint8_t> bytes);

/// A decoded picture, as it lies in the file: not yet turned by its orientation.
struct DecodedPicture {
    /// Alpha, where there is one, is straight. Half and float samples are finite.
    std::shared_ptr<const Bitmap> bitmap;
    ImageProperties properties; ///< its orientation already says 1
    int orientation = 1; ///< 1..8; still to be applied to the pixels
    PictureFormat format = PictureFormat::Unknown;
    /// What the user should know ("shown from its embedded preview"); often empty.
    std::string note;
};

/// Decodes a whole picture at its own depth. Errors are one sentence that says what is wrong with
/// the file and does not repeat its name. Never throws, whatever the bytes are.
Result<DecodedPicture> decodePicture(std::span<const uint8_t> bytes);

/// Reads and decodes; the file is opened for reading only.
Result<DecodedPicture> decodePictureFile(const std::filesystem::path& path);

/// The picture as a recipe, orientation applied, extent from (0, 0).
CIImage imageFromPicture(const DecodedPicture& picture);

} // namespace orvane
