#pragma once

#include "CIImage.h"
#include "EditState.h"
#include "Result.h"

#include <string>

/// What the programs of this room read. The errors name the file.
namespace orvane {

/// At most 64 MB.
Result<std::string> textFile(const std::string& path);
Result<EditState> readEdit(const std::string& path);
/// Decoded and turned upright.
Result<CIImage> readPicture(const std::string& path);

} // namespace orvane
