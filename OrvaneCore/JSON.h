#pragma once

#include "JSONDocument.h"
#include "Result.h"
#include "UTF8.h"

#include <concepts>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace orvane {

/// A JSON value. Numbers are 64-bit floats, so whole numbers are exact up to 2^53. Objects are kept
/// sorted by key: equal values serialise to equal bytes.
class JSON {
public:
    using Array = std::vector<JSON>;
    using Object = std::map<std::string, JSON, std::less<>>;
    enum class Kind { Null, Bool, Number, String, Array, Object };

    /// Deeper nesting than this is refused, on reading and on writing.
    static constexpr size_t maximumDepth = JSONDocument::maximumDepth;

    JSON() = default;
    JSON(const JSON&);
    JSON(JSON&&) noexcept;
    JSON& operator=(const JSON&);
    JSON& operator=(JSON&&) noexcept;
    ~JSON();
    JSON(std::same_as<bool> auto value)
        : m_content(value)
    {
    }
    template <class Number>
    requires(std::is_arithmetic_v<Number> && !std::same_as<Number, bool>) JSON(Number value)
        : m_content(double(value))
    {
    }
    JSON(std::string value)
        : m_content(std::move(value))
    {
    }
    JSON(const char* value)
        : m_content(std::string(value))
    {
    }
    JSON(Array value)
        : m_content(std::move(value))
    {
    }
    JSON(Object value)
        : m_content(std::move(value))
    {
    }

    Kind kind() const { return Kind(m_content.index()); }
    bool isNull() const { return kind() == Kind::Null; }

    /// The content, or null when the value is of another kind.
    const bool* boolean() const { return std::get_if<bool>(&m_content); }
    const double* number() const { return std::get_if<double>(&m_content); }
    const std::string* string() const { return std::get_if<std::string>(&m_content); }
    const Array* array() const { return std::get_if<Array>(&m_content); }
    const Object* object() const { return std::get_if<Object>(&m_content); }
    Array* array() { return std::get_if<Array>(&m_content); }
    Object* object() { return std::get_if<Object>(&m_content); }

    /// The text as a tree that can be changed; refused is what JSONDocument refuses.
    static Result<JSON> parse(std::string_view text);

    /// The shortest text that reads back as this value: no white space, whole numbers without ".0",
    /// others with the fewest digits that identify them. Fails, with the path of the value, on a
    /// number that is not finite, on a string that is not UTF-8 and on nesting that parse() would
    /// refuse, so what was written can always be read.
    Result<std::string> serialized() const;

    bool operator==(const JSON&) const;

private:
    // In the order of Kind.
    std::variant<std::monostate, bool, double, std::string, Array, Object> m_content;
};

/// The place of a value inside a JSON text, as people write it: "lights[2].radius".
class JSONPath {
public:
    /// The key is borrowed and must outlive its step.
    void push(std::string_view key) { m_steps.push_back({key, 0}); }
    void push(size_t index) { m_steps.push_back({{}, index}); }
    void pop() { m_steps.pop_back(); }
    size_t depth() const { return m_steps.size(); }
    /// "lights[2].radius: expected a number"; the complaint alone at the top.
    Error error(std::string_view complaint) const;

private:
    struct Step {
        std::string_view key; ///< without data for an index
        size_t index;
    };
    std::vector<Step> m_steps;
};

} // namespace orvane
