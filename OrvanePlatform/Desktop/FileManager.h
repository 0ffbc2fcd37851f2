#pragma once

#include "Result.h"

#include <filesystem>
#include <string>

// The other programs of the desktop that a file can be handed to. None of these waits for them.

namespace orvane {

/// Shows a file or folder, selected, in the file manager; where none listens on the bus, its folder
/// is opened instead (a folder itself). Without an event loop that runs, only the first is tried.
void showInFileManager(const std::filesystem::path& path);

/// Opens a file or folder with the program that the desktop has for its kind, and an address in the
/// browser. Both fail when there is no "xdg-open".
Result<void> openFile(const std::filesystem::path& path);
Result<void> openAddress(const std::string& address);

/// A new message in the mail program with the file attached. Fails when there is no "xdg-email".
Result<void> emailFile(const std::filesystem::path& file);

} // namespace orvane
