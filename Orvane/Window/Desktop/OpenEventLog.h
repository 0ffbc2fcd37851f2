#pragma once

#include <filesystem>
#include <set>

namespace orvane {

/// For tests from outside: writes the files that were accepted to be opened a moment ago, sorted, a
/// line each, to the file that the environment names in "KQ4_UI_TEST_OPEN_EVENT_LOG". The file is
/// replaced whole; without the variable, or when it cannot be written, nothing happens.
void logOpenEvents(const std::set<std::filesystem::path>& accepted);

} // namespace orvane
