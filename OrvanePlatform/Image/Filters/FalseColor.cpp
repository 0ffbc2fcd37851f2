// falseColor: t = clamp(L, 0, 1), L = 0.2125 r + 0.7154 g + 0.0721 b of the straight linear colour;
// result = mix(color0, color1, t) * alpha, the colours linear and premultiplied. Over-range pixels
// take color1. With two opaque colours an opaque picture stays opaque.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/FalseColor.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

// The ramp is premultiplied, so the kernel divides for the luma alone.
struct Ramp : PremultipliedKernel<1> {
    struct Record {
        float color0[4];
        float color1[4];
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const auto visible = in[0].a > zero;
        const L alpha = select(visible, in[0].a, zero);
        const L y = luma(in[0].r, in[0].g, in[0].b) / select(visible, in[0].a, one);
        const L t = clamp(y, zero, one);
        const auto channel = [&](int c) { return mix(L(p.color0[c]), L(p.color1[c]), t) * alpha; };
        return {channel(0), channel(1), channel(2), channel(3)};
    }
};
ORVANE_KERNEL_RUNS(Ramp)

struct TranslucentRamp : Ramp {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
};
ORVANE_KERNEL_RUNS(TranslucentRamp)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"
#include "Filters/ParameterColor.h"

#include <algorithm>

namespace orvane {

ORVANE_KERNEL(rampKernel, Ramp, "falseColor");
ORVANE_KERNEL(translucentRampKernel, TranslucentRamp, "falseColor with alpha");

CIImage CIFilter::falseColor(const CIImage& input, const CIColor& color0, const CIColor& color1)
{
    HWY_NAMESPACE::Ramp::Record record{};
    std::ranges::copy(workingColor(color0), record.color0);
    std::ranges::copy(workingColor(color1), record.color1);
    const bool solid = record.color0[3] == 1 && record.color1[3] == 1;
    return applyKernel(solid ? rampKernel : translucentRampKernel, Parameters::of(record),
                       {{input}});
}

} // namespace orvane

#endif
