#include "Relight.h"

#include "Bitmap.h"
#include "BrushMask.h"
#include "Filters/CIFilter.h"
#include "Kernels/LightKernels.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>
#include <optional>

namespace orvane::Relight {

namespace {

bool changesSomething(const Light& light)
{
    const bool amounts =
        light.brightness != 0 || light.warmth != 0 || light.contrast != 0 || light.saturation != 0;
    return amounts && light.radius > 0 && (light.type != "brush" || !light.strokes.empty());
}

/// Nothing where there is no memory for it: a light less is better than no picture.
PlacedBitmap brushMaskOrNone(const Light& light, int width, int height, double lineWidth)
{
    try {
        return brushMask(light.strokes, width, height, lineWidth);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

/// White where the strokes are.
std::optional<CIImage> paintedMask(const Light& light, const CGRect& extent)
{
    const double width = std::round(extent.width());
    const double height = std::round(extent.height());
    if (width < 1 || height < 1)
        return {};
    const double longEdge = std::max(width, height);
    const double lineWidth = std::max(2 * light.radius * longEdge, 1.0);
    const PlacedBitmap painted = brushMaskOrNone(light, int(width), int(height), lineWidth);
    if (!painted.bitmap)
        return {};
    // Rows of a bitmap count from the top, images from the bottom.
    CIImage mask = CIImage::withBitmap(painted.bitmap)
                       .transformed(CGAffineTransform::translation(
                           painted.x, height - painted.y - painted.bitmap->height()));
    const double sigma = light.radius * light.feather * longEdge;
    if (sigma > 0.5)
        mask = mask.clampedToExtent().gaussianBlurred(sigma).cropped({0, 0, width, height});
    return mask.transformed(CGAffineTransform::translation(extent.minX(), extent.minY()));
}

/// The light's amounts at each pixel, as the light kernels order them.
std::optional<CIImage> contribution(const Light& light, const CGRect& extent)
{
    const double longEdge = std::max(extent.width(), extent.height());
    const double reach = std::max(longEdge * light.radius, 1.0);
    const double softness = std::clamp(light.feather, 0.0, 1.0);
    // Lights count from the top edge, images from the bottom.
    const CGPoint center{extent.minX() + light.x * extent.width(),
                         extent.minY() + (extent.height() - light.y * extent.height())};
    const LightKernels::Amounts amounts{float(light.brightness / 100), float(light.warmth / 100),
                                        float(light.contrast / 100), float(light.saturation / 100)};
    if (light.type == "linear") {
        const double angle = light.angle * std::numbers::pi / 180;
        return LightKernels::linear(extent, center, reach, std::cos(angle), std::sin(angle),
                                    softness, light.invert, amounts);
    }
    if (light.type == "brush") {
        const auto mask = paintedMask(light, extent);
        return mask ? std::optional(LightKernels::painted(*mask, amounts)) : std::nullopt;
    }
    return LightKernels::radial(extent, center, reach, 1 - softness, light.invert, amounts);
}

} // namespace

CIImage apply(const CIImage& image, const std::vector<Light>& lights)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.isEmpty())
        return image;
    std::optional<CIImage> sum;
    for (const Light& light : lights) {
        if (!changesSomething(light))
            continue;
        if (const auto added = contribution(light, extent))
            sum = sum ? CIFilter::additionCompositing(*added, *sum) : *added;
    }
    return sum ? LightKernels::lit(image, sum->cropped(extent)) : image;
}

} // namespace orvane::Relight
