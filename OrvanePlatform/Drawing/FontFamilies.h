#pragma once

#include <string>
#include <vector>

namespace orvane {

/// The desktop's font families that text can be set in, in ascending order, each once. Takes some
/// 15 ms on a thread's first use of fonts.
std::vector<std::string> fontFamilies();

} // namespace orvane
