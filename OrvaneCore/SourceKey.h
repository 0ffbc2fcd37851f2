#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// The identity of an image across launches, one text: "file:" and a path, or "photos:" and an
/// identifier of the photo library.
namespace orvane::SourceKey {

inline constexpr std::string_view filePrefix = "file:";
inline constexpr std::string_view photosPrefix = "photos:";

/// The source of a file; always UTF-8, whatever bytes the path is made of.
///
/// A path that is UTF-8 stands as it is. Any other is written "file:%" and then the path, with "%"
/// and two digits, as in "%E9", for each byte that is part of no UTF-8 character and for "%"
/// itself. No ordinary path is mistaken for this: those begin with "/". (One that begins with "%"
/// is written this way, too.)
std::string ofFile(const std::filesystem::path& path);

/// The path behind a source that ofFile() made, byte for byte; absent for every other text.
std::optional<std::filesystem::path> filePath(std::string_view source);

std::string ofPhoto(std::string_view identifier);
std::optional<std::string> photoIdentifier(std::string_view source);

/// The last component of a path as it can be shown and stored: UTF-8, with U+FFFD in the place of
/// each byte that is not.
std::string readableName(const std::filesystem::path& path);

} // namespace orvane::SourceKey
