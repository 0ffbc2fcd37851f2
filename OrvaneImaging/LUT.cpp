#include "LUT.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace orvane {

namespace {

bool isLineBreak(char c)
{
    return c >= '\n' && c <= '\r';
}

/// Bytes of the line break at the start of the text, 0 when there is none: U+000A to U+000D,
/// U+0085, U+2028 and U+2029 in UTF-8.
size_t lineBreakLength(std::string_view text)
{
    if (isLineBreak(text[0]))
        return 1;
    if (text.starts_with("\xc2\x85"))
        return 2;
    if (text.starts_with("\xe2\x80\xa8") || text.starts_with("\xe2\x80\xa9"))
        return 3;
    return 0;
}

/// Takes the first line off the text.
std::string_view takeLine(std::string_view& text)
{
    size_t end = 0;
    size_t breakLength = 0;
    while (end < text.size() && !(breakLength = lineBreakLength(text.substr(end))))
        ++end;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + breakLength);
    return line;
}

std::string_view trimmed(std::string_view line)
{
    const size_t first = line.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return line.substr(first, line.find_last_not_of(" \t") - first + 1);
}

/// Takes the next piece off the line; pieces lie between spaces, and a tab is no space here.
std::string_view takePiece(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::string_view piece = line.substr(0, line.find(' '));
    line.remove_prefix(piece.size());
    return piece;
}

/// The whole piece as a number, with an optional sign; absent otherwise.
template <class Number> std::optional<Number> parsed(std::string_view piece)
{
    if (piece.starts_with('+') && !piece.starts_with("+-"))
        piece.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(piece.data(), piece.data() + piece.size(), value);
    if (error != std::errc() || end != piece.data() + piece.size())
        return {};
    return value;
}

bool startsWithKeyword(std::string_view line, std::string_view keyword)
{
    if (line.size() < keyword.size())
        return false;
    for (size_t i = 0; i < keyword.size(); ++i) {
        const char c = line[i] >= 'a' && line[i] <= 'z' ? char(line[i] - 'a' + 'A') : line[i];
        if (c != keyword[i])
            return false;
    }
    return true;
}

int parsedSize(std::string_view line)
{
    std::string_view last;
    while (!line.empty()) {
        if (const std::string_view piece = takePiece(line); !piece.empty())
            last = piece;
    }
    return parsed<int>(last).value_or(0);
}

/// Through a double, and where its exponents end a longer one, so that tiny values become 0 and
/// huge ones infinite.
std::optional<float> parsedFloat(std::string_view piece)
{
    if (const auto number = parsed<double>(piece))
        return float(*number);
    if (const auto number = parsed<long double>(piece))
        return float(*number);
    return {};
}

/// Appends the line's numbers if it holds exactly three. Words between them are passed over.
void readEntry(std::string_view line, std::vector<float>& rgba)
{
    float entry[4] = {0, 0, 0, 1};
    size_t count = 0;
    while (!line.empty()) {
        const auto number = parsedFloat(takePiece(line));
        if (!number)
            continue;
        if (count == 3)
            return;
        entry[count++] = *number;
    }
    if (count == 3)
        rgba.insert(rgba.end(), entry, entry + 4);
}

void skipSpaces(const char*& at, const char* end)
{
    while (at < end && *at == ' ')
        ++at;
}

/// Digits read onto `number`; how many.
int takeDigits(const char*& at, const char* end, uint64_t& number)
{
    const char* const first = at;
    for (; at < end && *at >= '0' && *at <= '9'; ++at)
        number = number * 10 + uint64_t(*at - '0');
    return int(at - first);
}

/// A decimal without an exponent, of at most 15 digits. Such a number and its power of ten are
/// exact as doubles, so their quotient is the double nearest to the text, as std::from_chars gives.
bool takeDecimal(const char*& at, const char* end, float& value)
{
    constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool negative = at < end && *at == '-';
    if (negative)
        ++at;
    uint64_t number = 0;
    const int whole = takeDigits(at, end, number);
    if (whole == 0 || whole > 15)
        return false;
    int places = 0;
    if (at < end && *at == '.') {
        ++at;
        places = takeDigits(at, end, number);
    }
    if (places > 15 - whole)
        return false;
    const double magnitude = double(number) / powers[places];
    value = float(negative ? -magnitude : magnitude);
    return true;
}

/// Takes a line of three plain decimals off the text, as nearly every line of a table is: a table
/// of 64 a side has 262144. False, with the text as it was, for any other line.
bool takePlainEntry(std::string_view& text, std::vector<float>& rgba)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    float entry[4] = {0, 0, 0, 1};
    skipSpaces(at, end);
    for (int i = 0; i < 3; ++i) {
        if (!takeDecimal(at, end, entry[i]) || (at < end && *at != ' ' && !isLineBreak(*at)))
            return false;
        skipSpaces(at, end);
    }
    if (at < end && !isLineBreak(*at))
        return false;
    rgba.insert(rgba.end(), entry, entry + 4);
    text.remove_prefix(size_t(at - text.data()) + (at < end ? 1 : 0));
    return true;
}

size_t entryCount(int dimension)
{
    return size_t(dimension) * size_t(dimension) * size_t(dimension);
}

} // namespace

std::optional<LUT> LUT::fromRGBA(int dimension, std::vector<float> rgba)
{
    // Nothing after the table could make a colour of infinities finite again.
    if (!std::ranges::all_of(rgba, [](float value) { return std::isfinite(value); }))
        return {};
    auto table = ColorTable::make(dimension, std::move(rgba));
    return table ? std::optional(LUT(std::move(*table))) : std::nullopt;
}

std::optional<LUT> LUT::fromCube(std::string_view text)
{
    int size = 0;
    std::vector<float> rgba;
    while (!text.empty()) {
        if (takePlainEntry(text, rgba))
            continue;
        const std::string_view line = trimmed(takeLine(text));
        if (line.empty() || line.starts_with('#') || startsWithKeyword(line, "TITLE")
            || startsWithKeyword(line, "DOMAIN"))
            continue;
        if (startsWithKeyword(line, "LUT_1D_SIZE"))
            return {};
        if (startsWithKeyword(line, "LUT_3D_SIZE")) {
            size = parsedSize(line);
            if (size >= smallestDimension && size <= largestDimension)
                rgba.reserve(entryCount(size) * 4);
        } else {
            readEntry(line, rgba);
        }
    }
    return fromRGBA(size, std::move(rgba));
}

std::optional<LUT> LUT::fromRGB(int dimension, std::span<const float> rgb)
{
    if (dimension < smallestDimension || dimension > largestDimension
        || rgb.size() != entryCount(dimension) * 3)
        return {};
    std::vector<float> rgba(entryCount(dimension) * 4, 1.0f);
    for (size_t i = 0; i < entryCount(dimension); ++i) {
        for (size_t channel = 0; channel < 3; ++channel)
            rgba[i * 4 + channel] = rgb[i * 3 + channel];
    }
    return fromRGBA(dimension, std::move(rgba));
}

bool LUT::operator==(const LUT& other) const
{
    return dimension() == other.dimension()
        && (m_table.rgba() == other.m_table.rgba() || rgba() == other.rgba());
}

} // namespace orvane
