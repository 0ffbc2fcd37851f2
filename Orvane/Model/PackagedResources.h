#pragma once

#include <filesystem>

namespace orvane {

/// The folder of the packaged resources, "Orvane_Orvane.bundle": the one beside the executable, or
/// the source tree's when there is none, as in a program that is run from elsewhere than it was
/// built.
std::filesystem::path packagedResources();

} // namespace orvane
