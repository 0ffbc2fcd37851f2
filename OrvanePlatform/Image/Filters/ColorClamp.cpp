// colorClamp: each straight channel, alpha too, held to low..high; premultiplied by the held alpha.
// What is not a number becomes 0 before it is held. Where the range holds 1, an opaque picture
// stays opaque.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/ColorClamp.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Clamp : StraightKernel<1> {
    struct Record {
        float low;
        float high;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const auto held = [&p](L x) {
            return clamp(select(equal(x, x), x, L(0.0f)), L(p.low), L(p.high));
        };
        return {held(in[0].r), held(in[0].g), held(in[0].b), held(in[0].a)};
    }
};
ORVANE_KERNEL_RUNS(Clamp)

struct ClampWithoutOne : Clamp {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
};
ORVANE_KERNEL_RUNS(ClampWithoutOne)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <cmath>

namespace orvane {

ORVANE_KERNEL(clampKernel, Clamp, "colorClamp");
ORVANE_KERNEL(clampWithoutOneKernel, ClampWithoutOne, "colorClamp with alpha");

CIImage CIFilter::colorClamp(const CIImage& input, double low, double high)
{
    const HWY_NAMESPACE::Clamp::Record record{float(low), float(high)};
    if (std::isnan(record.low) || std::isnan(record.high))
        return input;
    const bool holdsOne = record.low <= 1 && record.high >= 1;
    return applyKernel(holdsOne ? clampKernel : clampWithoutOneKernel, Parameters::of(record),
                       {{input}});
}

} // namespace orvane

#endif
