#pragma once

#include <cstdint>
#include <vector>

namespace orvane {

/// The ICC profile that every written file carries: sRGB, version 2.1 (which all readers know),
/// about 2.5 KB, and the same bytes in every run. Made once.
const std::vector<uint8_t>& srgbProfile();

} // namespace orvane
