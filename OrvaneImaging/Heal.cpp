// Each spot is a patch of the picture as the spots before it left it, blended in through a round
// mask. Blending over the whole picture would cost one walk over it for each spot; a spot changes
// only its own box, though, so that is all that is drawn for it.
#include "Heal.h"

#include "Filters/CIFilter.h"
#include "Filters/Patches.h"
#include "Kernels/HealKernels.h"

#include <algorithm>

namespace orvane::Heal {

namespace {

/// Distance of the source in each axis, and the solid part of the patch, both in radii.
constexpr double sourceDistance = 2.4;
constexpr double solidPart = 0.6;
constexpr double smallestRadius = 2; // pixels

/// The picture within the spot's box as the spot leaves it; empty where it does not reach the
/// picture. ground: the picture as the spot finds it.
CIImage healedSpot(const CIImage& ground, const HealSpot& spot)
{
    const CGRect extent = ground.extent();
    const double radius =
        std::max(std::max(extent.width(), extent.height()) * spot.r, smallestRadius);
    // Spots count from the top edge, images from the bottom.
    const CGPoint center{extent.minX() + extent.width() * spot.x,
                         extent.minY() + (extent.height() - extent.height() * spot.y)};
    const double offset = radius * sourceDistance;
    const double dx = center.x < extent.midX() ? -offset : offset;
    const double dy = center.y < extent.midY() ? -offset : offset;

    // The mask is 0 beyond the radius, so nothing changes there.
    const CGRect round(center.x - radius, center.y - radius, radius * 2, radius * 2);
    const CGRect box = round.integral().intersection(extent);
    if (box.isEmpty())
        return CIImage();
    const CIImage patch = ground.transformed(CGAffineTransform::translation(dx, dy)).cropped(box);
    const CIImage mask =
        CIFilter::radialGradient(center, radius * solidPart, {1, 1, 1, 1}, radius, {0, 0, 0, 0});
    return HealKernels::healed(patch, ground.cropped(box), mask, box);
}

} // namespace

CIImage apply(const CIImage& image, const std::vector<HealSpot>& spots)
{
    if (image.extent().isInfinite() || image.isEmpty())
        return image;
    const CIImage ground = Patches::ground(image);
    std::vector<CIImage> healed;
    healed.reserve(spots.size());
    for (const HealSpot& spot : spots)
        healed.push_back(healedSpot(ground, spot));
    return Patches::laidOn(image, healed);
}

} // namespace orvane::Heal
