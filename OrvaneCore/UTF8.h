#pragma once

#include <cstddef>
#include <string_view>

namespace orvane {

/// The bytes, 1 to 4, of the well-formed character that stands at `at`, which lies inside the text;
/// 0 when none does. Well-formed: no overlong forms, no surrogates, nothing past U+10FFFF.
size_t utf8Length(std::string_view text, size_t at);

/// Whether the bytes are well-formed UTF-8 throughout.
bool isUTF8(std::string_view text);

} // namespace orvane
