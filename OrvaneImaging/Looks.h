#pragma once

#include "Adjustments.h"
#include "CIImage.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Grades that are suggested for a picture from a few measurements of it. A grade is a recipe of
/// slider values; nothing here draws but the measuring.
namespace orvane::Looks {

/// Measurements of a picture. Luma is sRGB-encoded, on the scale 0..255; the defaults stand for a
/// picture that cannot be measured.
struct Stats {
    double medianLuma = 128;
    double blackPoint = 16; ///< the luma that 5 % of the pixels do not exceed
    double whitePoint = 240; ///< the luma that 95 % of the pixels do not exceed
    double contrastSpread = 224; ///< whitePoint - blackPoint
    double meanSaturation = 30; ///< HSV, 0..100
    double warmth = 0; ///< -100..100; positive is redder than blue
    double greenMagenta = 0; ///< -100..100; positive is greener
    double haze = 0; ///< raised blacks and missing spread, in levels

    bool operator==(const Stats&) const = default;
};

/// A suggested grade. The recipe holds the keys that it moves, and no others.
struct Look {
    std::string id;
    std::string name;
    std::string reason; ///< one sentence: why it suits this picture
    Adjustments::AdjustMap adjustments;

    bool operator==(const Look&) const = default;
};

/// What a one-click grade leans to: the end of its sentence, and what it adds.
struct Lean {
    std::string_view phrase;
    std::vector<std::pair<const char*, double>> additions;
};
/// Five; made once.
const std::vector<Lean>& popLeans();

/// The range that a one-click grade keeps a slider in.
struct Bound {
    const char* key;
    double lowest;
    double highest;
};
inline constexpr std::array<Bound, 11> popBounds = {{
    {"exposure", -30, 30},
    {"contrast", -10, 55},
    {"clarity", 0, 45},
    {"vibrance", 0, 55},
    {"saturation", -10, 30},
    {"dehaze", 0, 35},
    {"blacks", -25, 22},
    {"whites", -12, 32},
    {"shadows", -15, 45},
    {"highlights", -40, 15},
    {"temperature", -20, 20},
}};

/// Measures a copy whose longer edge has `sample` pixels at most; never enlarges. An image without
/// a finite frame of at least a pixel, and a sample of none, give the default Stats.
Stats analyze(const CIImage& image, double sample);

/// The ten looks, fitted to the measurements, in the order of the panel.
std::vector<Look> all(const Stats& stats);

/// Numbers of the half-open range 0..1.
using RandomSource = std::function<double()>;
/// Evenly spread, from the system's random device.
double systemRandom();

/// A one-click grade, a little different each time: it draws ten numbers.
Look pop(const Stats& stats, const RandomSource& rnd = systemRandom);

/// The look's recipe with every value at `strength` percent, held to 0..100; what is no number
/// counts as 0. The keys stay, even at 0.
Adjustments::AdjustMap apply(const Look& look, double strength);

} // namespace orvane::Looks
