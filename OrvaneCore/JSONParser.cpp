#include "JSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <optional>

namespace orvane {

namespace {

/// Builds a JSON value out of the parser's events. The parser keeps its own stack on the heap, so
/// deep nesting costs memory only; the limit protects the recursive code that walks values later.
class Builder {
public:
    using number_integer_t = nlohmann::json::number_integer_t;
    using number_unsigned_t = nlohmann::json::number_unsigned_t;
    using number_float_t = nlohmann::json::number_float_t;
    using string_t = nlohmann::json::string_t;
    using binary_t = nlohmann::json::binary_t;

    bool null() { return add(JSON()); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(number_integer_t value) { return add(value); }
    bool number_unsigned(number_unsigned_t value) { return add(value); }
    bool number_float(number_float_t value, const string_t& text)
    {
        return add(number(text, value));
    }
    bool string(string_t& value) { return add(std::move(value)); }
    bool binary(binary_t&) { return fail("binary data has no place here"); }

    bool start_object(size_t) { return open(JSON::Object()); }
    bool key(string_t& value)
    {
        if (m_open.back().value.object()->contains(value))
            return fail("the key \"" + value + "\" stands twice in one object");
        m_open.back().key = std::move(value);
        return true;
    }
    bool end_object() { return close(); }
    bool start_array(size_t) { return open(JSON::Array()); }
    bool end_array() { return close(); }

    bool parse_error(size_t position, const std::string&, const nlohmann::json::exception& error)
    {
        // The parser's text opens with its own name and the position, and goes on to quote what it
        // read last, which may be broken bytes or the whole file.
        std::string_view text = error.what();
        text.remove_prefix(std::min(text.find("] ") + 2, text.size()));
        if (const size_t colon = text.find(": "); colon < text.find(" - "))
            text.remove_prefix(colon + 2);
        text = text.substr(0, std::min<size_t>(text.find("; last read"), 120));
        return fail("not valid JSON at byte " + std::to_string(position) + ": "
                    + std::string(text));
    }

    Result<JSON> result()
    {
        if (m_error)
            return Error{*m_error};
        return std::move(m_root);
    }
    bool fail(std::string message)
    {
        m_error = std::move(message);
        return false;
    }

private:
    struct Open {
        JSON value;
        std::string key; ///< of the member that comes next, in an object
    };

    /// The value of the digits. Some versions of the parser hand them over with the decimal mark
    /// of the process's locale in the place of the point.
    static double number(std::string text, double fallback)
    {
        for (char& c : text) {
            const bool ofNumber =
                (c >= '0' && c <= '9') || c == '-' || c == '+' || c == 'e' || c == 'E';
            if (!ofNumber)
                c = '.';
        }
        double value = fallback;
        // Underflow is reported as out of range and leaves the parser's own value, which is right.
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    }

    bool open(JSON value)
    {
        if (m_open.size() == JSON::maximumDepth)
            return fail("nested more than " + std::to_string(JSON::maximumDepth) + " levels deep");
        m_open.push_back({std::move(value), {}});
        return true;
    }
    bool close()
    {
        JSON value = std::move(m_open.back().value);
        m_open.pop_back();
        return add(std::move(value));
    }
    bool add(JSON value)
    {
        if (m_open.empty())
            m_root = std::move(value);
        else if (JSON::Array* array = m_open.back().value.array())
            array->push_back(std::move(value));
        else
            m_open.back().value.object()->emplace(std::move(m_open.back().key), std::move(value));
        return true;
    }

    JSON m_root;
    std::vector<Open> m_open;
    std::optional<std::string> m_error;
};

} // namespace

Result<JSON> JSON::parse(std::string_view text)
{
    // The parser takes a zero byte for the end of its input and would never see what follows.
    if (text.find('\0') != text.npos)
        return Error{"not valid JSON: it holds a zero byte"};
    Builder builder;
    try {
        nlohmann::json::sax_parse(text.begin(), text.end(), &builder);
    } catch (const std::exception& error) {
        builder.fail(std::string("not readable as JSON: ") + error.what());
    }
    return builder.result();
}

} // namespace orvane
