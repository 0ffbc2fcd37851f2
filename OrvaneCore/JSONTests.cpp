#include "JSON.h"

#include <gmock/gmock.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace orvane {
namespace {

using testing::HasSubstr;

std::string nested(int depth)
{
    return std::string(size_t(depth), '[') + std::string(size_t(depth), ']');
}

TEST(JSON, RefusesBrokenTexts)
{
    const struct {
        std::string text;
        const char* complaint;
    } cases[] = {
        {"", "byte"},
        {"{\"a\": 1", "byte"},
        {"{\"a\" 1}", "byte"},
        {"{\"a\": 1,}", "byte"},
        {"[1 2]", "byte"},
        {"{} {}", "byte"},
        {"[1] // why", "byte"},
        {"NaN", "byte"},
        {"[Infinity]", "byte"},
        {"[-]", "byte"},
        {"[01]", "byte"},
        {"[.5]", "byte"},
        {"[1e400]", "too large"},
        {"[-0.001e+312]", "too large"},
        {"[1e99999999999999999999]", "too large"},
        {"[\"\\x41\"]", "unknown escape"},
        {"[\"\\u12\"]", "unknown escape"},
        {"[\"\\ud83d\\u0041\"]", "half a character"},
        {"[\"\\ude00\"]", "half a character"},
        {"[\"\\", "unknown escape"},
        {"[1e+]", "byte 5: expected a digit"},
        {"[tru]", "byte 2: expected a value"},
        {"{1:2}", "byte 2: expected a text"},
        {"['a']", "byte"},
        {"[\"a\nb\"]", "byte"},
        {"[\"\\ud800\"]", "byte"},
        {"[\"\xff\"]", "byte"},
        {"[\"\xc0\xaf\"]", "byte"},
        {"[\"\xed\xa0\x80\"]", "byte"},
        {std::string("{}\0{", 4), "byte 3"},
        {"{\"a\": 1, \"a\": 2}", "twice"},
        {nested(201), "nested more than 200"},
        // Deep enough to end a recursive reader's stack.
        {std::string(5'000'000, '['), "nested more than 200"},
    };
    for (const auto& [text, complaint] : cases) {
        const Result<JSON> json = JSON::parse(text);
        ASSERT_FALSE(json) << text.substr(0, 40);
        EXPECT_THAT(json.error().message, HasSubstr(complaint)) << text.substr(0, 40);
    }
}

TEST(JSON, ComplaintsQuoteNothingOfTheFile)
{
    // An unclosed text of a megabyte: the complaint must not carry it into an alert.
    const Result<JSON> huge = JSON::parse("\"" + std::string(1u << 20, 'x'));
    ASSERT_FALSE(huge);
    EXPECT_LT(huge.error().message.size(), 200u);
    EXPECT_TRUE(isUTF8(JSON::parse("[\"\xff\xfe").error().message));
}

TEST(JSON, WritesTheShortestTextThatReadsBack)
{
    const struct {
        JSON value;
        const char* text;
    } cases[] = {
        {JSON(), "null"},
        {true, "true"},
        {100000, "100000"},
        {-45.0, "-45"},
        {9007199254740992.0, "9007199254740992"},
        {0.1, "0.1"},
        {0.1 + 0.2, "0.30000000000000004"},
        {1e300, "1e+300"},
        {5e-324, "5e-324"},
        {1.2, "1.2"},
        {"a\"b\\c\n\t\x01 é😀", "\"a\\\"b\\\\c\\n\\u0009\\u0001 é😀\""},
        {std::string("\0\x1f", 2), "\"\\u0000\\u001f\""},
        {JSON::Array{}, "[]"},
        {JSON::Object{{"b", JSON::Object{}}, {"a", JSON::Array{1, "{", false}}},
         "{\"a\":[1,\"{\",false],\"b\":{}}"},
    };
    for (const auto& [value, text] : cases) {
        const Result<std::string> written = value.serialized();
        ASSERT_TRUE(written) << text;
        EXPECT_EQ(*written, text);
        const Result<JSON> back = JSON::parse(*written);
        ASSERT_TRUE(back) << text;
        EXPECT_EQ(*back, value) << text;
    }
    EXPECT_TRUE(JSON::parse(nested(200)));
}

TEST(JSON, ReadsWhatOthersWrite)
{
    const struct {
        const char* text;
        const char* same;
    } cases[] = {
        {" {\"u\": \"\\ud83d\\ude00\\/\", \"n\": [1.50, -0, 1E2, 1e-400]} \n",
         "{\"n\":[1.5,0,100,0],\"u\":\"😀/\"}"},
        {R"(["\u00e9\u20AC\b\f\n\r\t\"\\", "\uFFFF"])",
         "[\"é€\\u0008\\u000c\\n\\u000d\\u0009\\\"\\\\\",\"\xef\xbf\xbf\"]"},
        {R"({"b": {}, "\u0061": [ ]})", R"({"a":[],"b":{}})"},
        // Beyond a double at its small end, and only seemingly so at its large one.
        {"[0.0001e-320, -1e-99999999999999999999, 0e999, 0.001e310, 12345678901234567890]",
         "[0,0,0,1e+307,12345678901234567168]"},
    };
    for (const auto& [text, same] : cases) {
        const Result<JSON> json = JSON::parse(text);
        ASSERT_TRUE(json) << json.error().message;
        EXPECT_EQ(*json->serialized(), same);
    }
}

TEST(JSON, ReadsNumbersToTheLastBit)
{
    uint64_t seed = 1;
    for (int i = 0; i < 20000; ++i) {
        seed = seed * 6364136223846793005u + 1442695040888963407u;
        // Of up to 19 digits, the point anywhere.
        std::string text = std::to_string((seed >> 1) >> (seed % 60));
        text.insert(1 + (seed >> 8) % text.size(), ".");
        text += text.back() == '.' ? "0" : "";
        text.insert(0, i % 2 ? "-" : "");
        double value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        const Result<JSON> json = JSON::parse(text);
        ASSERT_TRUE(json) << text;
        ASSERT_EQ(*json->number(), value) << text;
    }
}

TEST(JSON, RefusesToWriteWhatCouldNotBeReadAgain)
{
    JSON deep;
    for (int i = 0; i < 201; ++i)
        deep = JSON::Array{deep};
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        JSON value;
        const char* complaint;
    } cases[] = {
        {std::nan(""), "a number that is not finite cannot be stored"},
        {JSON::Object{{"a", JSON::Array{1, JSON::Object{{"b", -infinity}}}}},
         "a[1].b: a number that is not finite"},
        {JSON::Object{{"name", "caf\xe9"}}, "name: a text that is not UTF-8"},
        {JSON::Object{{"\xe9", 1}}, "not UTF-8"},
        {deep, "nested too deep"},
    };
    for (const auto& [value, complaint] : cases) {
        const Result<std::string> written = value.serialized();
        ASSERT_FALSE(written) << complaint;
        EXPECT_THAT(written.error().message, HasSubstr(complaint));
    }
}

TEST(JSON, TellsUTF8FromItsLookalikes)
{
    for (const char* good : {"", "a", "\xc2\x80", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xef\xbf\xbf",
                             "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"})
        EXPECT_TRUE(isUTF8(good)) << good;
    for (const char* bad :
         {"\x80", "\xc1\xbf", "\xc2", "\xc2z", "\xe0\x9f\xbf", "\xe2\x82", "\xed\xa0\x80",
          "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "a\xff"})
        EXPECT_FALSE(isUTF8(bad)) << bad;
}

} // namespace
} // namespace orvane
