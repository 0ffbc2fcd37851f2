// Two or three images, pixel by pixel, on the stored values in all four channels; s is the input,
// d the background.
//
//   dissolveTransition      s + (target - s) clamp(time, 0, 1)
//   screenBlendMode         d + s (1 - clamp(d, 0, 1)): over-range highlights never turn dark
//   maximumCompositing      max(s, d); a value that is no number gives way to the other
//   additionCompositing     s + d, alpha too, nothing held: images may carry amounts
//   sourceOverCompositing   s + d (1 - clamp(s.a, 0, 1))
//   blendWithMask           m = clamp(luma(mask), 0, 1);  s m + d (1 - m clamp(s.a, 0, 1))
//
// The extent is the union of s and d. A mask's values are taken as stored, so its alpha counts
// once; outside the mask m is 0.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/Compositing.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// The record of a program without numbers.
struct NoNumbers {
    float unused = 0;
};

struct Dissolve : PremultipliedKernel<2> {
    struct Record {
        float time;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L t(p.time);
        return {mix(in[0].r, in[1].r, t), mix(in[0].g, in[1].g, t), mix(in[0].b, in[1].b, t),
                mix(in[0].a, in[1].a, t)};
    }
};
ORVANE_KERNEL_RUNS(Dissolve)

struct Screen : PremultipliedKernel<2> {
    using Record = NoNumbers;
    template <class L> static HWY_INLINE L channel(L s, L d)
    {
        return mulAdd(s, L(1.0f) - clamp(d, L(0.0f), L(1.0f)), d);
    }
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        return {channel(in[0].r, in[1].r), channel(in[0].g, in[1].g), channel(in[0].b, in[1].b),
                channel(in[0].a, in[1].a)};
    }
};
ORVANE_KERNEL_RUNS(Screen)

struct Maximum : PremultipliedKernel<2> {
    using Record = NoNumbers;
    template <class L> static HWY_INLINE L channel(L s, L d)
    {
        return select(equal(s, s), select(equal(d, d), max(s, d), s), d);
    }
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        return {channel(in[0].r, in[1].r), channel(in[0].g, in[1].g), channel(in[0].b, in[1].b),
                channel(in[0].a, in[1].a)};
    }
};
ORVANE_KERNEL_RUNS(Maximum)

struct Addition : PremultipliedKernel<2> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    using Record = NoNumbers;
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        return {in[0].r + in[1].r, in[0].g + in[1].g, in[0].b + in[1].b, in[0].a + in[1].a};
    }
};
ORVANE_KERNEL_RUNS(Addition)

struct SourceOver : PremultipliedKernel<2> {
    using Record = NoNumbers;
    static constexpr Cover cover = Cover::FirstOverSecond;
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        const L shown = L(1.0f) - clamp(in[0].a, L(0.0f), L(1.0f));
        return {mulAdd(in[1].r, shown, in[0].r), mulAdd(in[1].g, shown, in[0].g),
                mulAdd(in[1].b, shown, in[0].b), mulAdd(in[1].a, shown, in[0].a)};
    }
};
ORVANE_KERNEL_RUNS(SourceOver)

// Inputs: the image, the background, the mask.
struct MaskedBlend : PremultipliedKernel<3> {
    using Record = NoNumbers;
    static constexpr Cover cover = Cover::FirstWithinMask;
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const L one(1.0f);
        const L m = clamp(luma(in[2].r, in[2].g, in[2].b), zero, one);
        const L shown = one - m * clamp(in[0].a, zero, one);
        return {mulAdd(in[0].r, m, in[1].r * shown), mulAdd(in[0].g, m, in[1].g * shown),
                mulAdd(in[0].b, m, in[1].b * shown), mulAdd(in[0].a, m, in[1].a * shown)};
    }
};
ORVANE_KERNEL_RUNS(MaskedBlend)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <algorithm>

namespace orvane {

ORVANE_KERNEL(dissolveKernel, Dissolve, "dissolveTransition");
ORVANE_KERNEL(screenKernel, Screen, "screenBlendMode");
static GreyRange maximumRange(const Node& node, const PixelRect& rect)
{
    const GreyRange a = greyRange(*node.inputs[0], rect);
    const GreyRange b = greyRange(*node.inputs[1], rect);
    return {std::max(a.low, b.low), std::max(a.high, b.high)};
}
ORVANE_KERNEL(maximumKernel, Maximum, "maximumCompositing", nullptr, maximumRange);
ORVANE_KERNEL(additionKernel, Addition, "additionCompositing");
ORVANE_KERNEL(sourceOverKernel, SourceOver, "sourceOverCompositing");
ORVANE_KERNEL(maskedBlendKernel, MaskedBlend, "blendWithMask");

namespace {

const Extent& extentOf(const CIImage& image)
{
    return image.node()->extent;
}

bool opaqueOver(const CIImage& image, const Extent& extent)
{
    return image.isOpaque() && extentOf(image).contains(extent);
}

Parameters noNumbers()
{
    return Parameters::of(HWY_NAMESPACE::NoNumbers{});
}

} // namespace

CIImage CIFilter::dissolveTransition(const CIImage& input, const CIImage& target, double time)
{
    // A time that is no number shows the input.
    const float t = time > 0 ? float(std::min(time, 1.0)) : 0.0f;
    if (input.isSame(target))
        return input;
    if (t == 0 && extentOf(input).contains(extentOf(target)))
        return input;
    if (t == 1 && extentOf(target).contains(extentOf(input)))
        return target.settingProperties(input.properties());
    return applyKernel(dissolveKernel, Parameters::of(HWY_NAMESPACE::Dissolve::Record{t}),
                       {{input, target}});
}

CIImage CIFilter::screenBlendMode(const CIImage& input, const CIImage& background)
{
    if (input.isEmpty())
        return background;
    if (background.isEmpty())
        return input;
    const Extent extent = extentOf(input).united(extentOf(background));
    // Over an alpha of 1 nothing is added to it.
    return applyKernel(screenKernel, noNumbers(), {{input, background}}, extent.cgRect(),
                       opaqueOver(background, extent));
}

CIImage CIFilter::maximumCompositing(const CIImage& input, const CIImage& background)
{
    return applyKernel(maximumKernel, noNumbers(), {{input, background}});
}

CIImage CIFilter::additionCompositing(const CIImage& input, const CIImage& background)
{
    if (input.isEmpty())
        return background;
    if (background.isEmpty())
        return input;
    return applyKernel(additionKernel, noNumbers(), {{input, background}});
}

CIImage CIFilter::sourceOverCompositing(const CIImage& input, const CIImage& background)
{
    if (input.isEmpty())
        return background;
    const Extent extent = extentOf(input).united(extentOf(background));
    if (background.isEmpty() || opaqueOver(input, extent))
        return input;
    return applyKernel(sourceOverKernel, noNumbers(), {{input, background}}, extent.cgRect(),
                       opaqueOver(background, extent));
}

CIImage CIFilter::blendWithMask(const CIImage& input, const CIImage& background,
                                const CIImage& mask)
{
    const Extent extent = extentOf(input).united(extentOf(background));
    const bool nothingToShow = input.isEmpty() || mask.isEmpty();
    if (nothingToShow && extentOf(background).contains(extent))
        return background;
    return applyKernel(maskedBlendKernel, noNumbers(), {{input, background, mask}}, extent.cgRect(),
                       opaqueOver(background, extent));
}

} // namespace orvane

#endif
