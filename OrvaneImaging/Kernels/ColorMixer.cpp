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

/// Hues are counted in sixths of the circle. The bands, in the order of Adjustments::bands; those
/// about red from -3 to 3, so that no distance is taken across the circle's seam.
struct Band {
    float centre;
    bool aboutRed;
};
constexpr Band bands[8] = {{0, true},  {0.5f, true}, {1, false},           {2, false},
                           {3, false}, {4, false},   {280.0f / 60, false}, {-40.0f / 60, true}};

struct ColorMixer : PremultipliedKernel<1> {
    struct Record {
        float hue[8];
        float sat[8];
        float lum[8];
        int moves[8]; ///< not 0 for a band with a setting
    };

    /// -1..5 for channels that differ; scale is one over their difference.
    template <class L> static HWY_INLINE L hueOf(const Pixel<L>& p, L largest, L scale)
    {
        const auto red = equal(largest, p.r);
        const auto green = equal(largest, p.g);
        const L difference = select(red, p.g - p.b, select(green, p.b - p.r, p.r - p.g));
        const L start = select(red, L(0.0f), select(green, L(2.0f), L(4.0f)));
        return mulAdd(difference, scale, start);
    }

    template <class L> struct Shift {
        L hue;
        L sat;
        L lum;
    };

    /// hue 0..6.
    template <class L> static HWY_INLINE Shift<L> shiftAt(const Record& p, L hue)
    {
        const L one(1.0f);
        const L aboutRed = select(hue > L(3.0f), hue - L(6.0f), hue);
        Shift<L> sum{L(0.0f), L(0.0f), L(0.0f)};
        L weights(0.0f);
        for (int band = 0; band < 8; ++band) {
            const L distance = abs((bands[band].aboutRed ? aboutRed : hue) - L(bands[band].centre));
            const L reach = max(one - distance, L(0.0f));
            weights = mulAdd(reach, reach, weights);
            if (p.moves[band] == 0)
                continue;
            const L weight = reach * reach;
            sum.hue = mulAdd(weight, L(p.hue[band]), sum.hue);
            sum.sat = mulAdd(weight, L(p.sat[band]), sum.sat);
            sum.lum = mulAdd(weight, L(p.lum[band]), sum.lum);
        }
        // No gap between two centres is over 60 degrees: some weight is always above 0.1.
        const L scale = one / max(weights, L(0.1f));
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
        const L held = select(abs(room) < L(1e-6f), L(1e-6f), room);
        // One division for both: divisions are the most of this program's time.
        const L inverse = one / (delta * held);
        const L sat = delta * (delta * inverse);
        const L turned = hueOf(*in, largest, held * inverse);
        const L hue = select(turned < zero, turned + L(6.0f), turned);

        const Shift<L> shift = shiftAt(p, hue);
        const L moved = mulAdd(shift.hue, L(0.5f), hue);
        const L sixths = moved - floor(moved * L(1.0f / 6)) * L(6.0f);
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
    for (size_t i = 0; i < 8; ++i)
        record.moves[i] = hue[i] != 0 || sat[i] != 0 || lum[i] != 0;
    return applyKernel(colorMixerKernel, Parameters::of(record), {{image}});
}

} // namespace orvane
#endif
