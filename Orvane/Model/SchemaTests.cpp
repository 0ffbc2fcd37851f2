#include "Schema.h"

#include "Adjustments.h"
#include "EditState.h"
#include "JSON.h"
#include "PackagedResources.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace orvane {
namespace {

TEST(Schema, DecodesItsFormatAndNothingLess)
{
    const char* const text =
        R"({"schema": [{"label": "Light", "keys": [)"
        R"({"key": "exposure", "label": "Exposure", "min": -100, "max": 100, "def": 0.5}]}],)"
        R"("aspects": [{"id": "3:2", "name": "Classic"}], "defaults": {"contrast": 3}, "more": 1})";
    const Schema::File expected{{{"Light", {{"exposure", "Exposure", -100, 100, 0.5}}}},
                                {{"3:2", "Classic"}},
                                {{"contrast", 3}}};
    const Result<Schema::File> file = Schema::decoded(text);
    ASSERT_TRUE(file) << file.error().message;
    EXPECT_EQ(*file, expected);
    EXPECT_EQ(*Schema::decoded(R"({"schema": [], "aspects": [], "defaults": {}})"), Schema::File());

    const std::pair<const char*, const char*> breaks[] = {
        {R"("schema")", "schema: is missing"},
        {R"("aspects")", "aspects: is missing"},
        {R"("defaults")", "defaults: is missing"},
        {R"("keys")", "schema[0].keys: is missing"},
        {R"("min")", "schema[0].keys[0].min: is missing"},
        {R"("max")", "schema[0].keys[0].max: is missing"},
        {R"("def")", "schema[0].keys[0].def: is missing"},
        {R"("id")", "aspects[0].id: is missing"},
        {R"("name")", "aspects[0].name: is missing"},
    };
    for (const auto& [key, complaint] : breaks) {
        std::string broken = text;
        broken.replace(broken.find(key) + 1, 2, "??");
        EXPECT_EQ(Schema::decoded(broken).error().message, complaint);
    }
}

// What the render, the inspector and the crop tool rely on in the shipped catalogue.
TEST(Schema, ShipsACatalogueThatFitsTheProgram)
{
    ASSERT_TRUE(std::filesystem::exists(packagedResources() / "schema.json"));
    ASSERT_FALSE(Schema::groups().empty());

    const std::set<std::string> placed = {"Geometry", "Light",      "Color",   "Color Grading",
                                          "Detail",   "Tilt-Shift", "Effects", "Duotone"};
    std::set<std::string> labels;
    std::set<std::string> keys;
    std::set<std::string> names;
    Adjustments::AdjustMap atRest;
    for (const auto& group : Schema::groups()) {
        EXPECT_TRUE(placed.contains(group.label) || group.label.starts_with("Color Mixer"))
            << group.label;
        EXPECT_TRUE(labels.insert(group.label).second) << group.label;
        for (const auto& key : group.keys) {
            EXPECT_TRUE(keys.insert(key.key).second) << key.key;
            EXPECT_TRUE(names.insert(key.label).second) << key.label;
            EXPECT_LT(key.min, key.max) << key.key;
            EXPECT_EQ(key.def, std::clamp(key.def, key.min, key.max)) << key.key;
            atRest[key.key] = key.def;
            // The render knows the key when a value of it is no longer the neutral edit.
            EXPECT_FALSE(Adjustments({{key.key, key.max}}).isIdentity()) << key.key;
        }
    }
    for (const std::string& label : placed)
        EXPECT_TRUE(labels.contains(label)) << label;
    // The levels have a view of their own; everything else that the render reads has a slider.
    EXPECT_EQ(keys.size(), 59u);
    for (const std::string_view key : EditState::levelsKeys)
        EXPECT_FALSE(keys.contains(std::string(key)));
    EXPECT_TRUE(Adjustments(atRest).isIdentity());

    for (const auto& [key, value] : Schema::file().defaults) {
        ASSERT_TRUE(atRest.contains(key)) << key;
        EXPECT_EQ(value, 0) << key;
        EXPECT_EQ(value, atRest[key]) << key;
    }
    // A grade that starts from the defaults differs from a new edit in no way that shows.
    EditState graded;
    graded.adjust = Schema::file().defaults;
    const EditState fresh;
    EXPECT_EQ(graded.describe(&fresh), "Edit");

    ASSERT_FALSE(Schema::aspects().empty());
    EXPECT_EQ(Schema::aspects().front().id, EditState().aspectId);
}

} // namespace
} // namespace orvane
