#include "Filters/CIFilter.h"
#include "Kernels.h"
#include "Pipeline.h"
#include "Stages.h"

#include <cmath>

namespace orvane::Stages {

namespace {

constexpr CIColor black{0, 0, 0, 1};
constexpr CIColor white{1, 1, 1, 1};

} // namespace

CIImage bloom(const CIImage& image, const Adjustments& a)
{
    const double radius = std::max(shortSide(image) * 0.018, 2.0);
    return CIFilter::bloom(image, radius, a.bloom / 100).cropped(image.extent());
}

/// Light that film scatters back from its base: a wide red-orange glow screened over the picture.
CIImage halation(const CIImage& image, const Adjustments& a)
{
    const double strength = a.halation / 100;
    const double radius = std::max(shortSide(image) * 0.025, 6.0);
    // The glow's colour comes after the blur: what is blurred is then the picture that is in
    // memory.
    const CIImage blurred = CIFilter::gaussianBlur(image, radius).cropped(image.extent());
    const CIImage scattered = CIFilter::colorMatrix(blurred,
                                                    {.red = {strength, 0, 0, 0},
                                                     .green = {0, 0.42 * strength, 0, 0},
                                                     .blue = {0, 0, 0.22 * strength, 0}});
    return CIFilter::screenBlendMode(scattered, image);
}

/// The mask across the height, from the band's middle outwards:
///
///     white   _______                 _______
///                    \               /
///     black           \_____________/
///                 2 half    0     2 half     (black within half to each side)
CIImage tiltShift(const CIImage& image, const Adjustments& a)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite())
        return image;
    const double half = std::max(extent.height() * a.tiltWidth / 100 * 0.5, 1.0);
    const double middle = extent.maxY() - extent.height() * a.tiltCenter / 100;
    const auto ramp = [&](double reach) {
        return CIFilter::linearGradient({0, middle + reach}, black, {0, middle + 2 * reach}, white);
    };
    const CIImage mask = CIFilter::maximumCompositing(ramp(half), ramp(-half)).cropped(extent);
    const double radius = std::max(shortSide(image) * 0.02 * a.tiltShift / 100, 2.0);
    return CIFilter::maskedVariableBlur(image, mask, radius).cropped(extent);
}

CIImage duotone(const CIImage& image, const Adjustments& a)
{
    const CIColor dark = Pipeline::hslToRgb(a.duotoneHue, 0.55, 0.22);
    const CIColor light = Pipeline::hslToRgb(std::fmod(a.duotoneHue + 180, 360), 0.5, 0.78);
    const CIImage toned = CIFilter::falseColor(image, dark, light);
    return CIFilter::dissolveTransition(image, toned, a.duotone / 100).cropped(image.extent());
}

/// The filter darkens for a positive intensity, the slider for a negative value.
CIImage vignette(const CIImage& image, const Adjustments& a)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite()) // without a frame there are no corners
        return image;
    const double radius =
        std::max(extent.width(), extent.height()) * (a.vignetteMidpoint / 200 + 0.5);
    return CIFilter::vignetteEffect(image, {extent.midX(), extent.midY()}, radius,
                                    a.vignette / -100, 0.5);
}

CIImage splitTone(const CIImage& image, const Adjustments& a)
{
    return Kernels::splitTone(image, a.shadowTint / 100, a.highlightTint / 100);
}

/// Full strength adds up to 26 of 255.
CIImage grain(const CIImage& image, const Adjustments& a)
{
    return Kernels::grain(image, a.grain / 100 * 26 / 255);
}

} // namespace orvane::Stages
