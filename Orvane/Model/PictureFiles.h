#pragma once

#include "Result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace orvane {

/// Larger than any picture that the decoders hold in memory; a video under a picture's name is not.
inline constexpr size_t largestPictureFile = size_t(4) << 30;

/// The path that a file's identity is made of: absolute, without "." and doubled slashes, so that
/// one file has one identity however it was named. Links stay as they are; only where ".." stands
/// in the path is the folder's real path taken, because ".." leads out of a link's target.
std::filesystem::path identifyingPath(const std::filesystem::path& given);

/// The content of a file that begins as a picture does. What does not, or is larger than
/// largestPictureFile, is told by its first bytes and its size, and not read. From any thread.
Result<std::vector<uint8_t>> readPictureFile(const std::filesystem::path& file);

} // namespace orvane
