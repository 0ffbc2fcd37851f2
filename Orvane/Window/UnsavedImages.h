#pragma once

#include <set>
#include <string>

namespace orvane {

class AppModel;

/// The ids of the images whose edits are not stored as they are now: in the open collection, or
/// without one by themselves.
std::set<std::string> unsavedImages(const AppModel& model);

} // namespace orvane
