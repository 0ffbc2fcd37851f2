#include "JSONMapStore.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cmath>

#include <fcntl.h>
#include <unistd.h>

namespace orvane {
namespace {

using testing::HasSubstr;

class JSONMapStoreTest : public TemporaryFolder {
protected:
    /// As another program does that rewrites a file without replacing it.
    void overwrite(const std::string& name, std::string_view text) const
    {
        const int file = ::open((folder / name).c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        ASSERT_EQ(::write(file, text.data(), text.size()), ssize_t(text.size()));
        ::close(file);
    }

    JSONMapStore<int> store{folder / "edits.json"};
};

TEST_F(JSONMapStoreTest, SetsEntriesBesideOthers)
{
    EXPECT_EQ(store.find("b"), std::nullopt);
    ASSERT_TRUE(store.set({{"b", 1}, {"d\"é", 2}}));
    ASSERT_TRUE(store.set({{"a", 3}, {"c", 4}, {"d\"é", 5}, {"e", 6}}));
    EXPECT_EQ(content("edits.json"), R"({"a":3,"b":1,"c":4,"d\"é":5,"e":6})");
    EXPECT_EQ(content("edits.json.bak"), R"({"b":1,"d\"é":2})");
    EXPECT_EQ(store.find("d\"é"), 5);
    EXPECT_EQ(JSONMapStore<int>(store.url()).find("b"), 1);
}

TEST_F(JSONMapStoreTest, LeavesOtherEntriesAsTheyWereRead)
{
    // Another program's spacing and order, a newer version's numbers.
    put("edits.json", "{ \"z\" : 1e0 ,\n\"\\u0061\":2\t}");
    EXPECT_EQ(store.find("a"), 2);
    ASSERT_TRUE(store.set({{"m", 3}}));
    EXPECT_EQ(content("edits.json"), R"({"a":2,"m":3,"z":1e0})");
    EXPECT_EQ(store.find("z"), 1);
}

TEST_F(JSONMapStoreTest, SeesWhatOthersChange)
{
    ASSERT_TRUE(store.set({{"a", 1}}));
    EXPECT_EQ(store.find("a"), 1);
    // At once, to the same size, in place: within one tick of the file system's clock.
    for (int i = 2; i < 10; ++i) {
        overwrite("edits.json", "{\"a\":" + std::to_string(i) + "}");
        EXPECT_EQ(store.find("a"), i);
    }
    put("edits.json", R"({"a":20})");
    EXPECT_EQ(store.find("a"), 20);
    JSONMapStore<int> other(store.url());
    ASSERT_TRUE(other.set({{"b", 21}}));
    ASSERT_TRUE(store.set({{"a", 22}}));
    EXPECT_EQ(other.find("b"), 21);
    EXPECT_EQ(other.find("a"), 22);
    std::filesystem::remove(store.url());
    EXPECT_EQ(store.find("a"), std::nullopt);
}

TEST_F(JSONMapStoreTest, GoesByTheRulesOfADamagedStore)
{
    ASSERT_TRUE(store.set({{"a", 1}}));
    ASSERT_TRUE(store.set({{"b", 2}}));
    overwrite("edits.json", R"({"a":1,"b":"2"})");
    EXPECT_EQ(store.find("a"), 1);
    EXPECT_EQ(store.find("b"), std::nullopt);
    ASSERT_TRUE(store.set({{"c", 3}}));
    EXPECT_EQ(content("edits.json"), R"({"a":1,"c":3})");
    EXPECT_EQ(content("edits.json.corrupt"), R"({"a":1,"b":"2"})");
    EXPECT_EQ(content("edits.json.bak"), R"({"a":1})");

    overwrite("edits.json", "{");
    overwrite("edits.json.bak", "{");
    EXPECT_EQ(store.find("a"), std::nullopt);
    EXPECT_THAT(store.set({{"c", 4}}).error().message, HasSubstr("couldn't be read"));
    ASSERT_TRUE(store.set({{"c", 4}}));
    EXPECT_EQ(content("edits.json"), R"({"c":4})");
}

TEST_F(JSONMapStoreTest, TouchesNothingForWhatCannotBeStored)
{
    put("edits.json", R"({"a":1})");
    JSONMapStore<double> numbers(store.url());
    EXPECT_FALSE(numbers.set({{"b", std::nan("")}}));
    EXPECT_FALSE(numbers.set({{"\xe9", 2}}));
    EXPECT_EQ(names(), "edits.json");
    EXPECT_EQ(numbers.find("a"), 1);
}

} // namespace
} // namespace orvane
