// vibrance: saturation where little is, on straight colour; luma is kept and greys never change.
//
//   M, m = largest and least of r, g, b;  q = clamp(m / M, 0, 1)^(1/2.2), 1 minus the perceived
//   saturation.  A pixel with M <= 0 is left alone; so is one with m <= 0, where q = 0.
//   skin = max(0, 1 - |F - 0.3| / 0.3), F = (g - b) / (r - b), where r >= g >= b and r > b, else 0
//   k = 1 + amount q (1 - skin / 2) for amount > 0, 1 + amount q for amount < 0, at least 0
//   k = min(k, Y / (Y - m)) for k > 1, m >= 0, Y > m: a boost drives no channel below 0
//   c' = Y + (c - Y) k,  Y = 0.2125 r + 0.7154 g + 0.0721 b

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/Vibrance.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Vibrance : StraightKernel<1> {
    struct Record {
        float amount;
        float skinShare; ///< how much of the amount skin is spared: 0.5 for a boost, else 0
    };
    /// 1 at the hue of skin, falling to 0 at red and halfway to yellow and beyond.
    template <class L> static HWY_INLINE L skin(const Pixel<L>& c)
    {
        const L zero(0.0f);
        const auto warm = (c.r >= c.g) & (c.g >= c.b) & (c.r > c.b);
        const L hue = (c.g - c.b) / select(warm, c.r - c.b, L(1.0f));
        const L near = mulAdd(abs(hue - L(0.3f)), L(-1.0f / 0.3f), L(1.0f));
        return select(warm, max(near, zero), zero);
    }
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const Pixel<L>& c = in[0];
        const L most = max(max(c.r, c.g), c.b);
        const L least = min(min(c.r, c.g), c.b);
        const L y = luma(c.r, c.g, c.b);
        const auto lit = most > zero;
        const L ratio = select(lit, clamp(least / select(lit, most, one), zero, one), zero);
        const L pale = power1Over2p2(ratio);
        const L spared = mulAdd(skin(c), L(-p.skinShare), one);
        L k = max(mulAdd(L(p.amount) * pale, spared, one), zero);
        // The bound is at least 1, so it holds boosts alone.
        const auto bounded = (least >= zero) & (y > least);
        k = select(bounded, min(k, y / select(bounded, y - least, one)), k);
        // The bounded channel lands on 0 but for a rounding, which must not leave it below.
        const L lowest = select(bounded, zero, L(-3e38f));
        return {max(mulAdd(c.r - y, k, y), lowest), max(mulAdd(c.g - y, k, y), lowest),
                max(mulAdd(c.b - y, k, y), lowest), c.a};
    }
};
ORVANE_KERNEL_RUNS(Vibrance)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <cmath>

namespace orvane {

ORVANE_KERNEL(vibranceKernel, Vibrance, "vibrance");

CIImage CIFilter::vibrance(const CIImage& input, double amount)
{
    const auto narrowed = float(amount);
    if (narrowed == 0 || !std::isfinite(narrowed))
        return input;
    const HWY_NAMESPACE::Vibrance::Record record{narrowed, narrowed > 0 ? 0.5f : 0.0f};
    return applyKernel(vibranceKernel, Parameters::of(record), {{input}});
}

} // namespace orvane

#endif
