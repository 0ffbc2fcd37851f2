#include "HexColor.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace orvane {

namespace {

/// Truncation, not rounding, as the stored form asks: 0.999 is 254.
unsigned byteOf(double component)
{
    const double scaled = component * 255;
    if (!(scaled > 0))
        return 0;
    return scaled < 255 ? unsigned(scaled) : 255;
}

} // namespace

CIColor colorFromHex(std::string_view text)
{
    if (text.starts_with('#'))
        text.remove_prefix(1);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.starts_with("0x") || text.starts_with("0X"))
        text.remove_prefix(2);

    uint64_t number = 0;
    const auto scanned = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    if (scanned.ec == std::errc::result_out_of_range)
        number = std::numeric_limits<uint64_t>::max();
    const auto component = [&](int shift) { return double((number >> shift) & 0xff) / 255; };
    return {component(16), component(8), component(0), 1};
}

std::string hexFromColor(const CIColor& color)
{
    std::string text = "#";
    for (const unsigned byte : {byteOf(color.red), byteOf(color.green), byteOf(color.blue)})
        (text += "0123456789abcdef"[byte >> 4]) += "0123456789abcdef"[byte & 15];
    return text;
}

} // namespace orvane
