#pragma once

#include <optional>
#include <string>
#include <string_view>

// What the texts and numbers inside a JSON text stand for, once their form was found right.

namespace orvane {

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Of four hexadecimal digits.
unsigned hexValue(const char* digits);

/// The UTF-8 of a string, given without its quotes.
std::string unescaped(std::string_view text);

/// The double nearest to a number, 0 for one too small to have another; absent for one too large.
std::optional<double> numberValue(std::string_view digits);

} // namespace orvane
