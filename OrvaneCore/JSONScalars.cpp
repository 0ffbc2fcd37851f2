#include "JSONScalars.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <system_error>

namespace orvane {

namespace {

void appendUTF8(std::string& text, unsigned code)
{
    const auto tail = [&](int shift) { text += char(0x80 | ((code >> shift) & 0x3f)); };
    if (code < 0x80) {
        text += char(code);
    } else if (code < 0x800) {
        text += char(0xc0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        text += char(0xe0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        text += char(0xf0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// Whether the digits of a number that no double can hold name one that is too large; the others
/// are too small and stand for 0. From the place of the first digit that is not 0.
bool isTooLarge(std::string_view digits)
{
    const size_t e = digits.find_first_of("eE");
    const std::string_view mantissa = digits.substr(0, e);
    long exponent = 0;
    if (e != digits.npos) {
        const size_t sign = digits[e + 1] == '+' ? 1 : 0;
        const auto end =
            std::from_chars(&digits[e + 1 + sign], digits.data() + digits.size(), exponent);
        if (end.ec == std::errc::result_out_of_range)
            exponent = digits[e + 1] == '-' ? -1'000'000'000 : 1'000'000'000;
    }
    // The places between that digit and the point, moved by the exponent.
    const size_t point = std::min(mantissa.find('.'), mantissa.size());
    const size_t leading = mantissa.find_first_of("123456789");
    return leading != mantissa.npos && long(point) - long(leading) + exponent > 0;
}

/// The value of plain digits, which most numbers are: a whole number below 2^53 divided by a power
/// of ten that is a double itself is rounded once, so it is the double nearest to the digits.
std::optional<double> plainNumber(std::string_view digits)
{
    constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    // So short that `whole` cannot overflow.
    if (digits.size() > 17)
        return std::nullopt;
    const bool isNegative = digits[0] == '-';
    uint64_t whole = 0;
    size_t decimals = 0;
    bool isAfterPoint = false;
    for (const char c : digits.substr(isNegative ? 1 : 0)) {
        if (c == '.') {
            isAfterPoint = true;
        } else if (isDigit(c)) {
            whole = whole * 10 + uint64_t(c - '0');
            decimals += isAfterPoint ? 1 : 0;
        } else {
            return std::nullopt;
        }
    }
    if (whole >= uint64_t(1) << 53 || decimals >= std::size(powers))
        return std::nullopt;
    const double number = double(whole) / powers[decimals];
    return isNegative ? -number : number;
}

} // namespace

unsigned hexValue(const char* digits)
{
    unsigned value = 0;
    std::from_chars(digits, digits + 4, value, 16);
    return value;
}

std::string unescaped(std::string_view text)
{
    constexpr std::string_view names = "\"\\/bfnrt";
    constexpr std::string_view characters = "\"\\/\b\f\n\r\t";
    std::string plain;
    plain.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            plain += text[at];
            continue;
        }
        if (text[++at] != 'u') {
            plain += characters[names.find(text[at])];
            continue;
        }
        // A high surrogate holds the upper ten bits of what lies past U+FFFF, and the low one whose
        // escape must follow the other ten.
        unsigned code = hexValue(&text[at + 1]);
        at += 4;
        if (code >= 0xd800 && code < 0xdc00) {
            code = 0x10000 + ((code - 0xd800) << 10) + (hexValue(&text[at + 3]) - 0xdc00);
            at += 6;
        }
        appendUTF8(plain, code);
    }
    return plain;
}

std::optional<double> numberValue(std::string_view digits)
{
    if (const std::optional<double> plain = plainNumber(digits))
        return plain;
    double number = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (end.ec != std::errc::result_out_of_range)
        return number;
    // The library says the same of what is too large and of what is too small.
    if (isTooLarge(digits))
        return std::nullopt;
    return digits[0] == '-' ? -0.0 : 0.0;
}

} // namespace orvane
