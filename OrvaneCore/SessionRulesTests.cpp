#include "ModalSession.h"
#include "SessionRules.h"

#include <gtest/gtest.h>

namespace orvane::SessionRules {
namespace {

using Items = std::vector<Item<int>>;

const Item<int> clean{"a", 1, 1};
const Item<int> dirty{"b", 2, 1};
const Item<int> unsaved{"c", 0, std::nullopt}; // nothing was ever saved: dirty
const Item<int> pasted{std::nullopt, 2, 1};
const Item<int> pastedClean{std::nullopt, 1, 1};

TEST(SessionRules, CountUnsavedWork)
{
    const struct {
        Items items;
        DirtyCount count;
    } cases[] = {
        {{}, {0, 0}},        {{clean, pastedClean}, {0, 0}}, {{clean, dirty}, {1, 1}},
        {{unsaved}, {1, 1}}, {{dirty, pasted}, {2, 1}},
    };
    for (const auto& [items, count] : cases) {
        EXPECT_EQ(dirtyCount(items), count);
        EXPECT_EQ(isDirty(items), count.total > 0);
        EXPECT_EQ(hasUnsaveableDirtyWork(items), count.total > count.saveable);
    }
}

TEST(SessionRules, DecideOnRemoval)
{
    using Kind = Removal::Kind;
    const struct {
        Item<int> item;
        Removal loose;
        Removal inCollection;
    } cases[] = {
        {clean, {Kind::Remove, ""}, {Kind::Remove, ""}},
        {pastedClean, {Kind::Remove, ""}, {Kind::Remove, ""}},
        {pasted, {Kind::ConfirmDiscard, ""}, {Kind::ConfirmDiscard, ""}},
        {dirty, {Kind::SaveThenRemove, "b"}, {Kind::Remove, ""}},
        {unsaved, {Kind::SaveThenRemove, "c"}, {Kind::Remove, ""}},
    };
    for (const auto& [item, loose, inCollection] : cases) {
        EXPECT_EQ(removal(item, false), loose);
        EXPECT_EQ(removal(item, true), inCollection);
    }
}

TEST(SessionRules, CompareASetWithItsCollection)
{
    const struct {
        Items items;
        std::vector<std::string> sources;
        std::vector<int> edits;
        bool isDirty;
    } cases[] = {
        {{}, {}, {}, false},
        {{}, {"a"}, {1}, true},
        {{clean, dirty}, {"a", "b"}, {1, 2}, false},
        {{clean, dirty}, {"b", "a"}, {2, 1}, true},
        {{clean, dirty}, {"a", "b"}, {1, 1}, true},
        {{clean, dirty}, {"a"}, {1}, true},
        {{clean, dirty}, {"a", "b"}, {1}, true},
        {{clean}, {"a", "b"}, {1, 2}, true},
        {{clean, pastedClean}, {"a", ""}, {1, 1}, true},
    };
    for (const auto& [items, sources, edits, isDirty] : cases)
        EXPECT_EQ(collectionIsDirty(items, sources, edits), isDirty);
}

TEST(SessionRules, FindVersionsThatWouldBeLost)
{
    const auto item = [](const char* source, int state) { return Item<int>{source, state, 0}; };
    const struct {
        Items items;
        std::vector<std::string> sources;
    } cases[] = {
        {{}, {}},
        {{item("b", 1), item("a", 2)}, {}},
        {{item("a", 1), item("a", 1)}, {}},
        {{pasted, pastedClean}, {}},
        {{item("b", 1), item("a", 1), item("b", 2), item("a", 1), item("a", 3), item("b", 4)},
         {"a", "b"}},
        {{item("a", 1), item("a", 2), item("a", 1)}, {"a"}},
    };
    for (const auto& [items, sources] : cases)
        EXPECT_EQ(conflictingVariantSources(items), sources);
}

TEST(SessionRules, TellVariantsLutsAndModalTools)
{
    EXPECT_TRUE(needsCollectionForVariant("a", false));
    EXPECT_FALSE(needsCollectionForVariant("a", true));
    EXPECT_FALSE(needsCollectionForVariant(std::nullopt, false));
    EXPECT_EQ(lutState("", true), LutState::None);
    EXPECT_EQ(lutState("", false), LutState::None);
    EXPECT_EQ(lutState("lut_1", true), LutState::Loaded);
    EXPECT_EQ(lutState("lut_1", false), LutState::Missing);

    std::optional<ModalSession<int>> session;
    session = ModalSession(3);
    session = ModalSession(4);
    EXPECT_FALSE(session->commits(4));
    EXPECT_TRUE(session->commits(3));
    EXPECT_EQ(session->cancelled(), 4);
}

} // namespace
} // namespace orvane::SessionRules
