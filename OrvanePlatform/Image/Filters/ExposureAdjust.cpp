// exposureAdjust: rgb' = rgb * 2^EV, alpha kept. Linear, so it acts on the premultiplied values.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/ExposureAdjust.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Exposure : PremultipliedKernel<1> {
    struct Record {
        float gain;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L gain(p.gain);
        return {in[0].r * gain, in[0].g * gain, in[0].b * gain, in[0].a};
    }
};
ORVANE_KERNEL_RUNS(Exposure)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <cmath>

namespace orvane {

ORVANE_KERNEL(exposureKernel, Exposure, "exposureAdjust");

CIImage CIFilter::exposureAdjust(const CIImage& input, double ev)
{
    const auto gain = float(std::exp2(double(float(ev))));
    if (gain == 1 || !std::isfinite(gain))
        return input;
    return applyKernel(exposureKernel, Parameters::of(HWY_NAMESPACE::Exposure::Record{gain}),
                       {{input}});
}

} // namespace orvane

#endif
