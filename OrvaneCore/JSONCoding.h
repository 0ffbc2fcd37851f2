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

/// The value that the JSON holds; the error names the place, as in "lights[2].radius: expected a
/// number".
template <class T> Result<T> decoded(const JSON& json)
{
    JSONReader reader;
    T value{};
    if (!JSONCoding<T>::read(reader, json, value))
        return reader.error();
    return value;
}

template <class T> Result<T> decodedText(std::string_view text)
{
    const Result<JSON> json = JSON::parse(text);
    if (!json)
        return json.error();
    return decoded<T>(*json);
}

/// The text of a value; fails where JSON::serialized() does.
template <class T> Result<std::string> encoded(const T& value)
{
    return JSONCoding<T>::written(value).serialized();
}

template <> struct JSONCoding<bool> {
    static bool read(JSONReader& reader, const JSON& json, bool& value)
    {
        if (!json.boolean())
            return reader.expected("true or false");
        value = *json.boolean();
        return true;
    }
    static JSON written(bool value) { return value; }
};

template <> struct JSONCoding<std::string> {
    static bool read(JSONReader& reader, const JSON& json, std::string& value)
    {
        if (!json.string())
            return reader.expected("a text");
        value = *json.string();
        return true;
    }
    static JSON written(const std::string& value) { return value; }
};

template <> struct JSONCoding<double> {
    static bool read(JSONReader& reader, const JSON& json, double& value)
    {
        if (!json.number())
            return reader.expected("a number");
        value = *json.number();
        return true;
    }
    static JSON written(double value) { return value; }
};

template <> struct JSONCoding<float> {
    static bool read(JSONReader& reader, const JSON& json, float& value)
    {
        if (!json.number() || std::abs(*json.number()) > double(std::numeric_limits<float>::max()))
            return reader.expected("a number of single precision");
        value = float(*json.number());
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
    static bool read(JSONReader& reader, const JSON& json, T& value)
    {
        const double* number = json.number();
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
    static bool read(JSONReader& reader, const JSON& json, std::vector<T>& values)
    {
        const JSON::Array* array = json.array();
        if (!array)
            return reader.expected("a list");
        values.clear();
        values.reserve(array->size());
        for (size_t i = 0; i < array->size(); ++i) {
            T value{};
            if (!reader.at(i, [&] { return JSONCoding<T>::read(reader, (*array)[i], value); }))
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
    static bool read(JSONReader& reader, const JSON& json, std::map<std::string, T>& values)
    {
        const JSON::Object* object = json.object();
        if (!object)
            return reader.expected("an object");
        values.clear();
        for (const auto& entry : *object) {
            if (!reader.at(std::string_view(entry.first), [&] {
                    return JSONCoding<T>::read(reader, entry.second, values[entry.first]);
                }))
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
    JSONFieldReader(JSONReader& reader, const JSON::Object& object)
        : m_reader(reader)
        , m_object(object)
    {
    }

    template <class T> void operator()(std::string_view key, T& value)
    {
        if (!m_reader.ok())
            return;
        if (const JSON* member = m_reader.required(m_object, key))
            m_reader.at(key, [&] { return JSONCoding<T>::read(m_reader, *member, value); });
    }

    template <class T> void operator()(std::string_view key, std::optional<T>& value)
    {
        const auto member = m_object.find(key);
        value.reset();
        if (member != m_object.end() && !member->second.isNull())
            (*this)(key, value.emplace());
    }

private:
    JSONReader& m_reader;
    const JSON::Object& m_object;
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
    static bool read(JSONReader& reader, const JSON& json, T& record)
    {
        if (!json.object())
            return reader.expected("an object");
        JSONFieldReader field(reader, *json.object());
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
