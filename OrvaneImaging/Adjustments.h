#pragma once

#include "HealSpot.h"
#include "LUT.h"
#include "Relight.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// All that the render is told about an edit, flat. Numbers are in slider units, nearly all with
/// 100 as full strength. Nothing is clamped or scaled on the way in: the stage that reads a number
/// gives it its unit.
struct Adjustments {
    /// A point of a tone curve, both on the scale 0..255.
    struct CurvePoint {
        double x = 0;
        double y = 0;

        bool operator==(const CurvePoint&) const = default;
    };
    /// By channel: "master", "r", "g", "b".
    using Curve = std::map<std::string, std::vector<CurvePoint>>;
    /// Slider values by key; a key that is absent stands at its neutral value.
    using AdjustMap = std::map<std::string, double>;

    /// The bands of the colour mixer, in the order of the three mixer arrays.
    static constexpr std::array<std::string_view, 8> bands = {
        "Red", "Orange", "Yellow", "Green", "Aqua", "Blue", "Purple", "Magenta"};
    using Bands = std::array<double, bands.size()>;

    /// The four channels, each with the points (0, 0) and (255, 255). Made once.
    static const Curve& identityCurve();

    Adjustments() = default;
    /// Reads the keys named after the fields below and the 24 mixer keys ("hueRed", "satRed",
    /// "lumRed", "hueOrange" ...); all others are ignored. Curve, table, lights and spots stay
    /// neutral.
    explicit Adjustments(const AdjustMap& adjust);

    /// Whether the render gives its input back: every field is at its default.
    bool isIdentity() const;
    bool operator==(const Adjustments&) const = default;

    double exposure = 0;
    double contrast = 0;
    double highlights = 0;
    double shadows = 0;
    double whites = 0;
    double blacks = 0;
    double temperature = 0;
    double tint = 0; ///< positive is greener
    double vibrance = 0;
    double saturation = 0;
    double perspectiveV = 0; ///< positive pulls the top edge in
    double perspectiveH = 0; ///< positive shortens the left edge
    double lensDistortion = 0;
    double lensFringe = 0;
    Curve curve = identityCurve();
    std::optional<LUT> lut;
    double lutAmount = 100; ///< 0..100
    std::vector<Light> lights;
    std::vector<HealSpot> healSpots;
    Bands mixerHue{};
    Bands mixerSat{};
    Bands mixerLum{};
    double texture = 0;
    double clarity = 0;
    double dehaze = 0;
    double sharpening = 0;
    double sharpenRadius = 1; ///< pixels
    double sharpenThreshold = 0;
    double noiseReduction = 0;
    double colorNoiseReduction = 0;
    double levelsBlackIn = 0; ///< 0..255, as the other three points
    double levelsWhiteIn = 255;
    double levelsGamma = 100; ///< hundredths: 100 is a gamma of 1
    double levelsBlackOut = 0;
    double levelsWhiteOut = 255;
    double shadowTint = 0;
    double highlightTint = 0;
    double vignette = 0; ///< negative darkens the corners
    double vignetteMidpoint = 50;
    double fade = 0;
    double grain = 0;
    double bloom = 0;
    double halation = 0;
    double tiltShift = 0;
    double tiltCenter = 50; ///< percent of the height from the top
    double tiltWidth = 30; ///< percent of the height
    double duotone = 0;
    double duotoneHue = 210; ///< degrees
};

} // namespace orvane
