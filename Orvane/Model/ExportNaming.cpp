#include "ExportNaming.h"

#include "UTF8.h"

#include <algorithm>

namespace orvane {

namespace {

/// Of all file systems in common use; in bytes.
constexpr size_t longestName = 255;

/// The name without its last extension. A dot in the first place begins none.
std::string stemOf(const std::string& name)
{
    const size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

/// At most so many bytes of the text, no character cut in two.
std::string cut(const std::string& text, size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    size_t end = 0;
    while (true) {
        // What is no character stands alone, as a byte.
        const size_t length = std::max<size_t>(utf8Length(text, end), 1);
        if (end + length > bytes)
            return text.substr(0, end);
        end += length;
    }
}

} // namespace

std::string exportName(const std::string& imageName, ExportFormat format, int number)
{
    std::string suffix = "-edit";
    if (number > 1)
        suffix.append("-").append(std::to_string(number));
    suffix.append(".").append(info(format).ext);
    std::string stem = cut(stemOf(imageName), longestName - suffix.size());
    for (char& byte : stem) {
        if (byte == '/' || byte == '\0')
            byte = '_';
    }
    return stem + suffix;
}

std::filesystem::path freeExportTarget(const std::filesystem::path& folder,
                                       const std::string& imageName, ExportFormat format)
{
    std::error_code none;
    for (int number = 1;; ++number) {
        std::filesystem::path candidate = folder / exportName(imageName, format, number);
        // A link that points nowhere holds its name as well.
        const auto status = std::filesystem::symlink_status(candidate, none);
        if (!std::filesystem::exists(status))
            return candidate;
    }
}

} // namespace orvane
