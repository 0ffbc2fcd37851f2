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

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        using V = Three<L>;
        const V encoded = power0p4545(max(in->rgb(), V(0.0f)));
        const V steeper = mulAdd(encoded - V(0.5f), V(p.slope), V(0.5f));
        return pixelOf(power2p2(clamp(steeper, V(0.0f), V(1.0f))), in->a);
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
