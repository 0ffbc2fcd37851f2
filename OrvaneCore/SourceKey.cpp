#include "SourceKey.h"

#include "UTF8.h"

namespace orvane::SourceKey {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view hexDigits = "0123456789ABCDEF";

std::string escaped(std::string_view path)
{
    std::string text = "%";
    for (size_t at = 0; at < path.size();) {
        const size_t length = path[at] == '%' ? 0 : utf8Length(path, at);
        if (length > 0) {
            text += path.substr(at, length);
            at += length;
        } else {
            const auto byte = static_cast<unsigned char>(path[at++]);
            ((text += '%') += hexDigits[byte >> 4]) += hexDigits[byte & 15];
        }
    }
    return text;
}

/// Of what follows the leading "%".
std::optional<std::string> unescaped(std::string_view text)
{
    std::string path;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            path += text[at];
            continue;
        }
        const size_t high = at + 1 < text.size() ? hexDigits.find(text[at + 1]) : hexDigits.npos;
        const size_t low = at + 2 < text.size() ? hexDigits.find(text[at + 2]) : hexDigits.npos;
        if (high == hexDigits.npos || low == hexDigits.npos)
            return std::nullopt;
        path += char(high * 16 + low);
        at += 2;
    }
    return path;
}

} // namespace

std::string ofFile(const fs::path& path)
{
    const std::string& bytes = path.native();
    const bool plain = isUTF8(bytes) && !bytes.starts_with('%');
    return std::string(filePrefix) + (plain ? bytes : escaped(bytes));
}

std::optional<fs::path> filePath(std::string_view source)
{
    if (!source.starts_with(filePrefix))
        return std::nullopt;
    const std::string_view rest = source.substr(filePrefix.size());
    const std::optional<std::string> path =
        rest.starts_with('%') ? unescaped(rest.substr(1)) : std::string(rest);
    // A zero byte would end the path early for the system and name another file.
    if (!path || path->find('\0') != path->npos || ofFile(*path) != source)
        return std::nullopt;
    return fs::path(*path);
}

std::string ofPhoto(std::string_view identifier)
{
    return std::string(photosPrefix) += identifier;
}

std::optional<std::string> photoIdentifier(std::string_view source)
{
    if (!source.starts_with(photosPrefix))
        return std::nullopt;
    return std::string(source.substr(photosPrefix.size()));
}

std::string readableName(const fs::path& path)
{
    const std::string bytes = path.filename().native();
    std::string name;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = utf8Length(bytes, at);
        if (length > 0)
            name.append(bytes, at, length);
        else
            name += "\xef\xbf\xbd";
        at += length > 0 ? length : 1;
    }
    return name;
}

} // namespace orvane::SourceKey
