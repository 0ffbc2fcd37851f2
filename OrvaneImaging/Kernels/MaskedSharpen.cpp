// Masked sharpening: detail = |lum(original - blurred)|, then mix(original, sharpened,
// smoothstep(threshold, threshold + 0.03, detail)) in all four channels.
#include "Kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/MaskedSharpen.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct MaskedSharpen : PremultipliedKernel<3> {
    struct Record {
        float threshold;
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const Pixel<L>& original = in[0];
        const Pixel<L>& sharpened = in[1];
        const Pixel<L>& blurred = in[2];
        const L detail =
            abs(luminance(original.r - blurred.r, original.g - blurred.g, original.b - blurred.b));
        const L m = smoothstep(L(p.threshold), L(p.threshold + 0.03f), detail);
        return {mix(original.r, sharpened.r, m), mix(original.g, sharpened.g, m),
                mix(original.b, sharpened.b, m), mix(original.a, sharpened.a, m)};
    }
};

ORVANE_KERNEL_RUNS(MaskedSharpen)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(maskedSharpenKernel, MaskedSharpen, "maskedSharpen");

CIImage Kernels::maskedSharpen(const CIImage& original, const CIImage& sharpened,
                               const CIImage& blurred, double threshold)
{
    // The blurred image only measures: its faded border takes no opacity away.
    const bool opaque = original.isOpaque() && sharpened.isOpaque();
    using Record = HWY_NAMESPACE::MaskedSharpen::Record;
    return applyKernel(maskedSharpenKernel, Parameters::of(Record{float(threshold)}),
                       {{original, sharpened, blurred}}, original.extent(), opaque);
}

} // namespace orvane
#endif
