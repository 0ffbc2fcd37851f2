#include "JSONCoding.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace orvane {

struct Sample {
    bool flag = false;
    int count = 0;
    uint8_t small = 0;
    float single = 0;
    double ratio = 0;
    std::string name;
    std::vector<std::vector<double>> rows;
    std::map<std::string, int> counts;
    std::optional<std::string> note;

    bool operator==(const Sample&) const = default;
};

template <> struct JSONRecord<Sample> {
    static void fields(auto& field, auto& sample)
    {
        field("flag", sample.flag);
        field("count", sample.count);
        field("small", sample.small);
        field("single", sample.single);
        field("ratio", sample.ratio);
        field("name", sample.name);
        field("rows", sample.rows);
        field("counts", sample.counts);
        field("note", sample.note);
    }
};

namespace {

const Sample full{true, -7, 255, 0.1f, 0.25, "n", {{1, 2}, {}}, {{"a", 1}}, "why"};
const char* const fullText = R"({"count":-7,"counts":{"a":1},"flag":true,"name":"n","note":"why",)"
                             R"("ratio":0.25,"rows":[[1,2],[]],"single":0.1,"small":255})";

TEST(JSONCoding, WritesAndReadsByOneTable)
{
    EXPECT_EQ(*encoded(full), fullText);
    EXPECT_EQ(*decodedText<Sample>(fullText), full);

    Sample bare = full;
    bare.note.reset();
    JSON json = JSONCoding<Sample>::written(bare);
    EXPECT_FALSE(json.object()->contains("note"));
    EXPECT_EQ(*decoded<Sample>(json), bare);
    json.object()->emplace("note", JSON());
    json.object()->emplace("later", "a key of a newer version");
    EXPECT_EQ(*decoded<Sample>(json), bare);
}

TEST(JSONCoding, NamesThePlaceOfWhatIsWrong)
{
    const struct {
        const char* key;
        JSON value;
        const char* complaint;
    } cases[] = {
        {"flag", 1, "[0].flag: expected true or false"},
        {"count", true, "[0].count: expected a whole number"},
        {"count", 1.5, "[0].count: expected a whole number"},
        {"count", 2147483648.0, "[0].count: the number is out of range"},
        {"small", -1, "[0].small: the number is out of range"},
        {"single", 1e39, "[0].single: expected a number of single precision"},
        {"ratio", false, "[0].ratio: expected a number"},
        {"ratio", "0.5", "[0].ratio: expected a number"},
        {"name", JSON(), "[0].name: expected a text"},
        {"rows", JSON::Object{}, "[0].rows: expected a list"},
        {"rows", JSON::Array{JSON::Array{1}, JSON::Array{1, 2, "3"}},
         "[0].rows[1][2]: expected a number"},
        {"counts", JSON::Array{}, "[0].counts: expected an object"},
        {"counts", JSON::Object{{"b", 0.5}}, "[0].counts.b: expected a whole number"},
        {"note", 3, "[0].note: expected a text"},
    };
    for (const auto& [key, value, complaint] : cases) {
        JSON json = JSONCoding<std::vector<Sample>>::written({full});
        (*json.array()->front().object())[key] = value;
        const auto result = decoded<std::vector<Sample>>(json);
        ASSERT_FALSE(result) << complaint;
        EXPECT_EQ(result.error().message, complaint);
    }

    JSON json = JSONCoding<Sample>::written(full);
    json.object()->erase("rows");
    EXPECT_EQ(decoded<Sample>(json).error().message, "rows: is missing");
    EXPECT_EQ(decoded<Sample>(JSON::Array{}).error().message, "expected an object");
}

} // namespace
} // namespace orvane
