// Split tone: t = shadow (1 - lum) + highlight lum, amount = 0.094117 t (24 of 255 at full
// strength); red gains the amount, green 15 % of it, and blue loses it. Greys are tinted too.
#include "Kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/SplitTone.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct SplitTone : PremultipliedKernel<1> {
    struct Record {
        float shadow;
        float highlight;
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const L lum = luminance(in->r, in->g, in->b);
        const L amount = (L(p.shadow) * (one - lum) + L(p.highlight) * lum) * L(0.094117f);
        return {clamp(in->r + amount, zero, one), clamp(in->g + amount * L(0.15f), zero, one),
                clamp(in->b - amount, zero, one), in->a};
    }
};

ORVANE_KERNEL_RUNS(SplitTone)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(splitToneKernel, SplitTone, "splitTone");

CIImage Kernels::splitTone(const CIImage& image, double shadow, double highlight)
{
    using Record = HWY_NAMESPACE::SplitTone::Record;
    return applyKernel(splitToneKernel, Parameters::of(Record{float(shadow), float(highlight)}),
                       {{image}});
}

} // namespace orvane
#endif
