#include "Heal.h"

#include "Filters/CIFilter.h"

#include <algorithm>

namespace orvane::Heal {

namespace {

/// Distance of the source in each axis, and the solid part of the patch, both in radii.
constexpr double sourceDistance = 2.4;
constexpr double solidPart = 0.6;
constexpr double smallestRadius = 2; // pixels

CIImage healed(const CIImage& image, const CGRect& extent, const HealSpot& spot)
{
    const double radius =
        std::max(std::max(extent.width(), extent.height()) * spot.r, smallestRadius);
    // Spots count from the top edge, images from the bottom.
    const CGPoint center{extent.minX() + extent.width() * spot.x,
                         extent.minY() + (extent.height() - extent.height() * spot.y)};
    const double offset = radius * sourceDistance;
    const double dx = center.x < extent.midX() ? -offset : offset;
    const double dy = center.y < extent.midY() ? -offset : offset;

    // The mask is 0 beyond the radius, so neither patch nor mask need reach further. Without this a
    // long stroke would ask for the whole picture once for each of its spots.
    const CGRect touched =
        CGRect(center.x - radius, center.y - radius, radius * 2, radius * 2).integral();
    const CGRect box = touched.intersection(extent);
    if (box.isEmpty())
        return image;
    const CIImage patch = image.transformed(CGAffineTransform::translation(dx, dy)).cropped(box);
    const CIImage mask =
        CIFilter::radialGradient(center, radius * solidPart, {1, 1, 1, 1}, radius, {0, 0, 0, 0})
            .cropped(box);
    return CIFilter::blendWithMask(patch, image, mask).cropped(extent);
}

} // namespace

CIImage apply(const CIImage& image, const std::vector<HealSpot>& spots)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.isEmpty())
        return image;
    // Each patch is cut from the picture as the spots before it left it.
    CIImage running = image;
    for (const HealSpot& spot : spots)
        running = healed(running, extent, spot);
    return running;
}

} // namespace orvane::Heal
