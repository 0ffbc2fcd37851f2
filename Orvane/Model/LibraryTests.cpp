// The stores of what outlives a session beside the edits: collections, saved looks, LUTs.

#include "CollectionStore.h"
#include "EditStateJSON.h"
#include "LutStore.h"
#include "SavedLook.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

namespace orvane {
namespace {

using testing::HasSubstr;

class LibraryTest : public TemporaryFolder {
protected:
    /// A text in which one part is another.
    static std::string with(std::string text, const std::string& part, const std::string& other)
    {
        EXPECT_NE(text.find(part), text.npos) << part;
        return text.replace(text.find(part), part.size(), other);
    }
};

std::string collectionText()
{
    return R"([{"edits":[)" + *encodedEditState({}) + R"(],"id":"A-1","name":"Été",)"
        + R"("sources":["file:/a","file:/a"],"updatedAt":757382400.25}])";
}

const char* const lookText =
    R"([{"adjust":{"exposure":12.5},"created":1700000000.5,)"
    R"("curve":{"r":[{"x":0,"y":1},{"x":255,"y":250}]},"id":"look_1","name":"Warm"}])";

const char* const lutText = R"({"dimension":2,"id":"lut_1","name":"Film",)"
                            R"("rgb":[0,0,0,1.5,0,0,0,1,0,1,1,0,0,0,1,1,0,1,0,1,1,1,1,-0.1]})";

TEST_F(LibraryTest, CollectionsKeepTheirStoredForm)
{
    CollectionStore store(folder / "collections.json");
    EXPECT_TRUE(store.load().empty());
    const Collection collection{"A-1", "Été", {"file:/a", "file:/a"}, {EditState()}, 757382400.25};
    ASSERT_TRUE(store.save({collection}));
    EXPECT_EQ(content("collections.json"), collectionText());
    EXPECT_EQ(store.load(), std::vector{collection});

    Collection newer = collection;
    newer.updatedAt += 0.5;
    ASSERT_TRUE(store.save({collection, newer, collection}));
    EXPECT_EQ(store.load(), (std::vector{newer, collection, collection}));
}

TEST_F(LibraryTest, LooksKeepTheirStoredForm)
{
    LooksStore store(folder / "saved-looks.json");
    EXPECT_TRUE(store.load().empty());
    const SavedLook look{
        "look_1", "Warm", {{"exposure", 12.5}}, {{"r", {{0, 1}, {255, 250}}}}, 1700000000.5};
    ASSERT_TRUE(store.save({look}));
    EXPECT_EQ(content("saved-looks.json"), lookText);
    EXPECT_EQ(store.load(), std::vector{look});

    std::vector<SavedLook> many(101, look);
    many[99].id = "look_99";
    many[100].id = "look_100";
    ASSERT_TRUE(store.save(many));
    EXPECT_EQ(store.load().size(), 100u);
    EXPECT_EQ(store.load().back().id, "look_99");
    const auto rest = store.remove("look_1");
    ASSERT_TRUE(rest);
    EXPECT_EQ(*rest, std::vector{many[99]});
    EXPECT_EQ(store.load(), *rest);
}

TEST_F(LibraryTest, ABrokenListIsShownEmptyAndNeverReplacedWithoutAWord)
{
    CollectionStore collections(folder / "collections.json");
    LooksStore looks(folder / "saved-looks.json");
    const struct {
        const char* name;
        std::string text;
        std::function<bool()> isEmpty;
        std::function<Result<void>()> save;
    } cases[] = {
        {"collections.json", with(collectionText(), "\"rotation\":0,", ""),
         [&] { return collections.load().empty(); }, [&] { return collections.save({}); }},
        {"collections.json", with(collectionText(), "757382400.25", "\"2025-01-01\""),
         [&] { return collections.load().empty(); }, [&] { return collections.save({}); }},
        {"saved-looks.json", with(lookText, "\"y\":1}", "\"y\":null}"),
         [&] { return looks.load().empty(); }, [&] { return looks.save({}); }},
        {"saved-looks.json", with(lookText, "\"created\":1700000000.5,", ""),
         [&] { return looks.load().empty(); },
         [&] {
             const auto rest = looks.remove("look_1");
             return rest ? Result<void>() : rest.error();
         }},
    };
    for (const auto& [name, text, isEmpty, save] : cases) {
        put(name, text);
        EXPECT_TRUE(isEmpty()) << text;
        const Result<void> saved = save();
        ASSERT_FALSE(saved) << text;
        EXPECT_THAT(saved.error().message, HasSubstr("is on disk but couldn't be read"));
        EXPECT_EQ(content(std::string(name) + ".corrupt"), text);
        EXPECT_TRUE(save()) << text;
        std::filesystem::remove(folder / name);
        std::filesystem::remove(folder / (std::string(name) + ".bak"));
    }
}

TEST_F(LibraryTest, LutsComeBackAsTheyWere)
{
    const LutStore store(folder / "support" / "luts");
    EXPECT_FALSE(store.load("lut_1"));
    const float rgb[] = {0, 0, 0, 1.5f, 0, 0, 0, 1, 0, 1, 1, 0,
                         0, 0, 1, 1,    0, 1, 0, 1, 1, 1, 1, -0.1f};
    const LUT table = *LUT::fromRGB(2, rgb);
    ASSERT_TRUE(store.save(LutStore::Entry::of("lut_1", "Film", table)));
    EXPECT_EQ(content("support/luts/lut_1.json"), lutText);
    const auto loaded = store.load("lut_1");
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->name, "Film");
    EXPECT_EQ(loaded->table, table);
    EXPECT_EQ(store.table("lut_1"), table);

    ASSERT_TRUE(store.save(LutStore::Entry::of("a/../b", "Film", table)));
    EXPECT_TRUE(std::filesystem::exists(folder / "support/luts/a_.._b.json"));
    EXPECT_TRUE(store.load("a/../b"));
    EXPECT_FALSE(store.load(std::string("lut_1.json\0", 11)));
}

TEST_F(LibraryTest, ALutThatCannotBeReadIsMissing)
{
    const LutStore store(folder);
    const struct {
        const char* part;
        const char* other;
    } cases[] = {
        {"\"dimension\":2", "\"dimension\":3"},
        {"\"dimension\":2", "\"dimension\":2.5"},
        {"\"dimension\":2", "\"dimension\":1e9"},
        {"1.5,0", "1.5"},
        {"1.5", "1e39"},
        {"1.5", "null"},
        {"\"name\":\"Film\",", ""},
        {"]}", "]"},
    };
    for (const auto& [part, other] : cases) {
        put("lut_1.json", with(lutText, part, other));
        EXPECT_FALSE(store.load("lut_1")) << other;
    }
    // A file that is put back brings the colour back.
    put("lut_1.json", lutText);
    EXPECT_TRUE(store.load("lut_1"));
    std::filesystem::remove(folder / "lut_1.json");
    EXPECT_FALSE(store.load("lut_1"));
    std::filesystem::create_directory(folder / "lut_1.json");
    EXPECT_FALSE(store.load("lut_1"));
}

} // namespace
} // namespace orvane
