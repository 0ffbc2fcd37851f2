#include "JSON.h"

namespace orvane {

namespace {

/// No deeper than JSONDocument::maximumDepth.
JSON tree(const JSONView& value)
{
    if (value.isArray()) {
        JSON::Array array;
        array.reserve(value.count());
        JSONView element = value.first();
        for (size_t i = 0; i < value.count(); ++i, element = element.next())
            array.push_back(tree(element));
        return array;
    }
    if (value.isObject()) {
        JSON::Object object;
        JSONView key = value.first();
        for (size_t i = 0; i < value.count(); ++i, key = key.next().next())
            object.emplace(*key.string(), tree(key.next()));
        return object;
    }
    if (const std::optional<std::string> text = value.string())
        return *text;
    if (const std::optional<double> number = value.number())
        return *number;
    if (const std::optional<bool> boolean = value.boolean())
        return *boolean;
    return JSON();
}

} // namespace

Result<JSON> JSON::parse(std::string_view text)
{
    JSONDocument document;
    const Result<JSONView> root = document.parse(text);
    if (!root)
        return root.error();
    return tree(*root);
}

} // namespace orvane
