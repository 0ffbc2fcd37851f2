#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// “name”
std::string inQuotes(std::string_view name);

/// Without white space and newlines at either end, those of any script.
std::string trimmed(const std::string& text);

/// Whether two names are the same without regard to case.
bool isSameName(const std::string& a, const std::string& b);

/// The first characters as a reader counts them: a letter keeps its accents, a flag is one.
std::string firstCharacters(const std::string& text, int count);

/// The prefix and eight random hexadecimal digits, as in "img_0a1b2c3d".
std::string newID(std::string_view prefix);
/// A new UUID in its long form.
std::string newUUID();

} // namespace orvane
