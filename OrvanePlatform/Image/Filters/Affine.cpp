// Affine transforms with bilinear sampling. Each output pixel's centre is mapped back and sampled
// with pixel centres at +0.5; outside the input is transparent. Where the transform reduces, the
// input is first halved by 2x2 averages while the remaining scale is below 2^-1.2.

#include "Filters/Affine.h"

#include "PixelKernels.h"

#include <cmath>

namespace orvane {

namespace {

struct AffineRecord {
    CGAffineTransform inverse;
};

void mapAffine(const void* record, int x, int y, int count, const WarpPositions& positions)
{
    const CGAffineTransform& t = static_cast<const AffineRecord*>(record)->inverse;
    const double cy = y + 0.5;
    const double rowX = t.c * cy + t.tx;
    const double rowY = t.d * cy + t.ty;
    for (int i = 0; i < count; ++i) {
        const double cx = (x + i) + 0.5;
        positions.x[0][i] = t.a * cx + rowX;
        positions.y[0][i] = t.b * cx + rowY;
    }
}

CGRect affineRegion(const void* record, const PixelRect& rect)
{
    return static_cast<const AffineRecord*>(record)->inverse.apply(rect.cgRect());
}

const WarpKernel affineKernel{"affineTransform", 1, mapAffine, affineRegion};

/// One halving of the input and of the transform's input side.
NodePtr halved(const NodePtr& input, CGAffineTransform& transform)
{
    const Extent& extent = input->extent;
    const HalveNode halve{extent.infinite ? 0 : extent.rect.x0,
                          extent.infinite ? 0 : extent.rect.y0};
    const Extent result = extent.infinite
        ? extent
        : Extent::of({0, 0, (extent.rect.width() + 1) / 2, (extent.rect.height() + 1) / 2});
    const auto enlarge = CGAffineTransform::scale(2, 2).concatenated(
        CGAffineTransform::translation(halve.originX, halve.originY));
    transform = enlarge.concatenated(transform);
    return makeNode(halve, {input}, result, input->opaque);
}

} // namespace

CIImage affineWarp(const NodePtr& input, const CGAffineTransform& transform)
{
    double scale = std::sqrt(std::abs(transform.determinant()));
    if (!(scale > 1e-5))
        return CIImage();
    const Extent extent = input->extent.infinite
        ? input->extent
        : Extent::of(roundedOutward(transform.apply(input->extent.rect.cgRect())));
    if (extent.isEmpty())
        return CIImage();
    NodePtr reduced = input;
    CGAffineTransform remaining = transform;
    const double threshold = std::exp2(-1.2);
    for (; scale < threshold; scale *= 2)
        reduced = halved(reduced, remaining);
    return CIImage(
        makeNode(WarpNode{&affineKernel, Parameters::of(AffineRecord{remaining.inverted()}), input,
                          transform},
                 {reduced}, extent, input->opaque && input->extent.infinite));
}

} // namespace orvane
