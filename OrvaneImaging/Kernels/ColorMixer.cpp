// Colour mixer: each pixel's hue takes a weighted mean of the eight bands' settings, the weight of
// a band falling as a square to 0 at 60 degrees from its centre. Then, in HSL of the linear values:
//   hue += 30 dh;  sat = clamp(sat (1 + ds), 0, 1);
//   l = clamp(l + 0.35 dl (1 - |2l - 1|) + 0.05 dl, 0, 1).
// A pixel whose channels differ by less than 0.02 has no hue to grade and stays as it is.
#include "Kernels.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/ColorMixer.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// Degrees, in the order of Adjustments::bands.
constexpr float centres[8] = {0, 30, 60, 120, 180, 240, 280, 320};

struct ColorMixer : PremultipliedKernel<1> {
    struct Record {
        float hue[8];
        float sat[8];
        float lum[8];
    };

    template <class L> static HWY_INLINE L modulo(L x, float y)
    {
        return x - floor(x * L(1 / y)) * L(y);
    }

    /// 0..360 for channels that differ by delta.
    template <class L> static HWY_INLINE L hueOf(const Pixel<L>& p, L largest, L delta)
    {
        const L fromRed = modulo((p.g - p.b) / delta, 6.0f);
        const L fromGreen = (p.b - p.r) / delta + L(2.0f);
        const L fromBlue = (p.r - p.g) / delta + L(4.0f);
        return L(60.0f)
            * select(equal(largest, p.r), fromRed,
                     select(equal(largest, p.g), fromGreen, fromBlue));
    }

    template <class L> struct Shift {
        L hue;
        L sat;
        L lum;
    };

    template <class L> static HWY_INLINE Shift<L> shiftAt(const Record& p, L hue)
    {
        Shift<L> sum{L(0.0f), L(0.0f), L(0.0f)};
        L weights(0.0f);
        for (int band = 0; band < 8; ++band) {
            const L straight = abs(hue - L(centres[band]));
            const L distance = min(straight, L(360.0f) - straight);
            const L reach = max(L(1.0f) - distance * L(1.0f / 60), L(0.0f));
            const L weight = reach * reach;
            weights = weights + weight;
            sum.hue = mulAdd(weight, L(p.hue[band]), sum.hue);
            sum.sat = mulAdd(weight, L(p.sat[band]), sum.sat);
            sum.lum = mulAdd(weight, L(p.lum[band]), sum.lum);
        }
        // No gap between two centres is over 60 degrees: some weight is always above 0.1.
        const L scale = L(1.0f) / max(weights, L(0.1f));
        return {sum.hue * scale, sum.sat * scale, sum.lum * scale};
    }

    /// One channel of HSL to RGB: a trapezium over the hue, in sixths of the circle.
    template <class L> static HWY_INLINE L channel(L trapezium, L chroma, L lightness)
    {
        return (clamp(trapezium, L(0.0f), L(1.0f)) - L(0.5f)) * chroma + lightness;
    }

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const L two(2.0f);
        const L largest = max(max(in->r, in->g), in->b);
        const L smallest = min(min(in->r, in->g), in->b);
        const L difference = largest - smallest;
        const auto grey = difference < L(0.02f);
        const L delta = max(difference, L(0.02f));
        const L sum = largest + smallest;
        const L l = sum * L(0.5f);
        const L room = select(l > L(0.5f), two - sum, sum);
        // Never a division by 0, which only colours beyond 0..1 could come to.
        const L sat = delta / select(abs(room) < L(1e-6f), L(1e-6f), room);
        const L hue = hueOf(*in, largest, delta);

        const Shift<L> shift = shiftAt(p, hue);
        const L sixths = modulo(hue + shift.hue * L(30.0f), 360.0f) * L(1.0f / 60);
        const L sat2 = clamp(sat * (one + shift.sat), zero, one);
        const L headroom = one - abs(l * two - one);
        const L l2 = clamp(l + shift.lum * L(0.35f) * headroom + shift.lum * L(0.05f), zero, one);
        const L chroma = (one - abs(l2 * two - one)) * sat2;
        return {select(grey, in->r, channel(abs(sixths - L(3.0f)) - one, chroma, l2)),
                select(grey, in->g, channel(two - abs(sixths - two), chroma, l2)),
                select(grey, in->b, channel(two - abs(sixths - L(4.0f)), chroma, l2)), in->a};
    }
};

ORVANE_KERNEL_RUNS(ColorMixer)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvane {

ORVANE_KERNEL(colorMixerKernel, ColorMixer, "colorMixer");

CIImage Kernels::colorMixer(const CIImage& image, const Adjustments::Bands& hue,
                            const Adjustments::Bands& sat, const Adjustments::Bands& lum)
{
    HWY_NAMESPACE::ColorMixer::Record record;
    std::copy(hue.begin(), hue.end(), record.hue);
    std::copy(sat.begin(), sat.end(), record.sat);
    std::copy(lum.begin(), lum.end(), record.lum);
    return applyKernel(colorMixerKernel, Parameters::of(record), {{image}});
}

} // namespace orvane
#endif
