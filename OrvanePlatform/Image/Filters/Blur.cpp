// gaussianBlur, and the operations made of it.
//
//   unsharpMask          out = in + intensity (in - blur(in))      premultiplied, four channels
//   bloom                b = intensity blur(in);  out = in + b (1 - clamp(in, 0, 1)), alpha kept
//   maskedVariableBlur   sigma = radius m at the pixel, from blurs at R/8, R/4, R/2, 3R/4 and R:
//                        between levels a < b, t = (sigma^2 - a^2) / (b^2 - a^2)
//
// sigma is the radius throughout. All but the plain blur see their input with its edges continued
// and keep its extent; the mask's m is the clamped luma of its stored values.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/Blur.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Unsharp : PremultipliedKernel<2> {
    struct Record {
        float intensity;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L k(p.intensity);
        return {mulAdd(in[0].r - in[1].r, k, in[0].r), mulAdd(in[0].g - in[1].g, k, in[0].g),
                mulAdd(in[0].b - in[1].b, k, in[0].b), mulAdd(in[0].a - in[1].a, k, in[0].a)};
    }
};
ORVANE_KERNEL_RUNS(Unsharp)

struct Bloom : PremultipliedKernel<2> {
    struct Record {
        float intensity;
    };
    template <class L> static HWY_INLINE L glow(L base, L blurred, L intensity)
    {
        return mulAdd(blurred * intensity, L(1.0f) - clamp(base, L(0.0f), L(1.0f)), base);
    }
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L k(p.intensity);
        return {glow(in[0].r, in[1].r, k), glow(in[0].g, in[1].g, k), glow(in[0].b, in[1].b, k),
                in[0].a};
    }
};
ORVANE_KERNEL_RUNS(Bloom)

/// Of the full radius: the image itself and the five blurs.
constexpr float blurLevels[] = {0.0f, 0.125f, 0.25f, 0.5f, 0.75f, 1.0f};

// Inputs: the image, five blurs, the mask.
struct VariableBlur : PremultipliedKernel<7> {
    struct Record {
        float unused;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        const L m = clamp(luma(in[6].r, in[6].g, in[6].b), L(0.0f), L(1.0f));
        // At the ends one level decides alone, exactly; most of a picture lies there.
        if (!anyTrue(m > L(0.0f)))
            return in[0];
        if (!anyTrue(m < L(1.0f)))
            return in[5];
        Pixel<L> low = in[0];
        Pixel<L> high = in[1];
        L t(0.0f);
        for (int n = 0; n < 5; ++n) {
            const float from = blurLevels[n] * blurLevels[n];
            const float to = blurLevels[n + 1] * blurLevels[n + 1];
            const auto beyond = m > L(blurLevels[n]);
            t = select(beyond, min((m * m - L(from)) * L(1.0f / (to - from)), L(1.0f)), t);
            low = chosen(beyond, in[n], low);
            high = chosen(beyond, in[n + 1], high);
        }
        const Pixel<L> between{mix(low.r, high.r, t), mix(low.g, high.g, t), mix(low.b, high.b, t),
                               mix(low.a, high.a, t)};
        return chosen(m > L(0.0f), chosen(m < L(1.0f), between, in[5]), in[0]);
    }

private:
    template <class L, class Mask>
    static HWY_INLINE Pixel<L> chosen(Mask which, const Pixel<L>& yes, const Pixel<L>& no)
    {
        return {select(which, yes.r, no.r), select(which, yes.g, no.g), select(which, yes.b, no.b),
                select(which, yes.a, no.a)};
    }
};
ORVANE_KERNEL_RUNS(VariableBlur)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>

namespace orvane {

ORVANE_KERNEL(unsharpKernel, Unsharp, "unsharpMask");
ORVANE_KERNEL(bloomKernel, Bloom, "bloom");

/// Where the mask is brighter than the level after one, that one has no say; where it is white,
/// only the last has. (Nor have blurs where it is black. But rows are drawn from the top on, and a
/// level left out amid the picture would have to be caught up with, from rows held until then.)
static PixelRect variableBlurDeciding(const Node& node, size_t index, const PixelRect& rect)
{
    constexpr size_t last = 5;
    constexpr size_t mask = 6;
    if (index == last || index == mask)
        return rect;
    const auto matters = [&](const PixelRect& part) {
        const float darkest = greyRange(*node.inputs[mask], part).low;
        return darkest < 1 && darkest <= HWY_NAMESPACE::blurLevels[index + 1];
    };
    if (!matters(rect))
        return {};
    PixelRect rows = rect;
    for (int step = rows.height() / 2; step > 0;) {
        if (step < rows.height() && !matters({rows.x0, rows.y0, rows.x1, rows.y0 + step}))
            rows.y0 += step;
        else
            step /= 2;
    }
    for (int step = rows.height() / 2; step > 0;) {
        if (step < rows.height() && !matters({rows.x0, rows.y1 - step, rows.x1, rows.y1}))
            rows.y1 -= step;
        else
            step /= 2;
    }
    return rows;
}
ORVANE_KERNEL(variableBlurKernel, VariableBlur, "maskedVariableBlur", variableBlurDeciding);

namespace {

/// Beyond a few times the picture's size a blur is one colour; a radius comes unchecked from an
/// edit file, and must not cost what it says.
float largestUsefulSigma(const Node& node)
{
    const Node& picture = node.as<ClampNode>() ? *node.inputs.front() : node;
    constexpr float largest = 4096;
    if (picture.extent.infinite)
        return largest;
    const PixelRect& r = picture.extent.rect;
    return std::min(largest, 4 * float(std::max(r.width(), r.height())));
}

/// The blur with the input's edges continued, over the input's own extent.
CIImage blurWithin(const CIImage& input, double radius)
{
    return CIFilter::gaussianBlur(input.clampedToExtent(), radius).cropped(input.extent());
}

} // namespace

CIImage CIFilter::gaussianBlur(const CIImage& input, double radius)
{
    if (!(float(radius) > 0) || !std::isfinite(radius) || input.isEmpty())
        return input;
    const NodePtr& node = input.node();
    const float sigma = std::min(float(radius), largestUsefulSigma(*node));
    const Extent extent = node->extent.infinite
        ? node->extent
        : Extent::of(node->extent.rect.grown(gaussianBorder(sigma)));
    return CIImage(
        makeNode(GaussianNode{sigma}, {node}, extent, node->opaque && node->extent.infinite));
}

CIImage CIFilter::unsharpMask(const CIImage& input, double radius, double intensity)
{
    if (!(float(radius) > 0) || float(intensity) == 0 || input.isEmpty())
        return input;
    const CIImage inputs[] = {input, blurWithin(input, radius)};
    return applyKernel(unsharpKernel,
                       Parameters::of(HWY_NAMESPACE::Unsharp::Record{float(intensity)}), inputs);
}

CIImage CIFilter::bloom(const CIImage& input, double radius, double intensity)
{
    if (!(float(radius) > 0) || float(intensity) == 0 || input.isEmpty())
        return input;
    const CIImage inputs[] = {input, blurWithin(input, radius)};
    return applyKernel(bloomKernel, Parameters::of(HWY_NAMESPACE::Bloom::Record{float(intensity)}),
                       inputs);
}

CIImage CIFilter::maskedVariableBlur(const CIImage& input, const CIImage& mask, double radius)
{
    if (!(float(radius) > 0) || input.isEmpty() || mask.isEmpty())
        return input;
    const CIImage inputs[] = {input,
                              blurWithin(input, radius * 0.125),
                              blurWithin(input, radius * 0.25),
                              blurWithin(input, radius * 0.5),
                              blurWithin(input, radius * 0.75),
                              blurWithin(input, radius),
                              mask};
    return applyKernel(variableBlurKernel, Parameters::of(HWY_NAMESPACE::VariableBlur::Record{0}),
                       inputs, input.extent(), input.isOpaque());
}

} // namespace orvane

#endif
