#pragma once

#include "JSONReader.h"
#include "Result.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A JSON object of many members, kept as its text and the place of each member's value. A value is
/// decoded when it is asked for, and one that nobody changes is written as it was read; what a
/// newer version put into it stays.
class JSONMapText {
public:
    /// Decodes one value to see whether it can be; complains to the reader when not.
    using Check = bool (*)(JSONReader&, const JSONView&);

    /// Of no members.
    JSONMapText() = default;

    /// Every member is checked, or one broken deep inside would be found when it is too late to
    /// recover the store.
    static Result<JSONMapText> parsed(std::string text, Check check);

    const std::string& text() const { return m_text; }
    size_t size() const { return m_values.size(); }

    /// The text of a value, until this object changes.
    std::optional<std::string_view> find(const std::string& key) const;

    /// The same object with these members, by key, set to texts of values; sorted by key. Fails on
    /// a key that is not UTF-8.
    Result<JSONMapText> updated(const std::map<std::string, std::string>& values) const;

private:
    struct Span {
        size_t start = 0;
        size_t length = 0;
    };
    Result<void> append(const std::string& key, std::string_view value);

    std::string m_text = "{}";
    std::map<std::string, Span> m_values;
};

} // namespace orvane
