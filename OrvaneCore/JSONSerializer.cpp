#include "JSON.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

namespace orvane {

namespace {

/// Appends values to a text, and keeps the path for complaints.
class Serializer {
public:
    bool write(const JSON& value)
    {
        switch (value.kind()) {
        case JSON::Kind::Null:
            m_text += "null";
            return true;
        case JSON::Kind::Bool:
            m_text += *value.boolean() ? "true" : "false";
            return true;
        case JSON::Kind::Number:
            return write(*value.number());
        case JSON::Kind::String:
            return write(*value.string());
        case JSON::Kind::Array:
            return write(*value.array());
        case JSON::Kind::Object:
            return write(*value.object());
        }
        return false;
    }

    Result<std::string> result()
    {
        if (m_error)
            return *m_error;
        return std::move(m_text);
    }

private:
    bool fail(std::string_view complaint)
    {
        m_error = m_path.error(complaint);
        return false;
    }

    bool write(double number)
    {
        // JSON has no word for these; written in any way they would make the store unreadable.
        if (!std::isfinite(number))
            return fail("a number that is not finite cannot be stored");
        char digits[32];
        // Whole numbers up to 2^53 in full: the shortest form of 100000 would be "1e+05".
        const bool whole = number == std::trunc(number) && std::abs(number) <= 0x1p53;
        const std::to_chars_result end = whole
            ? std::to_chars(digits, digits + sizeof digits, int64_t(number))
            : std::to_chars(digits, digits + sizeof digits, number);
        m_text.append(digits, end.ptr);
        return true;
    }

    bool write(const std::string& text)
    {
        if (!isUTF8(text))
            return fail("a text that is not UTF-8 cannot be stored");
        m_text += '"';
        // Only what must be escaped is: the rest stays legible, and as short as it came.
        for (const char c : text) {
            if (c == '"' || c == '\\')
                (m_text += '\\') += c;
            else if (c == '\n')
                m_text += "\\n";
            else if (static_cast<unsigned char>(c) < 0x20)
                ((m_text += "\\u00") += "01"[c >> 4]) += "0123456789abcdef"[c & 15];
            else
                m_text += c;
        }
        m_text += '"';
        return true;
    }

    // What is deeper than the reader takes must not be written. The path is left as it stands on a
    // failure, for the complaint has been made.
    bool write(const JSON::Array& array)
    {
        if (m_path.depth() == JSON::maximumDepth)
            return fail("nested too deep to be stored");
        m_text += '[';
        for (size_t i = 0; i < array.size(); ++i) {
            if (i > 0)
                m_text += ',';
            m_path.push(i);
            if (!write(array[i]))
                return false;
            m_path.pop();
        }
        m_text += ']';
        return true;
    }

    bool write(const JSON::Object& object)
    {
        if (m_path.depth() == JSON::maximumDepth)
            return fail("nested too deep to be stored");
        m_text += '{';
        for (const auto& [key, value] : object) {
            // No value ends with this brace, so it stands last only before the first member.
            if (m_text.back() != '{')
                m_text += ',';
            m_path.push(key);
            if (!write(key))
                return false;
            m_text += ':';
            if (!write(value))
                return false;
            m_path.pop();
        }
        m_text += '}';
        return true;
    }

    std::string m_text;
    JSONPath m_path;
    std::optional<Error> m_error;
};

} // namespace

Result<std::string> JSON::serialized() const
{
    Serializer serializer;
    serializer.write(*this);
    return serializer.result();
}

} // namespace orvane
