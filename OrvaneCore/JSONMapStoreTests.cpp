#include "JSONMapStore.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

class JSONMapStoreTest : public TemporaryFolder { };

TEST_F(JSONMapStoreTest, SetsEntriesBesideOthers)
{
    JSONMapStore<int> store(folder / "edits.json");
    EXPECT_EQ(store.find("a"), std::nullopt);
    ASSERT_TRUE(store.set({{"a", 1}, {"b", 2}}));
    ASSERT_TRUE(store.set({{"b", 3}}));
    EXPECT_EQ(store.find("a"), 1);
    EXPECT_EQ(store.find("b"), 3);
    EXPECT_EQ(content("edits.json"), R"({"a":1,"b":3})");
    EXPECT_EQ(content("edits.json.bak"), R"({"a":1,"b":2})");
}

} // namespace
} // namespace orvane
