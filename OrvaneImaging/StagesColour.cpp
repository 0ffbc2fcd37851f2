#include "Curves.h"
#include "Filters/CIFilter.h"
#include "Kernels.h"
#include "Stages.h"

namespace orvane::Stages {

namespace {

/// The same factor and the same addend for red, green and blue.
CIImage scaledAndShifted(const CIImage& image, double factor, double addend)
{
    return CIFilter::colorMatrix(image,
                                 {.red = {factor, 0, 0, 0},
                                  .green = {0, factor, 0, 0},
                                  .blue = {0, 0, factor, 0},
                                  .bias = {addend, addend, addend, 0}});
}

Adjustments::Bands hundredths(Adjustments::Bands values)
{
    for (double& value : values)
        value /= 100;
    return values;
}

} // namespace

CIImage whiteBalance(const CIImage& image, const Adjustments& a)
{
    return CIFilter::temperatureAndTint(
        image, {.kelvin = 6500, .tint = 0},
        {.kelvin = 6500 - 30 * a.temperature, .tint = 1.5 * a.tint});
}

/// Full strength is 1.1 stops.
CIImage exposure(const CIImage& image, const Adjustments& a)
{
    return CIFilter::exposureAdjust(image, a.exposure / 100 * 1.1);
}

CIImage highlightsAndShadows(const CIImage& image, const Adjustments& a)
{
    return CIFilter::highlightShadowAdjust(image, a.highlights / 100 + 1, a.shadows / 100);
}

CIImage whitesAndBlacks(const CIImage& image, const Adjustments& a)
{
    return Kernels::whitesBlacks(image, a.whites / 100, a.blacks / 100);
}

/// The slider to a slope about mid-grey: -100 gives 0, 0 gives 1, 100 gives 129.5.
CIImage contrast(const CIImage& image, const Adjustments& a)
{
    const double c = a.contrast / 100 * 255;
    return Kernels::contrast(image, (c + 255) * 259 / ((259 - c) * 255));
}

CIImage curves(const CIImage& image, const Adjustments& a)
{
    return Curves::apply(image, a.curve);
}

CIImage saturation(const CIImage& image, const Adjustments& a)
{
    return CIFilter::colorControls(image, {.saturation = a.saturation / 100 + 1});
}

CIImage vibrance(const CIImage& image, const Adjustments& a)
{
    return CIFilter::vibrance(image, a.vibrance / 100);
}

CIImage colourTable(const CIImage& image, const Adjustments& a)
{
    const CIImage looked = CIFilter::colorCubeWithColorSpace(image, a.lut->table());
    if (a.lutAmount >= 100)
        return looked;
    return CIFilter::dissolveTransition(image, looked, a.lutAmount / 100).cropped(image.extent());
}

/// In linear light, unlike curves; the one place that cuts the picture to 0..1.
CIImage levels(const CIImage& image, const Adjustments& a)
{
    const double blackIn = a.levelsBlackIn / 255;
    const double whiteIn = a.levelsWhiteIn / 255;
    const double scale = 1 / std::max(whiteIn - blackIn, 1.0 / 255);
    CIImage result = CIFilter::colorClamp(scaledAndShifted(image, scale, -blackIn * scale));

    const double gamma = a.levelsGamma / 100;
    const double power = gamma < 0.1 ? 10 : 1 / gamma;
    if (power != 1)
        result = CIFilter::gammaAdjust(result, power);

    const double blackOut = a.levelsBlackOut / 255;
    const double span = a.levelsWhiteOut / 255 - blackOut;
    if (blackOut != 0 || span != 1)
        result = scaledAndShifted(result, span, blackOut);
    return result;
}

CIImage colourMixer(const CIImage& image, const Adjustments& a)
{
    return Kernels::colorMixer(image, hundredths(a.mixerHue), hundredths(a.mixerSat),
                               hundredths(a.mixerLum));
}

/// Lifted blacks: at full strength black becomes 40 of 255 in linear light, and white stays.
CIImage fade(const CIImage& image, const Adjustments& a)
{
    const double lift = a.fade / 100 * 40 / 255;
    return scaledAndShifted(image, 1 - lift, lift);
}

} // namespace orvane::Stages
