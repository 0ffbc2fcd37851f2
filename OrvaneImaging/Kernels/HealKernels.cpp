// A patch laid over a background through a mask m gives background (1 - m patch.a) + m patch; the
// change is m (patch - background patch.a). Changes of several spots add up in any order, so a tile
// computes those that touch it and no others.
#include "HealKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/HealKernels.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// Inputs: patch, background, mask.
struct HealChange : PremultipliedKernel<3> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    struct Record {
        float strength; ///< 1
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const Pixel<L>& patch = in[0];
        const Pixel<L>& background = in[1];
        const L m = clamp(in[2].r, L(0.0f), L(1.0f)) * L(p.strength);
        const L cover = clamp(patch.a, L(0.0f), L(1.0f));
        return {m * (patch.r - background.r * cover), m * (patch.g - background.g * cover),
                m * (patch.b - background.b * cover), m * (patch.a - background.a * cover)};
    }
};
ORVANE_KERNEL_RUNS(HealChange)

struct SumOfFour : PremultipliedKernel<4> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    static constexpr Cover cover = Cover::Sum;
    struct Record {
        float unused;
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        return {in[0].r + in[1].r + in[2].r + in[3].r, in[0].g + in[1].g + in[2].g + in[3].g,
                in[0].b + in[1].b + in[2].b + in[3].b, in[0].a + in[1].a + in[2].a + in[3].a};
    }
};
ORVANE_KERNEL_RUNS(SumOfFour)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(healChangeKernel, HealChange, "healChange");
ORVANE_KERNEL(sumOfFourKernel, SumOfFour, "sumOfFour");

CIImage HealKernels::change(const CIImage& patch, const CIImage& background, const CIImage& mask,
                            const CGRect& extent)
{
    return applyKernel(healChangeKernel, Parameters::of(HWY_NAMESPACE::HealChange::Record{1}),
                       {{patch, background, mask}}, extent, false);
}

CIImage HealKernels::sum(const std::array<CIImage, 4>& images, const CGRect& extent, bool opaque)
{
    return applyKernel(sumOfFourKernel, Parameters::of(HWY_NAMESPACE::SumOfFour::Record{0}), images,
                       extent, opaque);
}

} // namespace orvane
#endif
