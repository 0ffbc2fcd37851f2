#pragma once

#include <filesystem>
#include <string>
#include <vector>

class QMimeData;

namespace orvane {

/// What a drag from the photo sidebar carries: identifiers of the photo library, one a line.
inline constexpr const char* photosMimeType = "application/x-orvane-photos";

/// The files of this machine that are dragged, in their order.
std::vector<std::filesystem::path> draggedFiles(const QMimeData& data);
/// The photos of the photo library that are dragged, by their identifiers.
std::vector<std::string> draggedPhotos(const QMimeData& data);

} // namespace orvane
