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

// Inputs: the image, five blurs, the mask.
struct VariableBlur : PremultipliedKernel<7> {
    struct Record {
        float unused;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record&, const float*, const Pixel<L>* in, Place<L>)
    {
        constexpr float levels[] = {0.0f, 0.125f, 0.25f, 0.5f, 0.75f, 1.0f};
        const L m = clamp(luma(in[6].r, in[6].g, in[6].b), L(0.0f), L(1.0f));
        Pixel<L> out = in[0];
        for (int n = 0; n < 5; ++n) {
            const float low = levels[n] * levels[n];
            const float high = levels[n + 1] * levels[n + 1];
            const L t = min((m * m - L(low)) * L(1.0f / (high - low)), L(1.0f));
            const auto inside = t > L(0.0f);
            out.r = select(inside, mix(in[n].r, in[n + 1].r, t), out.r);
            out.g = select(inside, mix(in[n].g, in[n + 1].g, t), out.g);
            out.b = select(inside, mix(in[n].b, in[n + 1].b, t), out.b);
            out.a = select(inside, mix(in[n].a, in[n + 1].a, t), out.a);
        }
        return out;
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
ORVANE_KERNEL(variableBlurKernel, VariableBlur, "maskedVariableBlur");

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
