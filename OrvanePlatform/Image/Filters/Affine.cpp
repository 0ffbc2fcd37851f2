// Affine transforms with bilinear sampling. Each output pixel's centre is mapped back and sampled
// with pixel centres at +0.5; outside the input is transparent. Where the transform reduces, the
// input is first halved by 2x2 averages while the remaining scale is below 2^-1.2.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/Affine.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "Filters/Affine.h"
#include "WarpMap-inl.h"

#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// Exact to a few units in a double's last place: below 1e-10 of a pixel on the largest pictures.
class AffineMap {
public:
    static constexpr int maps = 1;
    struct Record {
        CGAffineTransform inverse;
    };

    HWY_INLINE AffineMap(const Record& record, double cy)
        : m_a(allOf(record.inverse.a))
        , m_b(allOf(record.inverse.b))
        , m_rowX(allOf(record.inverse.c * cy + record.inverse.tx))
        , m_rowY(allOf(record.inverse.d * cy + record.inverse.ty))
    {
    }
    HWY_INLINE void operator()(Doubles cx, Doubles* x, Doubles* y) const
    {
        x[0] = hn::MulAdd(m_a, cx, m_rowX);
        y[0] = hn::MulAdd(m_b, cx, m_rowY);
    }

private:
    Doubles m_a;
    Doubles m_b;
    Doubles m_rowX;
    Doubles m_rowY;
};

ORVANE_WARP_MAP_RUN(AffineMap)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace orvane {

ORVANE_WARP_MAP(AffineMap)

namespace {

using AffineRecord = HWY_NAMESPACE::AffineMap::Record;

CGRect affineRegion(const void* record, const PixelRect& rect)
{
    return static_cast<const AffineRecord*>(record)->inverse.apply(rect.cgRect());
}

const WarpKernel affineKernel{"affineTransform", 1, mapAffineMap, affineRegion};

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

#endif
