#pragma once

#include "Result.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace orvane {

/// The picture of an exported file as the pasteboard takes it, an 8-bit PNG: the file's own bytes
/// when it is one already. Errors are one sentence. From any thread; 20 megapixels of JPEG take
/// more than a second, so not on the main one.
Result<std::vector<uint8_t>> pngOfFile(const std::filesystem::path& file);

} // namespace orvane
