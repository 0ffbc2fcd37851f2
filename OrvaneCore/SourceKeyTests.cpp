#include "SourceKey.h"

#include "UTF8.h"

#include <gtest/gtest.h>

namespace orvane::SourceKey {
namespace {

TEST(SourceKey, GivesEveryPathAKeyThatLeadsBackToItsBytes)
{
    const struct {
        std::string path;
        const char* source;
    } cases[] = {
        {"/p/a.jpg", "file:/p/a.jpg"},
        {"/p/Über 100 %/é😀.jpg", "file:/p/Über 100 %/é😀.jpg"},
        {"/p/a%E9\n\\.jpg", "file:/p/a%E9\n\\.jpg"},
        {"a.jpg", "file:a.jpg"},
        {"", "file:"},
        {"%41", "file:%%2541"},
        {"/p/caf\xe9.jpg", "file:%/p/caf%E9.jpg"},
        {"/é/100%\xff\xed\xa0\x80", "file:%/é/100%25%FF%ED%A0%80"},
        {"/\xf0\x9f\x98", "file:%/%F0%9F%98"},
    };
    for (const auto& [path, source] : cases) {
        EXPECT_EQ(ofFile(path), source);
        EXPECT_TRUE(isUTF8(ofFile(path))) << source;
        ASSERT_TRUE(filePath(source)) << source;
        EXPECT_EQ(filePath(source)->native(), path) << source;
    }
    for (int byte = 1; byte < 256; ++byte) {
        const std::string path = std::string("/") + char(byte) + "\xff";
        EXPECT_EQ(filePath(ofFile(path))->native(), path) << byte;
    }
}

TEST(SourceKey, TakesNoOtherText)
{
    // Two keys for one file would be two edits: only the one that ofFile() writes is taken.
    for (const std::string& source :
         {std::string("/p/a.jpg"), std::string("photos:1"), std::string(""), std::string("file"),
          std::string("FILE:/a"), std::string("file:%/a"), std::string("file:%/%41"),
          std::string("file:%/%e9"), std::string("file:%/%E"), std::string("file:%/%G0"),
          std::string("file:%/a%00%FF"), std::string("file:/a\0b", 9), std::string("file:/\xff")})
        EXPECT_FALSE(filePath(source)) << source;
}

TEST(SourceKey, NamesPhotosAndFilesToRead)
{
    EXPECT_EQ(ofPhoto("A/L0/001"), "photos:A/L0/001");
    EXPECT_EQ(photoIdentifier("photos:A/L0/001"), "A/L0/001");
    EXPECT_FALSE(photoIdentifier("file:photos:1"));
    EXPECT_EQ(readableName("/p/é.jpg"), "é.jpg");
    EXPECT_EQ(readableName("/p/caf\xe9\xa0.jpg"), "caf\xef\xbf\xbd\xef\xbf\xbd.jpg");
}

} // namespace
} // namespace orvane::SourceKey
