#include "Pipeline.h"

#include "Filters/CIFilter.h"
#include "Stages.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

using A = Adjustments;

bool anyBand(const A::Bands& bands)
{
    return std::any_of(bands.begin(), bands.end(), [](double value) { return value != 0; });
}

bool movesLevels(const A& a)
{
    return a.levelsBlackIn != 0 || a.levelsWhiteIn != 255 || a.levelsGamma != 100
        || a.levelsBlackOut != 0 || a.levelsWhiteOut != 255;
}

// The order is part of what an edit means: moving a line changes how every stored edit looks.
// Corrections of the lens come first, then tone and colour in linear light, then what is painted on
// the picture, then detail, then effects, which see the finished colours.
// clang-format off
constexpr Stages::Stage order[] = {
    {"lens", [](const A& a) { return a.lensDistortion != 0 || a.lensFringe != 0; }, Stages::lens},
    {"perspective", [](const A& a) { return a.perspectiveV != 0 || a.perspectiveH != 0; }, Stages::perspective},
    {"white balance", [](const A& a) { return a.temperature != 0 || a.tint != 0; }, Stages::whiteBalance},
    {"exposure", [](const A& a) { return a.exposure != 0; }, Stages::exposure},
    {"highlights and shadows", [](const A& a) { return a.shadows != 0 || a.highlights != 0; }, Stages::highlightsAndShadows},
    {"whites and blacks", [](const A& a) { return a.whites != 0 || a.blacks != 0; }, Stages::whitesAndBlacks},
    {"contrast", [](const A& a) { return a.contrast != 0; }, Stages::contrast},
    {"curves", [](const A&) { return true; }, Stages::curves},
    {"saturation", [](const A& a) { return a.saturation != 0; }, Stages::saturation},
    {"vibrance", [](const A& a) { return a.vibrance != 0; }, Stages::vibrance},
    {"heal", [](const A& a) { return !a.healSpots.empty(); }, Stages::heal},
    {"colour table", [](const A& a) { return a.lut && a.lutAmount > 0; }, Stages::colourTable},
    {"relight", [](const A& a) { return !a.lights.empty(); }, Stages::relight},
    {"texture", [](const A& a) { return a.texture != 0; }, Stages::texture},
    {"clarity", [](const A& a) { return a.clarity != 0; }, Stages::clarity},
    {"dehaze", [](const A& a) { return a.dehaze != 0; }, Stages::dehaze},
    {"noise reduction", [](const A& a) { return a.noiseReduction > 0 || a.colorNoiseReduction > 0; }, Stages::noiseReduction},
    {"sharpening", [](const A& a) { return a.sharpening > 0; }, Stages::sharpening},
    {"levels", movesLevels, Stages::levels},
    {"colour mixer", [](const A& a) { return anyBand(a.mixerHue) || anyBand(a.mixerSat) || anyBand(a.mixerLum); }, Stages::colourMixer},
    {"bloom", [](const A& a) { return a.bloom > 0; }, Stages::bloom},
    {"halation", [](const A& a) { return a.halation > 0; }, Stages::halation},
    {"tilt-shift", [](const A& a) { return a.tiltShift > 0; }, Stages::tiltShift},
    {"duotone", [](const A& a) { return a.duotone > 0; }, Stages::duotone},
    {"vignette", [](const A& a) { return a.vignette != 0; }, Stages::vignette},
    {"fade", [](const A& a) { return a.fade > 0; }, Stages::fade},
    {"split tone", [](const A& a) { return a.shadowTint != 0 || a.highlightTint != 0; }, Stages::splitTone},
    {"grain", [](const A& a) { return a.grain > 0; }, Stages::grain},
};
// clang-format on

} // namespace

std::span<const Stages::Stage> Stages::all()
{
    return order;
}

CIImage Pipeline::render(const CIImage& image, const Adjustments& adjustments)
{
    if (adjustments.isIdentity())
        return image;
    CIImage result = image;
    for (const Stages::Stage& stage : order) {
        if (stage.runs(adjustments))
            result = stage.draw(result, adjustments);
    }
    // The last stage: whatever the others did, the frame is the one that came in.
    const CGRect entry = image.extent();
    return entry.isInfinite() ? result : result.cropped(entry);
}

CIImage Pipeline::unsharp(const CIImage& image, double radius, double intensity)
{
    return CIFilter::unsharpMask(image, radius, intensity);
}

CIColor Pipeline::hslToRgb(double hue, double saturation, double lightness)
{
    const double c = (1 - std::abs(2 * lightness - 1)) * saturation;
    const double sector = hue / 60;
    const double x = c * (1 - std::abs(std::fmod(sector, 2) - 1));
    const double m = lightness - c / 2;
    const auto color = [m](double red, double green, double blue) {
        return CIColor{red + m, green + m, blue + m, 1};
    };
    if (sector >= 0 && sector < 1)
        return color(c, x, 0);
    if (sector >= 1 && sector < 2)
        return color(x, c, 0);
    if (sector >= 2 && sector < 3)
        return color(0, c, x);
    if (sector >= 3 && sector < 4)
        return color(0, x, c);
    if (sector >= 4 && sector < 5)
        return color(x, 0, c);
    return color(c, 0, x);
}

} // namespace orvane
