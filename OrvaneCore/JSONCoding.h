#pragma once

#include "JSONReader.h"

#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Strict coding of values to JSON and back. A record states its stored form as one table of fields,
// which serves both ways:
//
//     template <>
//     struct JSONRecord<HealSpot> {
//         static void fields(auto& field, auto& spot)
//         {
//             field("x", spot.x);
//             field("y", spot.y);
//             field("r", spot.r);
//         }
//     };
//
// Every field is a required read of exactly its kind; keys that the table does not name are
// ignored. A std::optional field may be absent or null, and is not written when it is empty.

namespace orvane {

/// The table of fields of a stored record; specialised beside each record that has one.
template <class T> struct JSONRecord;

template <class T>
concept HasJSONFields = requires
{
    sizeof(JSONRecord<T>);
};

/// How a type is read from and written to JSON: `read` fills the value, or leaves a complaint with
/// the reader and answers false.
template <class T> struct JSONCoding;

/// The value that the text holds; the error names the place, as in "lights[2].radius: expected a
/// number", or the byte where the text is no JSON.
template <class T> Result<T> decodedText(std::string_view text)
{
    JSONDocument document;
    const Result<JSONView> root = document.parse(text);
    if (!root)
        return root.error();
    JSONReader reader;
    T value{};
    if (!JSONCoding<T>::read(reader, *root, value))
        return reader.error();
    return value;
}

template <class T> Result<T> decoded(const JSON& json)
{
    const Result<std::string> text = json.serialized();
    if (!text)
        return text.error();
    return decodedText<T>(*text);
}

/// The text of a value; fails where JSON::serialized() does.
template <class T> Result<std::string> encoded(const T& value)
{
    return JSONCoding<T>::written(value).serialized();
}

template <> struct JSONCoding<bool> {
    static bool read(JSONReader& reader, const JSONView& json, bool& value)
    {
        const std::optional<bool> boolean = json.boolean();
        if (!boolean)
            return reader.expected("true or false");
        value = *boolean;
        return true;
    }
    static JSON written(bool value) { return value; }
};

template <> struct JSONCoding<std::string> {
    static bool read(JSONReader& reader, const JSONView& json, std::string& value)
    {
        std::optional<std::string> text = json.string();
        if (!text)
            return reader.expected("a text");
        value = std::move(*text);
        return true;
    }
    static JSON written(const std::string& value) { return value; }
};

template <> struct JSONCoding<double> {
    static bool read(JSONReader& reader, const JSONView& json, double& value)
    {
        const std::optional<double> number = json.number();
        if (!number)
            return reader.expected("a number");
        value = *number;
        return true;
    }
    static JSON written(double value) { return value; }
};

template <> struct JSONCoding<float> {
    static bool read(JSONReader& reader, const JSONView& json, float& value)
    {
        const std::optional<double> number = json.number();
        if (!number || std::abs(*number) > double(std::numeric_limits<float>::max()))
            return reader.expected("a number of single precision");
        value = float(*number);
        return true;
    }
    /// The double that the float's own shortest digits name: 0.1f is stored as 0.1, not as
    /// 0.10000000149011612, and reads back as the same float.
    static JSON written(float value)
    {
        char digits[32];
        double same = double(value);
        if (std::isfinite(value)) {
            const auto end = std::to_chars(digits, digits + sizeof digits, value);
            std::from_chars(digits, end.ptr, same);
        }
        return same;
    }
};

/// Whole numbers up to 2^53; 3.0 is one, 3.5 and true are not.
template <std::integral T> struct JSONCoding<T> {
    static bool read(JSONReader& reader, const JSONView& json, T& value)
    {
        const std::optional<double> number = json.number();
        if (!number || *number != std::trunc(*number))
            return reader.expected("a whole number");
        // Below 2^53 the comparison is exact, whatever T is.
        if (std::abs(*number) > 0x1p53 || *number < double(std::numeric_limits<T>::min())
            || *number > double(std::numeric_limits<T>::max()))
            return reader.fail("the number is out of range");
        value = T(*number);
        return true;
    }
    static JSON written(T value) { return value; }
};

template <class T> struct JSONCoding<std::vector<T>> {
    static bool read(JSONReader& reader, const JSONView& json, std::vector<T>& values)
    {
        if (!json.isArray())
            return reader.expected("a list");
        values.clear();
        values.reserve(json.count());
        JSONView element = json.first();
        for (size_t i = 0; i < json.count(); ++i, element = element.next()) {
            T value{};
            if (!reader.at(i, [&] { return JSONCoding<T>::read(reader, element, value); }))
                return false;
            values.push_back(std::move(value));
        }
        return true;
    }
    static JSON written(const std::vector<T>& values)
    {
        JSON::Array array;
        array.reserve(values.size());
        for (const T& value : values)
            array.push_back(JSONCoding<T>::written(value));
        return array;
    }
};

template <class T> struct JSONCoding<std::map<std::string, T>> {
    static bool read(JSONReader& reader, const JSONView& json, std::map<std::string, T>& values)
    {
        if (!json.isObject())
            return reader.expected("an object");
        values.clear();
        JSONView key = json.first();
        for (size_t i = 0; i < json.count(); ++i, key = key.next().next()) {
            const auto entry = values.try_emplace(values.end(), *key.string());
            if (!reader.at(std::string_view(entry->first),
                           [&] { return JSONCoding<T>::read(reader, key.next(), entry->second); }))
                return false;
        }
        return true;
    }
    static JSON written(const std::map<std::string, T>& values)
    {
        JSON::Object object;
        for (const auto& [key, value] : values)
            object.emplace(key, JSONCoding<T>::written(value));
        return object;
    }
};

/// Reads the fields of a record, in the table's order, until one fails.
class JSONFieldReader {
public:
    JSONFieldReader(JSONReader& reader, const JSONView& object)
        : m_reader(reader)
        , m_object(object)
    {
    }

    template <class T> void operator()(std::string_view key, T& value)
    {
        if (!m_reader.ok())
            return;
        if (const std::optional<JSONView> member = m_reader.required(m_object, key))
            m_reader.at(key, [&] { return JSONCoding<T>::read(m_reader, *member, value); });
    }

    template <class T> void operator()(std::string_view key, std::optional<T>& value)
    {
        const std::optional<JSONView> member = m_object.member(key);
        value.reset();
        if (member && !member->isNull())
            (*this)(key, value.emplace());
    }

private:
    JSONReader& m_reader;
    JSONView m_object;
};

/// Collects the fields of a record into an object.
class JSONFieldWriter {
public:
    template <class T> void operator()(std::string_view key, const T& value)
    {
        object.emplace(key, JSONCoding<T>::written(value));
    }

    template <class T> void operator()(std::string_view key, const std::optional<T>& value)
    {
        if (value)
            (*this)(key, *value);
    }

    JSON::Object object;
};

template <HasJSONFields T> struct JSONCoding<T> {
    static bool read(JSONReader& reader, const JSONView& json, T& record)
    {
        if (!json.isObject())
            return reader.expected("an object");
        JSONFieldReader field(reader, json);
        JSONRecord<T>::fields(field, record);
        return reader.ok();
    }
    static JSON written(const T& record)
    {
        JSONFieldWriter field;
        JSONRecord<T>::fields(field, record);
        return std::move(field.object);
    }
};

} // namespace orvane
