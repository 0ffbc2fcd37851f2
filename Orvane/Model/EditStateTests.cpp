#include "EditState.h"

#include <gtest/gtest.h>

#include <functional>

namespace orvane {
namespace {

TEST(EditState, NamesWhatChanged)
{
    using Change = std::function<void(EditState&)>;
    const auto adjusted = [](const char* key, double value) -> Change {
        return [=](EditState& state) { state.adjust[key] = value; };
    };
    const auto text = [](EditState& state) {
        state.texts.push_back({"t", "", 0, 0, 0, "", "", false});
    };
    const struct {
        const char* name;
        Change before;
        Change after; ///< on top of `before`
    } cases[] = {
        {"Crop", [](EditState&) {},
         [](EditState& s) {
             s.crop.size.width = 0.5;
             s.rotation = 3;
             s.adjust["exposure"] = 50;
         }},
        {"Straighten", [](EditState&) {}, [](EditState& s) { s.rotation = 3, s.flipV = true; }},
        {"Flip", [](EditState&) {}, [](EditState& s) { s.flipH = true, s.curve["r"]; }},
        {"Flip", [](EditState&) {}, [](EditState& s) { s.flipV = true; }},
        {"Curves", [](EditState&) {}, [](EditState& s) { s.curve["r"], s.lights.emplace_back(); }},
        {"Relight", [](EditState&) {},
         [](EditState& s) { s.lights.emplace_back(), s.healSpots.emplace_back(); }},
        {"Retouch", [](EditState&) {},
         [](EditState& s) { s.healSpots.emplace_back(), s.adjust["levelsGamma"] = 90; }},
        {"Levels", [](EditState&) {},
         [](EditState& s) { s.adjust["levelsGamma"] = 90, s.lutID = "a"; }},
        // Present in one only counts, even at the value that an absent key stands at.
        {"Levels", [](EditState&) {}, adjusted("levelsWhiteOut", 255)},
        {"Levels", adjusted("levelsBlackIn", 0), [](EditState& s) { s.adjust.clear(); }},
        {"LUT", [](EditState&) {}, [](EditState& s) { s.lutID = "a", s.canvasAspect = 1; }},
        {"LUT", [](EditState& s) { s.lutID = "a"; }, [](EditState& s) { s.lutID = "b"; }},
        {"LUT removed", [](EditState& s) { s.lutID = "a"; }, [](EditState& s) { s.lutID.clear(); }},
        {"Canvas", [](EditState&) {},
         [](EditState& s) { s.canvasAspect = 1, s.canvasFill = "edge"; }},
        {"Canvas off", [](EditState& s) { s.canvasAspect = 1; },
         [](EditState& s) { s.canvasAspect = 0; }},
        {"Canvas fill", [](EditState&) {}, [=](EditState& s) { s.canvasFill = "edge", text(s); }},
        {"Canvas fill", [](EditState&) {}, [](EditState& s) { s.canvasColor = "#ffffff"; }},
        {"Text added", [](EditState&) {}, [=](EditState& s) { text(s), s.adjust["exposure"] = 5; }},
        {"Text", text, [](EditState& s) { s.texts[0].x = 1; }},
        {"Text", text, [](EditState& s) { s.texts.clear(); }},
        {"Exposure", adjusted("exposure", 10), adjusted("exposure", -10)},
        {"Contrast", adjusted("exposure", 50),
         [](EditState& s) { s.adjust["contrast"] = -30, s.adjust["exposure"] = 60; }},
        // Equal moves: the first key of the alphabet.
        {"Clarity", [](EditState&) {},
         [](EditState& s) { s.adjust["contrast"] = 20, s.adjust["clarity"] = -20; }},
        {"Duotone Hue", [](EditState&) {}, adjusted("duotoneHue", 5)},
        {"Some new slider", [](EditState&) {}, adjusted("someNewSlider", 0.0011)},
        {"Edit", adjusted("exposure", 10), adjusted("exposure", 10.0005)},
        {"Edit", adjusted("exposure", 10), [](EditState& s) { s.adjust.clear(); }},
        {"Edit", [](EditState&) {},
         [](EditState& s) { s.lookStrength = 5, s.lutAmount = 5, s.aspectId = "1:1"; }},
        {"Edit", [](EditState&) {}, [](EditState&) {}},
    };
    int row = 0;
    for (const auto& [name, before, after] : cases) {
        EditState previous;
        before(previous);
        EditState state = previous;
        after(state);
        EXPECT_EQ(state.describe(&previous), name) << "row " << row;
        ++row;
    }
    EXPECT_EQ(EditState().describe(nullptr), "Original");
}

TEST(EditState, LabelsSliders)
{
    EXPECT_EQ(EditState::label("hueRed"), "Red Hue");
    EXPECT_EQ(EditState::label("levelsBlackIn"), "Levels black in");
    EXPECT_EQ(EditState::label("aURLOfX"), "A urlof x");
    EXPECT_EQ(EditState::label("x2Y"), "X2y");
    EXPECT_EQ(EditState::label(""), "");
}

TEST(EditState, NamesLights)
{
    const struct {
        const char* type;
        const char* mode;
        double brightness;
        const char* name;
    } cases[] = {
        {"brush", "erase", -1, "Eraser"}, {"brush", "paint", -1, "Brush"},
        {"brush", "", 1, "Brush"},        {"linear", "erase", -1, "Gradient"},
        {"radial", "erase", -1, "Burn"},  {"radial", "", 0, "Light"},
        {"other", "", 1, "Light"},
    };
    for (const auto& [type, mode, brightness, name] : cases) {
        EditState::Light light;
        light.type = type;
        light.mode = mode;
        light.brightness = brightness;
        EXPECT_EQ(light.name(), name) << type << mode << brightness;
    }
}

TEST(EditState, ReadsLevelsAndTexts)
{
    EXPECT_EQ(EditState().levels(), (EditState::Levels{0, 255, 100, 0, 255}));
    EditState state;
    state.adjust = {{"levelsBlackIn", 1},
                    {"levelsWhiteIn", 2},
                    {"levelsGamma", 3},
                    {"levelsBlackOut", 4},
                    {"levelsWhiteOut", 5}};
    EXPECT_EQ(state.levels(), (EditState::Levels{1, 2, 3, 4, 5}));

    state.texts = {{"t_1", "a\nb", 0.1, 0.2, 0.3, "ff0033", "Inter", true},
                   {"t_2", "", 0, 0, 0, "none", "", false}};
    const auto items = state.textItems();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0], (TextLayers::Item{"a\nb", 0.1, 0.2, 0.3, 1, 0, 0.2, 1, "Inter", true}));
    EXPECT_EQ(items[1], (TextLayers::Item{"", 0, 0, 0, 0, 0, 0, 1, "", false}));
}

} // namespace
} // namespace orvane
