#pragma once

#include "BakeChain.h"

#include <filesystem>
#include <string>

namespace orvane {

/// What an export of an image is called: "{stem}-edit.{ext}", where the stem is the image's name
/// without its last extension, and "{stem}-edit-{number}.{ext}" for a number from 2. It can name a
/// file whatever the image is called: "/" becomes "_", and a long stem is cut between two
/// characters so that the whole takes at most 255 bytes.
std::string exportName(const std::string& imageName, ExportFormat format, int number = 1);

/// The first of these names that nothing in the folder has. A folder that is not there has none.
std::filesystem::path freeExportTarget(const std::filesystem::path& folder,
                                       const std::string& imageName, ExportFormat format);

} // namespace orvane
