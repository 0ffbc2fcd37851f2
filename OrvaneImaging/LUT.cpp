#include "LUT.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace orvane {

namespace {

/// Bytes of the line break at the start of the text, 0 when there is none: U+000A to U+000D,
/// U+0085, U+2028 and U+2029 in UTF-8.
size_t lineBreakLength(std::string_view text)
{
    if (text[0] >= '\n' && text[0] <= '\r')
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

/// Appends the line's numbers if it holds exactly three. Words between them are passed over; "inf"
/// and "nan" are words, because nothing after the table could make such a colour finite again.
void readEntry(std::string_view line, std::vector<float>& rgb)
{
    float entry[3];
    size_t count = 0;
    while (!line.empty()) {
        // Through a double, so that tiny values become 0 and not an error.
        const auto number = parsed<double>(takePiece(line));
        if (!number || !std::isfinite(float(*number)))
            continue;
        if (count == 3)
            return;
        entry[count++] = float(*number);
    }
    if (count == 3)
        rgb.insert(rgb.end(), entry, entry + 3);
}

size_t entryCount(int dimension)
{
    return size_t(dimension) * size_t(dimension) * size_t(dimension);
}

} // namespace

LUT::LUT(int dimension, std::vector<float> rgba)
    : m_dimension(dimension)
    , m_rgba(std::make_shared<const std::vector<float>>(std::move(rgba)))
{
}

std::optional<LUT> LUT::fromCube(std::string_view text)
{
    int size = 0;
    std::vector<float> rgb;
    while (!text.empty()) {
        const std::string_view line = trimmed(takeLine(text));
        if (line.empty() || line.starts_with('#') || startsWithKeyword(line, "TITLE")
            || startsWithKeyword(line, "DOMAIN"))
            continue;
        if (startsWithKeyword(line, "LUT_1D_SIZE"))
            return {};
        if (startsWithKeyword(line, "LUT_3D_SIZE"))
            size = parsedSize(line);
        else
            readEntry(line, rgb);
    }
    return fromRGB(size, rgb);
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
    return LUT(dimension, std::move(rgba));
}

bool LUT::operator==(const LUT& other) const
{
    return m_dimension == other.m_dimension && (m_rgba == other.m_rgba || *m_rgba == *other.m_rgba);
}

} // namespace orvane
