// vignetteEffect: with t = |p - center| / radius at the pixel's centre p and hw = 0.5 + falloff,
//
//   x = clamp((t - (1 - hw)) / (2 hw), 0, 1);  ramp = x^3 (x (6 x - 15) + 10)
//   rgb * dec(1 - intensity ramp), alpha kept
//
// so with a falloff of 0.5 the ramp runs from the centre to two radii. dec is the sRGB decoding:
// the dimming is even to the eye. A negative intensity lightens by the same formula.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/Vignette.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Vignette : PremultipliedKernel<1> {
    struct Record {
        float center[2];
        float slope; ///< growth of x for each pixel outwards: 1 / (radius 2 hw)
        float start; ///< x at the centre: (hw - 1) / (2 hw)
        float intensity;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in,
                                     Place<L> place)
    {
        const L dx = place.x - L(p.center[0]);
        const L dy = place.y - L(p.center[1]);
        const L distance = sqrt(dx * dx + dy * dy);
        const L x = clamp(mulAdd(distance, L(p.slope), L(p.start)), L(0.0f), L(1.0f));
        const L ramp = x * x * x * mulAdd(x, mulAdd(x, L(6.0f), L(-15.0f)), L(10.0f));
        const L factor = decodeSrgb(L(1.0f) - L(p.intensity) * ramp);
        return {in->r * factor, in->g * factor, in->b * factor, in->a};
    }
};
ORVANE_KERNEL_RUNS(Vignette)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>

namespace orvane {

ORVANE_KERNEL(vignetteKernel, Vignette, "vignetteEffect");

CIImage CIFilter::vignetteEffect(const CIImage& input, CGPoint center, double radius,
                                 double intensity, double falloff)
{
    const bool numbers = std::isfinite(center.x) && std::isfinite(center.y) && !std::isnan(radius)
        && !std::isnan(intensity) && !std::isnan(falloff);
    if (!numbers || float(intensity) == 0 || input.isEmpty())
        return input;
    const double halfWidth = 0.5 + std::clamp(falloff, 0.0, 1.0);
    // Without a radius the ramp is over next to the centre.
    const double slope = radius > 0 ? std::min(1 / (radius * 2 * halfWidth), 1e30) : 1e30;
    const HWY_NAMESPACE::Vignette::Record record{{float(center.x), float(center.y)},
                                                 float(slope),
                                                 float((halfWidth - 1) / (2 * halfWidth)),
                                                 float(std::clamp(intensity, -1.0, 1.0))};
    return applyKernel(vignetteKernel, Parameters::of(record), {{input}});
}

} // namespace orvane

#endif
