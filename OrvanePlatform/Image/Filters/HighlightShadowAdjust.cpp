// highlightShadowAdjust (radius 0), on straight colour:
//
//   Y = 0.2126 r + 0.7152 g + 0.0722 b;  p = clamp(enc(max(Y, 0)), 0, 1)
//   e = 2 s (1 - p)^2 + H;  H = (h - 1) p^3 for h < 1, 3 (h - 1) p^2 (1 - p) for h > 1
//   rgb' = rgb * 2^e
//
// One gain for all three channels keeps hue and saturation; the exponent's shape keeps the tone
// curve rising for every setting. h and s are the highlight and the shadow amount.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/HighlightShadowAdjust.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct HighlightShadow : StraightKernel<1> {
    struct Record {
        float shadow; ///< 2 s
        float recover; ///< h - 1 below 1, else 0
        float brighten; ///< 3 (h - 1) above 1, else 0
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L one(1.0f);
        const L y = luminance(in[0].r, in[0].g, in[0].b);
        // Clamping ahead of the encoding is the same, its ends being fixed points.
        const L tone = encodeSrgbPositive(clamp(y, L(0.0f), one));
        const L rest = one - tone;
        const L highlight = mulAdd(L(p.recover), tone, L(p.brighten) * rest);
        const L gain = exp2(mulAdd(highlight, tone * tone, L(p.shadow) * (rest * rest)));
        return {in[0].r * gain, in[0].g * gain, in[0].b * gain, in[0].a};
    }
};
ORVANE_KERNEL_RUNS(HighlightShadow)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>

namespace orvane {

ORVANE_KERNEL(highlightShadowKernel, HighlightShadow, "highlightShadowAdjust");

CIImage CIFilter::highlightShadowAdjust(const CIImage& input, double highlightAmount,
                                        double shadowAmount)
{
    const double h = std::clamp(double(float(highlightAmount)), 0.0, 2.0);
    const double s = std::clamp(double(float(shadowAmount)), -1.0, 1.0);
    if ((h == 1 && s == 0) || std::isnan(h) || std::isnan(s))
        return input;
    const HWY_NAMESPACE::HighlightShadow::Record record{float(2 * s), float(std::min(h - 1, 0.0)),
                                                        float(3 * std::max(h - 1, 0.0))};
    return applyKernel(highlightShadowKernel, Parameters::of(record), {{input}});
}

} // namespace orvane

#endif
