#pragma once

#include "CIImage.h"

#include <string>
#include <string_view>

namespace orvane {

/// The colour of a text such as "#ff8000" or "ff8000": one leading '#' is dropped, the rest is
/// scanned as a hexadecimal number (white space and "0x" may lead) up to the first character that
/// is no digit of it, and the low 24 bits are red, green and blue. So "#abc" is (0, 0x0a, 0xbc), no
/// shorthand; a number beyond 64 bits is white; a text without digits is black. Alpha is 1.
CIColor colorFromHex(std::string_view text);

/// "#rrggbb" in lower case: each component times 255, truncated, held to 0..255. Alpha is dropped.
std::string hexFromColor(const CIColor& color);

} // namespace orvane
