// A patch laid over a background through a mask m: background + m (patch - background patch.a).
// Where m is 0 the background stays to the bit.
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
struct Heal : PremultipliedKernel<3> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    struct Record {
        float strength; ///< 1
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const Pixel<L>& patch = in[0];
        const Pixel<L>& ground = in[1];
        const L m = clamp(in[2].r, L(0.0f), L(1.0f)) * L(p.strength);
        const L cover = clamp(patch.a, L(0.0f), L(1.0f));
        return {ground.r + m * (patch.r - ground.r * cover),
                ground.g + m * (patch.g - ground.g * cover),
                ground.b + m * (patch.b - ground.b * cover),
                ground.a + m * (patch.a - ground.a * cover)};
    }
};
ORVANE_KERNEL_RUNS(Heal)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(healKernel, Heal, "heal");

CIImage HealKernels::healed(const CIImage& patch, const CIImage& background, const CIImage& mask,
                            const CGRect& extent)
{
    return applyKernel(healKernel, Parameters::of(HWY_NAMESPACE::Heal::Record{1}),
                       {{patch, background, mask}}, extent, background.isOpaque());
}

} // namespace orvane
#endif
