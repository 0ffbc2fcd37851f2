#pragma once

#include "Desktop.h"

#include <filesystem>
#include <optional>
#include <vector>

// The system's pasteboard. Main thread, with a QGuiApplication.

namespace orvane::Pasteboard {

/// A reference to the file, as "text/uri-list" and in the form that file managers paste copies of.
void copyFile(const std::filesystem::path& file);
/// An encoded picture, as "image/png" or "image/tiff".
void copyPicture(const PastedPicture& picture);

/// The picture that lies there: PNG before TIFF.
std::optional<PastedPicture> picture();
/// The files that lie there, in their order; what is on no disk of this machine is left out.
std::vector<std::filesystem::path> files();

} // namespace orvane::Pasteboard
