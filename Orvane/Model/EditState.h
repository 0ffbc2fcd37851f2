#pragma once

#include "Adjustments.h"
#include "CGGeometry.h"
#include "HealSpot.h"
#include "TextLayers.h"

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Every edit of one image: the picture is always this, applied to the untouched source. It is also
/// the unit of undo, the copied style and, as JSON (EditStateJSON.h), the stored form of saved
/// edits.
struct EditState {
    using CurvePoint = Adjustments::CurvePoint;

    /// A local light as it is stored. `id`, `type` and `mode` never change once it is made.
    struct Light {
        std::string id;
        std::string type; ///< "radial", "linear" or "brush"
        std::string mode; ///< of a brush: "paint" or "erase"
        double brightness = 0; ///< percent, as the three below
        double warmth = 0;
        double contrast = 0;
        double saturation = 0;
        double radius = 0; ///< fraction of the image's long edge
        double feather = 0; ///< 0..1
        bool invert = false;
        double x = 0; ///< centre, fraction of the width from the left edge
        double y = 0; ///< centre, fraction of the height from the top edge
        double angle = 0; ///< degrees
        std::vector<std::vector<CGPoint>> strokes; ///< of a brush, in fractions as x and y

        /// The text shown for the light: "Eraser", "Brush", "Gradient", "Burn" or "Light".
        std::string name() const;
        bool operator==(const Light&) const = default;
    };

    /// A block of text over the picture. `id` never changes once it is made.
    struct TextLayer {
        std::string id;
        std::string text;
        double x = 0; ///< centre, fraction of the width from the left edge
        double y = 0; ///< centre, fraction of the height from the top edge
        double size = 0; ///< font size, fraction of the image's long edge
        std::string colorHex; ///< "#rrggbb"
        std::string font; ///< empty means the system font
        bool shadow = false;

        bool operator==(const TextLayer&) const = default;
    };

    /// A view over five entries of `adjust`: the points on 0..255, gamma in hundredths.
    struct Levels {
        double blackIn = 0;
        double whiteIn = 255;
        double gamma = 100;
        double blackOut = 0;
        double whiteOut = 255;

        bool operator==(const Levels&) const = default;
    };
    /// The entries of `adjust` that Levels reads, in its order.
    static constexpr std::array<std::string_view, 5> levelsKeys = {
        "levelsBlackIn", "levelsWhiteIn", "levelsGamma", "levelsBlackOut", "levelsWhiteOut"};

    Adjustments::AdjustMap adjust; ///< slider values; an absent key stands at its neutral value
    std::map<std::string, std::vector<CurvePoint>> curve; ///< by channel: "master", "r", "g", "b"
    std::vector<Light> lights; ///< in the order they apply, as the two other lists
    std::vector<HealSpot> healSpots;
    CGRect crop{0, 0, 1, 1}; ///< fractions of the turned and flipped frame, y from the top
    double rotation = 0; ///< degrees, positive is clockwise on screen
    bool flipH = false; ///< left to right
    bool flipV = false; ///< top to bottom
    std::string aspectId = "free";
    double lookStrength = 100; ///< 0..100
    std::string lutID; ///< in the library; empty means none
    double lutAmount = 100; ///< 0..100
    double canvasAspect = 0; ///< width by height; 0 means no canvas
    std::string canvasFill = "blur"; ///< "color", "edge"; anything else is a blur
    std::string canvasColor = "#000000";
    std::vector<TextLayer> texts;

    Levels levels() const;

    /// The render's form of `texts`, in order.
    std::vector<TextLayers::Item> textItems() const;

    /// The short text that names what changed since `previous`, for the history list; "Original"
    /// when there is no previous state. The first difference in a fixed order wins; among sliders
    /// the one that moved furthest, of those present in this state.
    std::string describe(const EditState* previous) const;

    /// What a slider is called: by the catalogue, or made from the key ("hueRed" is "Hue red").
    static std::string label(std::string_view adjustKey);

    bool operator==(const EditState&) const = default;
};

} // namespace orvane
