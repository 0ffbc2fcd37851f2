// The masks of the lights, and the one program that applies their sum. In the picture's place, with
// b, w, c, s the summed amounts and all arithmetic on x = max(rgb, 0)^0.4545:
//   x = x (1 + clamp(b, -0.9, 4)) + (0.125 w, 0, -0.125 w)
//   x = 0.5 + (x - 0.5) (1 + clamp(c, -0.9, 2))
//   x = lum + (x - lum) (1 + clamp(s, -1, 2))
//   rgb = clamp(x, 0, 1)^2.2
#include "LightKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/LightKernels.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

template <class L> HWY_INLINE Pixel<L> scaled(const float* amounts, L weight)
{
    return {L(amounts[0]) * weight, L(amounts[1]) * weight, L(amounts[2]) * weight,
            L(amounts[3]) * weight};
}

struct RadialLight : PremultipliedKernel<0> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    struct Record {
        float centerX;
        float centerY;
        float inverseRadius;
        float core;
        float fall; ///< 1 / (1 - core)
        float invert;
        float amounts[4];
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>*, Place<L> place)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const L dx = place.x - L(p.centerX);
        const L dy = place.y - L(p.centerY);
        const L t = sqrt(dx * dx + dy * dy) * L(p.inverseRadius);
        const L f = (one - t) * L(p.fall);
        const L eased = f * f * (L(3.0f) - L(2.0f) * f);
        const L weight = select(t >= one, zero, select(t <= L(p.core), one, eased));
        return scaled(p.amounts, mix(weight, one - weight, L(p.invert)));
    }
};
ORVANE_KERNEL_RUNS(RadialLight)

struct LinearLight : PremultipliedKernel<0> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    struct Record {
        float centerX;
        float centerY;
        float inverseReach;
        float cosine;
        float sine;
        float feather;
        float invert;
        float amounts[4];
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>*, Place<L> place)
    {
        const L one(1.0f);
        const L along =
            (place.x - L(p.centerX)) * L(p.cosine) - (place.y - L(p.centerY)) * L(p.sine);
        const L w = clamp((along * L(p.inverseReach) + one) * L(0.5f), L(0.0f), one);
        const L eased = w * w * (L(3.0f) - L(2.0f) * w);
        const L weight = mix(w, eased, L(p.feather));
        return scaled(p.amounts, mix(weight, one - weight, L(p.invert)));
    }
};
ORVANE_KERNEL_RUNS(LinearLight)

struct PaintedLight : PremultipliedKernel<1> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    struct Record {
        float amounts[4];
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        return scaled(p.amounts, in->r);
    }
};
ORVANE_KERNEL_RUNS(PaintedLight)

/// Inputs: the picture, the amounts.
struct ApplyLights : PremultipliedKernel<2> {
    struct Record {
        float warmthReach; ///< 0.125
    };

    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const Pixel<L>& s = in[0];
        const L bright = in[1].r;
        const L warm = in[1].g;
        const L contrast = in[1].b;
        const L sat = in[1].a;
        const auto isLit = abs(bright) + abs(warm) + abs(contrast) + abs(sat) >= L(0.001f);
        // Most lights leave much of a picture alone.
        if (!anyTrue(isLit))
            return s;

        using V = Three<L>;
        const L factor = one + clamp(bright, L(-0.9f), L(4.0f));
        const L shift = warm * L(p.warmthReach);
        V c = power0p4545(max(s.rgb(), V(0.0f))) * factor + V(shift, zero, -shift);
        const V half(0.5f);
        c = half + (c - half) * (one + clamp(contrast, L(-0.9f), L(2.0f)));
        const L lum = luminance(c.r, c.g, c.b);
        const V middle(lum, lum, lum);
        c = middle + (c - middle) * (one + clamp(sat, L(-1.0f), L(2.0f)));
        const V lit = power2p2(clamp(c, V(0.0f), V(1.0f)));
        return {select(isLit, lit.r, s.r), select(isLit, lit.g, s.g), select(isLit, lit.b, s.b),
                s.a};
    }
};
ORVANE_KERNEL_RUNS(ApplyLights)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include <algorithm>

namespace orvane {

ORVANE_KERNEL(radialLightKernel, RadialLight, "radialLight");
ORVANE_KERNEL(linearLightKernel, LinearLight, "linearLight");
ORVANE_KERNEL(paintedLightKernel, PaintedLight, "paintedLight");
ORVANE_KERNEL(applyLightsKernel, ApplyLights, "applyLights");

namespace {

/// Finite for a length of 0 too.
float inverse(double length)
{
    return float(1 / std::max(length, 1e-30));
}

} // namespace

CIImage LightKernels::radial(const CGRect& extent, CGPoint center, double radius, double core,
                             bool invert, const Amounts& amounts)
{
    HWY_NAMESPACE::RadialLight::Record record{float(center.x),
                                              float(center.y),
                                              inverse(radius),
                                              float(core),
                                              float(1 / std::max(1 - core, 1e-6)),
                                              invert ? 1.0f : 0.0f,
                                              {}};
    std::copy(amounts.begin(), amounts.end(), record.amounts);
    return applyKernel(radialLightKernel, Parameters::of(record), {}, extent, false);
}

CIImage LightKernels::linear(const CGRect& extent, CGPoint center, double reach, double cosine,
                             double sine, double feather, bool invert, const Amounts& amounts)
{
    HWY_NAMESPACE::LinearLight::Record record{
        float(center.x), float(center.y), inverse(reach),       float(cosine),
        float(sine),     float(feather),  invert ? 1.0f : 0.0f, {}};
    std::copy(amounts.begin(), amounts.end(), record.amounts);
    return applyKernel(linearLightKernel, Parameters::of(record), {}, extent, false);
}

CIImage LightKernels::painted(const CIImage& mask, const Amounts& amounts)
{
    HWY_NAMESPACE::PaintedLight::Record record;
    std::copy(amounts.begin(), amounts.end(), record.amounts);
    return applyKernel(paintedLightKernel, Parameters::of(record), {{mask}});
}

CIImage LightKernels::lit(const CIImage& image, const CIImage& amounts)
{
    // The amounts' alpha is no transparency: the result is as opaque as the picture.
    const HWY_NAMESPACE::ApplyLights::Record record{0.125f};
    return applyKernel(applyLightsKernel, Parameters::of(record), {{image, amounts}},
                       image.extent(), image.isOpaque());
}

} // namespace orvane
#endif
