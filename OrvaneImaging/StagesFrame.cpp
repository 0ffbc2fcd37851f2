#include "Filters/CIFilter.h"
#include "Kernels.h"
#include "Stages.h"

namespace orvane::Stages {

CIImage lens(const CIImage& image, const Adjustments& a)
{
    return Kernels::lens(image, a.lensDistortion / 100, a.lensFringe / 100);
}

/// Keystone: the corners move along their own edges, left and right by the vertical slider, up and
/// down by the horizontal one.
CIImage perspective(const CIImage& image, const Adjustments& a)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.isEmpty())
        return image;
    const double tilt = a.perspectiveV / 200;
    const double swing = a.perspectiveH / 200;
    // u: -1 left, +1 right; v: -1 top, +1 bottom.
    const auto corner = [&](double u, double v) {
        return CGPoint{extent.midX() + u * (extent.width() / 2) * (1 + v * tilt),
                       extent.midY() - v * (extent.height() / 2) * (1 + u * swing)};
    };
    const CIImage turned = CIFilter::perspectiveTransform(image,
                                                          {.topLeft = corner(-1, -1),
                                                           .topRight = corner(1, -1),
                                                           .bottomRight = corner(1, 1),
                                                           .bottomLeft = corner(-1, 1)});
    // In the wedges that open the picture as it was shows on, never transparency.
    return turned.compositedOver(image.clampedToExtent()).cropped(extent);
}

} // namespace orvane::Stages
