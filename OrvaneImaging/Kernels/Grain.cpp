// Film grain: n = fract(sin(dot(p, (12.9898, 78.233))) 43758.5453) - 0.5 at the pixel's centre p,
// then rgb += 2 n amp max(0, 1 - 1.4 |lum - 0.5|). The pattern depends on the position alone.
#include "Kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/Grain.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Grain : PremultipliedKernel<1> {
    struct Record {
        float amp;
    };

    /// sin(x) to 2e-7 for |x| below 1.6 million, in operations that every instruction set rounds
    /// alike: the factor of 43758 would turn the last bit of a fused one into another grain. Pi is
    /// taken off in parts of 5 bits, so that each product with a count of up to 19 bits is exact;
    /// then Taylor's series to the 11th power over a quarter turn to each side.
    template <class L> static HWY_INLINE L sine(L x)
    {
        const L halfTurns = floor(x * L(0.318309886f) + L(0.5f));
        L r = x;
        for (const float part :
             {3.125f, 0x1.1p-6f, -0x1.3p-17f, 0x1.4p-23f, 0x1.1p-29f, 0x1.7p-38f})
            r = r - halfTurns * L(part);
        const L r2 = r * r;
        L series = r2 * L(-2.50521084e-8f) + L(2.75573192e-6f);
        series = series * r2 + L(-1.98412698e-4f);
        series = series * r2 + L(8.33333333e-3f);
        series = series * r2 + L(-1.66666667e-1f);
        const L value = r + r * r2 * series;
        const L odd = halfTurns - floor(halfTurns * L(0.5f)) * L(2.0f);
        return select(odd > L(0.5f), -value, value);
    }

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in,
                                     Place<L> place)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const L wave = sine(place.x * L(12.9898f) + place.y * L(78.233f)) * L(43758.5453f);
        const L noise = wave - floor(wave) - L(0.5f);
        const L lum = luminance(in->r, in->g, in->b);
        const L weight = max(zero, one - abs(lum - L(0.5f)) * L(1.4f));
        const L shift = noise * L(2.0f) * L(p.amp) * weight;
        return {clamp(in->r + shift, zero, one), clamp(in->g + shift, zero, one),
                clamp(in->b + shift, zero, one), in->a};
    }
};

ORVANE_KERNEL_RUNS(Grain)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(grainKernel, Grain, "grain");

CIImage Kernels::grain(const CIImage& image, double amp)
{
    using Record = HWY_NAMESPACE::Grain::Record;
    return applyKernel(grainKernel, Parameters::of(Record{float(amp)}), {{image}});
}

} // namespace orvane
#endif
