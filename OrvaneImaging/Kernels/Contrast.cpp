// Contrast about mid-grey: g = max(rgb, 0)^0.4545; g = (g - 0.5) cf + 0.5; rgb = clamp(g, 0,
// 1)^2.2. The two powers are no exact inverses of each other: 0 and 1 stay, mid values shift a
// little even with a cf of 1.
#include "Kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/Contrast.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Contrast : PremultipliedKernel<1> {
    struct Record {
        float slope;
    };

    template <class L> static HWY_INLINE L channel(L value, L slope)
    {
        const L encoded = power(value, L(0.4545f));
        const L steeper = (encoded - L(0.5f)) * slope + L(0.5f);
        return power(clamp(steeper, L(0.0f), L(1.0f)), L(2.2f));
    }

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L slope(p.slope);
        return {channel(in->r, slope), channel(in->g, slope), channel(in->b, slope), in->a};
    }
};

ORVANE_KERNEL_RUNS(Contrast)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(contrastKernel, Contrast, "contrast");

CIImage Kernels::contrast(const CIImage& image, double cf)
{
    using Record = HWY_NAMESPACE::Contrast::Record;
    return applyKernel(contrastKernel, Parameters::of(Record{float(cf)}), {{image}});
}

} // namespace orvane
#endif
