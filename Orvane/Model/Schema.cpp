#include "Schema.h"

#include "AtomicFile.h"
#include "JSONCoding.h"
#include "PackagedResources.h"

namespace orvane {

template <> struct JSONRecord<LookItem> {
    static void fields(auto& field, auto& item)
    {
        field("id", item.id);
        field("name", item.name);
    }
};

template <> struct JSONRecord<Schema::File::Key> {
    static void fields(auto& field, auto& key)
    {
        field("key", key.key);
        field("label", key.label);
        field("min", key.min);
        field("max", key.max);
        field("def", key.def);
    }
};

template <> struct JSONRecord<Schema::File::Group> {
    static void fields(auto& field, auto& group)
    {
        field("label", group.label);
        field("keys", group.keys);
    }
};

template <> struct JSONRecord<Schema::File> {
    static void fields(auto& field, auto& file)
    {
        field("schema", file.schema);
        field("aspects", file.aspects);
        field("defaults", file.defaults);
    }
};

namespace Schema {

namespace {

constexpr size_t largestFile = size_t(4) << 20;

File packaged()
{
    const auto bytes = readFile(packagedResources() / "schema.json", largestFile);
    if (!bytes)
        return {};
    const Result<File> file = decoded(std::string(bytes->begin(), bytes->end()));
    return file ? *file : File();
}

} // namespace

Result<File> decoded(std::string_view text)
{
    return decodedText<File>(text);
}

const File& file()
{
    static const File file = packaged();
    return file;
}

const std::vector<File::Group>& groups()
{
    return file().schema;
}

const std::vector<LookItem>& aspects()
{
    return file().aspects;
}

} // namespace Schema

} // namespace orvane
