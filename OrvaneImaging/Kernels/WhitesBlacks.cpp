// Whites and blacks: push = 0.372 (whites lum^3.2 + blacks (1 - lum)^3.2), the same on all three
// channels. The luminance is held to 0..1 first, because an earlier stage may have left that range
// and a power of a negative number is no number.
#include "Kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/WhitesBlacks.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct WhitesBlacks : PremultipliedKernel<1> {
    struct Record {
        float whites;
        float blacks;
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const L lum = clamp(luminance(in->r, in->g, in->b), zero, one);
        const L push =
            L(p.whites * 0.372f) * power3p2(lum) + L(p.blacks * 0.372f) * power3p2(one - lum);
        return {clamp(in->r + push, zero, one), clamp(in->g + push, zero, one),
                clamp(in->b + push, zero, one), in->a};
    }
};

ORVANE_KERNEL_RUNS(WhitesBlacks)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(whitesBlacksKernel, WhitesBlacks, "whitesBlacks");

CIImage Kernels::whitesBlacks(const CIImage& image, double whites, double blacks)
{
    using Record = HWY_NAMESPACE::WhitesBlacks::Record;
    return applyKernel(whitesBlacksKernel, Parameters::of(Record{float(whites), float(blacks)}),
                       {{image}});
}

} // namespace orvane
#endif
