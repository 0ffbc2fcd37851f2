// gammaAdjust: c' = max(c, 0)^power of each straight channel, alpha kept. Values above 1 are not
// clamped; results are held at 1e38, so that what is finite stays finite.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/GammaAdjust.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Gamma : StraightKernel<1> {
    struct Record {
        float power;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        return pixelOf(min(power(in->rgb(), L(p.power)), Three<L>(1e38f)), in->a);
    }
};
ORVANE_KERNEL_RUNS(Gamma)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <cmath>

namespace orvane {

ORVANE_KERNEL(gammaKernel, Gamma, "gammaAdjust");

CIImage CIFilter::gammaAdjust(const CIImage& input, double power)
{
    const auto narrowed = float(power);
    if (narrowed == 1 || !std::isfinite(narrowed))
        return input;
    return applyKernel(gammaKernel, Parameters::of(HWY_NAMESPACE::Gamma::Record{narrowed}),
                       {{input}});
}

} // namespace orvane

#endif
