#include "Filters/CIFilter.h"
#include "Heal.h"
#include "Kernels.h"
#include "Pipeline.h"
#include "Stages.h"

namespace orvane::Stages {

CIImage heal(const CIImage& image, const Adjustments& a)
{
    return Heal::apply(image, a.healSpots);
}

CIImage relight(const CIImage& image, const Adjustments& a)
{
    return Relight::apply(image, a.lights);
}

// Texture, clarity and dehaze are local contrast at three scales.

CIImage texture(const CIImage& image, const Adjustments& a)
{
    return Pipeline::unsharp(image, std::max(shortSide(image) / 400, 1.0), a.texture / 100 * 0.9);
}

CIImage clarity(const CIImage& image, const Adjustments& a)
{
    return Pipeline::unsharp(image, std::max(shortSide(image) / 150, 2.0), a.clarity / 100 * 0.5);
}

CIImage dehaze(const CIImage& image, const Adjustments& a)
{
    const CIImage result =
        Pipeline::unsharp(image, std::max(shortSide(image) / 40, 6.0), a.dehaze / 100 * 0.7);
    if (!(a.dehaze > 0))
        return result;
    return CIFilter::colorControls(result, {.brightness = a.dehaze / -100 * 0.05});
}

CIImage noiseReduction(const CIImage& image, const Adjustments& a)
{
    const double strength = std::max(a.noiseReduction, a.colorNoiseReduction);
    return CIFilter::noiseReduction(image, strength / 100 * 0.1, 0.4);
}

CIImage sharpening(const CIImage& image, const Adjustments& a)
{
    const CIImage sharp = CIFilter::unsharpMask(image, a.sharpenRadius, a.sharpening / 100);
    if (!(a.sharpenThreshold > 0))
        return sharp;
    const CIImage blurred = CIFilter::gaussianBlur(image, a.sharpenRadius).cropped(image.extent());
    return Kernels::maskedSharpen(image, sharp, blurred, a.sharpenThreshold / 100 * 0.1);
}

} // namespace orvane::Stages
