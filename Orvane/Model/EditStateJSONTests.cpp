#include "EditStateJSON.h"

#include <gmock/gmock.h>

#include <cmath>

namespace orvane {
namespace {

using testing::HasSubstr;

EditState fullState()
{
    EditState state;
    state.adjust = {{"exposure", 45}, {"sharpenRadius", 1.2}};
    state.curve = {{"master", {{0, 6}, {255, 250.5}}}, {"b", {}}};
    EditState::Light light;
    light.id = "l_1";
    light.type = "brush";
    light.mode = "paint";
    light.brightness = 28;
    light.warmth = -1;
    light.contrast = 2;
    light.saturation = 3;
    light.radius = 0.06;
    light.feather = 0.6;
    light.invert = true;
    light.x = 0.25;
    light.y = 0.75;
    light.angle = 90;
    light.strokes = {{{0.2, 0.3}, {0.4, 0.5}}, {}};
    state.lights = {light};
    state.healSpots = {{0.1, 0.2, 0.01}};
    state.crop = {0.05, 0.04, 0.9, 0.92};
    state.rotation = -1.5;
    state.flipH = true;
    state.flipV = false;
    state.aspectId = "3:2";
    state.lookStrength = 80;
    state.lutID = "lut_1";
    state.lutAmount = 55;
    state.canvasAspect = 0.5625;
    state.canvasFill = "color";
    state.canvasColor = "#102030";
    state.texts = {{"t_1", "Late light\n\"é\"", 0.5, 0.85, 0.06, "#ff8000", "Inter", true}};
    return state;
}

// The stored format: whoever changes this text has made every saved edit unreadable.
const char* const fullText =
    R"({"adjust":{"exposure":45,"sharpenRadius":1.2},"aspectId":"3:2","canvasAspect":0.5625,)"
    R"("canvasColor":"#102030","canvasFill":"color","crop":[[0.05,0.04],[0.9,0.92]],)"
    R"("curve":{"b":[],"master":[{"x":0,"y":6},{"x":255,"y":250.5}]},"flipH":true,"flipV":false,)"
    R"("healSpots":[{"r":0.01,"x":0.1,"y":0.2}],)"
    R"("lights":[{"angle":90,"brightness":28,"contrast":2,"feather":0.6,"id":"l_1","invert":true,)"
    R"("mode":"paint","radius":0.06,"saturation":3,"strokes":[[[0.2,0.3],[0.4,0.5]],[]],)"
    R"("type":"brush","warmth":-1,"x":0.25,"y":0.75}],"lookStrength":80,"lutAmount":55,)"
    R"("lutID":"lut_1","rotation":-1.5,"texts":[{"colorHex":"#ff8000","font":"Inter","id":"t_1",)"
    R"("shadow":true,"size":0.06,"text":"Late light\n\"é\"","x":0.5,"y":0.85}]})";

const char* const newText =
    R"({"adjust":{},"aspectId":"free","canvasAspect":0,"canvasColor":"#000000","canvasFill":"blur",)"
    R"("crop":[[0,0],[1,1]],"curve":{},"flipH":false,"flipV":false,"healSpots":[],"lights":[],)"
    R"("lookStrength":100,"lutAmount":100,"lutID":"","rotation":0,"texts":[]})";

TEST(EditStateJSON, KeepsItsStoredForm)
{
    EXPECT_EQ(*encodedEditState(fullState()), fullText);
    EXPECT_EQ(*encodedEditState(EditState()), newText);
    const Result<EditState> full = decodeEditState(fullText);
    ASSERT_TRUE(full) << full.error().message;
    EXPECT_EQ(*full, fullState());
    EXPECT_EQ(*decodeEditState(newText), EditState());
}

/// Every record in the text that has keys of its own, with the place that a complaint names.
std::vector<std::pair<JSON::Object*, std::string>> recordsOf(JSON& state)
{
    JSON::Object& root = *state.object();
    const auto first = [&](const char* key) { return root[key].array()->front().object(); };
    return {{&root, ""},
            {first("lights"), "lights[0]."},
            {first("healSpots"), "healSpots[0]."},
            {first("texts"), "texts[0]."},
            {(*root["curve"].object())["master"].array()->at(1).object(), "curve.master[1]."}};
}

TEST(EditStateJSON, FillsNoGapAndTakesNoOtherKind)
{
    const JSON whole = *JSON::parse(fullText);
    int keys = 0;
    for (size_t record = 0; record < 5; ++record) {
        JSON copy = whole;
        const JSON::Object members = *recordsOf(copy)[record].first;
        for (const auto& [key, value] : members) {
            ++keys;
            JSON broken = whole;
            const auto [object, place] = recordsOf(broken)[record];

            object->erase(key);
            const Result<EditState> missing = decoded<EditState>(broken);
            ASSERT_FALSE(missing) << place << key;
            EXPECT_EQ(missing.error().message, place + key + ": is missing");

            const JSON otherKinds[] = {JSON(), true, 1, "1", JSON::Array{}, JSON::Object{}};
            for (const JSON& other : otherKinds) {
                if (other.kind() == value.kind())
                    continue;
                (*object)[key] = other;
                const Result<EditState> wrong = decoded<EditState>(broken);
                ASSERT_FALSE(wrong) << place << key << int(other.kind());
                EXPECT_THAT(wrong.error().message, HasSubstr(place + key + ": expected"));
            }
        }
    }
    // 16 of the state, 14 of a light, 3 of a spot, 8 of a text, 2 of a curve point.
    EXPECT_EQ(keys, 43);
}

TEST(EditStateJSON, LooksInsideListsAndMaps)
{
    const struct {
        const char* key;
        const char* text;
        const char* complaint;
    } cases[] = {
        {"adjust", R"({"exposure": "45"})", "adjust.exposure: expected a number"},
        {"adjust", R"({"exposure": true})", "adjust.exposure: expected a number"},
        {"curve", R"({"r": [[0, 0]]})", "curve.r[0]: expected an object"},
        {"crop", "[0, 0, 1, 1]", "crop[0]: expected a list"},
        {"crop", "[[0, 0], [1, 1], [2, 2]]", "crop: expected two pairs of numbers"},
        {"crop", "[[0, 0], [1]]", "crop[1]: expected two numbers"},
        {"crop", "[[0, 0], [1, null]]", "crop[1][1]: expected a number"},
        {"lights", "[1]", "lights[0]: expected an object"},
    };
    for (const auto& [key, text, complaint] : cases) {
        JSON state = *JSON::parse(fullText);
        (*state.object())[key] = *JSON::parse(text);
        const Result<EditState> result = decoded<EditState>(state);
        ASSERT_FALSE(result) << complaint;
        EXPECT_EQ(result.error().message, complaint);
    }

    JSON strokes = *JSON::parse(fullText);
    JSON::Object& light = *(*strokes.object())["lights"].array()->front().object();
    light["strokes"] = *JSON::parse("[[[0.1, 0.2], [0.3, 0.4, 0.5]]]");
    EXPECT_EQ(decoded<EditState>(strokes).error().message,
              "lights[0].strokes[0][1]: expected two numbers");

    // A newer version's additions are passed over, in the state and in what it holds.
    JSON newer = *JSON::parse(fullText);
    for (const auto& [object, place] : recordsOf(newer))
        object->emplace("zebra", JSON::Array{});
    EXPECT_EQ(*decoded<EditState>(newer), fullState());
}

TEST(EditStateJSON, RefusesToWriteWhatIsNoNumberOrText)
{
    EditState state = fullState();
    state.lights[0].strokes[0][1].y = std::nan("");
    EXPECT_THAT(encodedEditState(state).error().message,
                HasSubstr("lights[0].strokes[0][1][1]: a number that is not"));
    state = fullState();
    state.crop.size.width = INFINITY;
    EXPECT_THAT(encodedEditState(state).error().message,
                HasSubstr("crop[1][0]: a number that is not"));
    state = fullState();
    state.texts[0].font = "\xff";
    EXPECT_THAT(encodedEditState(state).error().message,
                HasSubstr("texts[0].font: a text that is not UTF-8"));
}

} // namespace
} // namespace orvane
