#pragma once

#include "Desktop.h"

#include <filesystem>

class QMainWindow;

namespace orvane {

/// The ways to hand a finished file on, as a menu at the window's right edge. What fails is told
/// through the desktop.
void popUpShareMenu(QMainWindow& window, Desktop& desktop, const std::filesystem::path& file);

} // namespace orvane
