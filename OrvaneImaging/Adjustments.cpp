#include "Adjustments.h"

#include <utility>

namespace orvane {

namespace {

using Field = std::pair<const char*, double Adjustments::*>;

/// The sliders that stand for one number each; the mixer's keys are made of a prefix and a band.
constexpr Field sliders[] = {
    {"exposure", &Adjustments::exposure},
    {"contrast", &Adjustments::contrast},
    {"highlights", &Adjustments::highlights},
    {"shadows", &Adjustments::shadows},
    {"whites", &Adjustments::whites},
    {"blacks", &Adjustments::blacks},
    {"temperature", &Adjustments::temperature},
    {"tint", &Adjustments::tint},
    {"vibrance", &Adjustments::vibrance},
    {"saturation", &Adjustments::saturation},
    {"perspectiveV", &Adjustments::perspectiveV},
    {"perspectiveH", &Adjustments::perspectiveH},
    {"lensDistortion", &Adjustments::lensDistortion},
    {"lensFringe", &Adjustments::lensFringe},
    {"texture", &Adjustments::texture},
    {"clarity", &Adjustments::clarity},
    {"dehaze", &Adjustments::dehaze},
    {"sharpening", &Adjustments::sharpening},
    {"sharpenRadius", &Adjustments::sharpenRadius},
    {"sharpenThreshold", &Adjustments::sharpenThreshold},
    {"noiseReduction", &Adjustments::noiseReduction},
    {"colorNoiseReduction", &Adjustments::colorNoiseReduction},
    {"levelsBlackIn", &Adjustments::levelsBlackIn},
    {"levelsWhiteIn", &Adjustments::levelsWhiteIn},
    {"levelsGamma", &Adjustments::levelsGamma},
    {"levelsBlackOut", &Adjustments::levelsBlackOut},
    {"levelsWhiteOut", &Adjustments::levelsWhiteOut},
    {"shadowTint", &Adjustments::shadowTint},
    {"highlightTint", &Adjustments::highlightTint},
    {"vignette", &Adjustments::vignette},
    {"vignetteMidpoint", &Adjustments::vignetteMidpoint},
    {"fade", &Adjustments::fade},
    {"grain", &Adjustments::grain},
    {"bloom", &Adjustments::bloom},
    {"halation", &Adjustments::halation},
    {"tiltShift", &Adjustments::tiltShift},
    {"tiltCenter", &Adjustments::tiltCenter},
    {"tiltWidth", &Adjustments::tiltWidth},
    {"duotone", &Adjustments::duotone},
    {"duotoneHue", &Adjustments::duotoneHue},
};

constexpr std::pair<const char*, Adjustments::Bands Adjustments::*> mixers[] = {
    {"hue", &Adjustments::mixerHue},
    {"sat", &Adjustments::mixerSat},
    {"lum", &Adjustments::mixerLum},
};

void read(const Adjustments::AdjustMap& adjust, const std::string& key, double& value)
{
    if (const auto found = adjust.find(key); found != adjust.end())
        value = found->second;
}

} // namespace

const Adjustments::Curve& Adjustments::identityCurve()
{
    static const Curve curve = [] {
        const std::vector<CurvePoint> diagonal = {{0, 0}, {255, 255}};
        return Curve{{"master", diagonal}, {"r", diagonal}, {"g", diagonal}, {"b", diagonal}};
    }();
    return curve;
}

Adjustments::Adjustments(const AdjustMap& adjust)
{
    for (const auto& [key, field] : sliders)
        read(adjust, key, this->*field);
    for (const auto& [prefix, values] : mixers) {
        for (size_t band = 0; band < bands.size(); ++band)
            read(adjust, std::string(prefix).append(bands[band]), (this->*values)[band]);
    }
}

bool Adjustments::isIdentity() const
{
    return *this == Adjustments();
}

} // namespace orvane
