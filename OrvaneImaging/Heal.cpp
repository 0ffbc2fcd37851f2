// Each spot is a patch of the picture as the spots before it left it, blended in through a round
// mask. Blending spot after spot over the whole picture would cost one walk over it for each spot.
// A spot changes only its own box, though, and blending is linear: so each becomes a small image of
// changes, computed from the picture and the changes of those earlier spots that its source and its
// box touch, and the picture is drawn once, plus the sum of all changes.
#include "Heal.h"

#include "Filters/CIFilter.h"
#include "Kernels/HealKernels.h"

#include <algorithm>
#include <array>

namespace orvane::Heal {

namespace {

/// Distance of the source in each axis, and the solid part of the patch, both in radii.
constexpr double sourceDistance = 2.4;
constexpr double solidPart = 0.6;
constexpr double smallestRadius = 2; // pixels

/// Summed in fours, and those in fours again: neighbours in the list share the small extents.
CIImage summed(std::vector<CIImage> images)
{
    while (images.size() > 1) {
        std::vector<CIImage> sums;
        for (size_t first = 0; first < images.size(); first += 4) {
            std::array<CIImage, 4> group;
            CGRect extent;
            for (size_t i = 0; i < group.size() && first + i < images.size(); ++i) {
                group[i] = images[first + i];
                extent = extent.united(group[i].extent());
            }
            sums.push_back(HealKernels::sum(group, extent, false));
        }
        images = std::move(sums);
    }
    return images.empty() ? CIImage() : images.front();
}

class Healing {
public:
    explicit Healing(const CIImage& image)
        : m_image(image)
        , m_extent(image.extent())
    {
    }

    void add(const HealSpot& spot)
    {
        const double radius =
            std::max(std::max(m_extent.width(), m_extent.height()) * spot.r, smallestRadius);
        // Spots count from the top edge, images from the bottom.
        const CGPoint center{m_extent.minX() + m_extent.width() * spot.x,
                             m_extent.minY() + (m_extent.height() - m_extent.height() * spot.y)};
        const double offset = radius * sourceDistance;
        const double dx = center.x < m_extent.midX() ? -offset : offset;
        const double dy = center.y < m_extent.midY() ? -offset : offset;

        // The mask is 0 beyond the radius, so nothing changes there.
        const CGRect round(center.x - radius, center.y - radius, radius * 2, radius * 2);
        const CGRect box = round.integral().intersection(m_extent);
        if (box.isEmpty())
            return;
        // Grown to whole pixels, which is what the interpolation of a fractional move reads.
        const CGRect source(box.minX() - dx, box.minY() - dy, box.width(), box.height());
        const CIImage patch = pictureWithin(source.integral())
                                  .transformed(CGAffineTransform::translation(dx, dy))
                                  .cropped(box);
        const CIImage mask = CIFilter::radialGradient(center, radius * solidPart, {1, 1, 1, 1},
                                                      radius, {0, 0, 0, 0});
        m_changes.push_back(HealKernels::change(patch, pictureWithin(box), mask, box));
    }

    CIImage result() const { return m_changes.empty() ? m_image : pictureWithin(m_extent); }

private:
    /// The picture as the spots so far have left it.
    CIImage pictureWithin(const CGRect& rect) const
    {
        const CGRect region = rect.intersection(m_extent);
        std::vector<CIImage> changes;
        for (const CIImage& change : m_changes) {
            if (!change.extent().intersection(region).isEmpty())
                changes.push_back(change);
        }
        if (changes.empty())
            return m_image.cropped(region);
        return HealKernels::sum({m_image, summed(std::move(changes)), {}, {}}, region,
                                m_image.isOpaque());
    }

    const CIImage& m_image;
    const CGRect m_extent;
    std::vector<CIImage> m_changes;
};

} // namespace

CIImage apply(const CIImage& image, const std::vector<HealSpot>& spots)
{
    if (image.extent().isInfinite() || image.isEmpty())
        return image;
    Healing healing(image);
    for (const HealSpot& spot : spots)
        healing.add(spot);
    return healing.result();
}

} // namespace orvane::Heal
