#pragma once

#include "Adjustments.h"

#include <vector>

/// Each stage of the render alone, for tests and measurements.
namespace orvane::test {

struct StageSetting {
    const char* stage; ///< as Stages::all() names it
    Adjustments weak; ///< about a tenth or a fifth of the way
    Adjustments strong; ///< as far as the controls go, or nearly
};

namespace stageSettings {

/// Red towards green, darker greens, more blue: bent, so that the cube's cells differ.
inline LUT colourTable()
{
    constexpr int dimension = 9;
    std::vector<float> rgb;
    for (int b = 0; b < dimension; ++b) {
        for (int g = 0; g < dimension; ++g) {
            for (int r = 0; r < dimension; ++r) {
                const float red = float(r) / (dimension - 1);
                const float green = float(g) / (dimension - 1);
                const float blue = float(b) / (dimension - 1);
                rgb.insert(
                    rgb.end(),
                    {red * (0.6f + 0.4f * green), green * green, 1 - (1 - blue) * (1 - blue)});
            }
        }
    }
    return *LUT::fromRGB(dimension, rgb);
}

inline Adjustments withTable(double amount)
{
    Adjustments a;
    a.lut = colourTable();
    a.lutAmount = amount;
    return a;
}

inline Adjustments withCurves(double bend)
{
    Adjustments a;
    a.curve["master"] = {{0, bend / 4}, {64, 64 - bend}, {192, 192 + bend}, {255, 255 - bend / 8}};
    a.curve["b"] = {{0, bend / 4}, {255, 255 - bend / 4}};
    return a;
}

/// One light of each kind.
inline Adjustments withLights(double strength)
{
    Adjustments a;
    a.lights = {
        {.radius = 0.3, .feather = 0.6, .brightness = strength, .warmth = strength / 2},
        {.type = "linear",
         .y = 0.2,
         .radius = 0.3,
         .angle = 90,
         .feather = 0.5,
         .brightness = -strength / 2,
         .contrast = strength / 2},
        {.type = "brush",
         .radius = 0.08,
         .feather = 0.9,
         .brightness = strength,
         .saturation = strength,
         .strokes = {{{0.2, 0.3}, {0.3, 0.35}, {0.4, 0.33}}, {{0.7, 0.7}}}},
    };
    return a;
}

/// Overlapping ones too, and one at the frame's edge.
inline Adjustments withSpots(double radius)
{
    Adjustments a;
    a.healSpots = {
        {0.2, 0.6, radius}, {0.2 + radius, 0.6, radius}, {0.75, 0.31, radius}, {0.99, 0.5, radius}};
    return a;
}

} // namespace stageSettings

inline std::vector<StageSetting> allStageSettings()
{
    using namespace stageSettings;
    const auto set = [](const Adjustments::AdjustMap& map) { return Adjustments(map); };
    return {
        {"lens", set({{"lensDistortion", -15}, {"lensFringe", 10}}),
         set({{"lensDistortion", 100}, {"lensFringe", -100}})},
        {"perspective", set({{"perspectiveV", 8}, {"perspectiveH", -5}}),
         set({{"perspectiveV", 100}, {"perspectiveH", -60}})},
        {"white balance", set({{"temperature", 12}, {"tint", -6}}),
         set({{"temperature", 100}, {"tint", 100}})},
        {"exposure", set({{"exposure", 15}}), set({{"exposure", 100}})},
        {"highlights and shadows", set({{"highlights", -20}, {"shadows", 20}}),
         set({{"highlights", -100}, {"shadows", 100}})},
        {"whites and blacks", set({{"whites", 10}, {"blacks", -10}}),
         set({{"whites", 100}, {"blacks", 100}})},
        {"contrast", set({{"contrast", 15}}), set({{"contrast", 100}})},
        {"curves", withCurves(10), withCurves(60)},
        {"saturation", set({{"saturation", 15}}), set({{"saturation", 100}})},
        {"vibrance", set({{"vibrance", 20}}), set({{"vibrance", 100}})},
        {"heal", withSpots(0.01), withSpots(0.06)},
        {"colour table", withTable(20), withTable(100)},
        {"relight", withLights(15), withLights(100)},
        {"texture", set({{"texture", 20}}), set({{"texture", 100}})},
        {"clarity", set({{"clarity", 20}}), set({{"clarity", 100}})},
        {"dehaze", set({{"dehaze", 15}}), set({{"dehaze", 100}})},
        {"noise reduction", set({{"colorNoiseReduction", 20}}), set({{"noiseReduction", 100}})},
        {"sharpening", set({{"sharpening", 30}, {"sharpenThreshold", 20}}),
         set({{"sharpening", 100}, {"sharpenRadius", 3}, {"sharpenThreshold", 60}})},
        {"levels", set({{"levelsBlackIn", 4}, {"levelsWhiteIn", 250}, {"levelsGamma", 105}}),
         set({{"levelsBlackIn", 30},
              {"levelsWhiteIn", 180},
              {"levelsGamma", 250},
              {"levelsBlackOut", 10},
              {"levelsWhiteOut", 240}})},
        {"colour mixer",
         set({{"hueRed", 10}, {"satOrange", 14}, {"lumBlue", -20}, {"satGreen", -18}}),
         set({{"hueRed", 100},
              {"satOrange", 100},
              {"lumBlue", -100},
              {"hueGreen", -100},
              {"satAqua", 100},
              {"lumMagenta", 100}})},
        {"bloom", set({{"bloom", 15}}), set({{"bloom", 100}})},
        {"halation", set({{"halation", 15}}), set({{"halation", 100}})},
        {"tilt-shift", set({{"tiltShift", 20}}), set({{"tiltShift", 100}})},
        {"duotone", set({{"duotone", 15}}), set({{"duotone", 100}})},
        {"vignette", set({{"vignette", 15}}), set({{"vignette", -100}, {"vignetteMidpoint", 0}})},
        {"fade", set({{"fade", 15}}), set({{"fade", 100}})},
        {"split tone", set({{"shadowTint", -14}, {"highlightTint", 20}}),
         set({{"shadowTint", 100}, {"highlightTint", -100}})},
        {"grain", set({{"grain", 15}}), set({{"grain", 100}})},
    };
}

} // namespace orvane::test
