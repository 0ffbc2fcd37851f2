// Images without an input: infinite, a function of the pixel's centre p alone.
//
//   linearGradient   t = clamp((p - p0) . (p1 - p0) / |p1 - p0|^2, 0, 1)
//   radialGradient   t = clamp((|p - c| - radius0) / (radius1 - radius0), 0, 1)
//   withColor        t = 0
//
// The colour is a straight mix by t of the two ends, in linear light and premultiplied. Points that
// coincide, or numbers that are none, give color0; equal radii give color0 inside and color1
// outside.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/Gradients.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// Both ends are met exactly, and a gradient between equal colours is that colour.
template <class L> HWY_INLINE Pixel<L> between(const float* color0, const float* color1, L t)
{
    const auto atEnd = t >= L(1.0f);
    L channels[4];
    for (int c = 0; c < 4; ++c)
        channels[c] = select(atEnd, L(color1[c]), mix(L(color0[c]), L(color1[c]), t));
    return {channels[0], channels[1], channels[2], channels[3]};
}

struct SolidColor : PremultipliedKernel<0> {
    struct Record {
        float color[4];
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>*, Place<L>)
    {
        return {L(p.color[0]), L(p.color[1]), L(p.color[2]), L(p.color[3])};
    }
};
ORVANE_KERNEL_RUNS(SolidColor)

struct LinearGradient : PremultipliedKernel<0> {
    struct Record {
        float point0[2];
        float slope[2]; ///< growth of t for each pixel
        float color0[4];
        float color1[4];
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>*, Place<L> place)
    {
        const L t =
            (place.x - L(p.point0[0])) * L(p.slope[0]) + (place.y - L(p.point0[1])) * L(p.slope[1]);
        return between(p.color0, p.color1, clamp(t, L(0.0f), L(1.0f)));
    }
};
ORVANE_KERNEL_RUNS(LinearGradient)

struct RadialGradient : PremultipliedKernel<0> {
    struct Record {
        float center[2];
        float radius0;
        float slope; ///< growth of t for each pixel outwards
        float color0[4];
        float color1[4];
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>*, Place<L> place)
    {
        const L dx = place.x - L(p.center[0]);
        const L dy = place.y - L(p.center[1]);
        const L t = (sqrt(dx * dx + dy * dy) - L(p.radius0)) * L(p.slope);
        return between(p.color0, p.color1, clamp(t, L(0.0f), L(1.0f)));
    }
};
ORVANE_KERNEL_RUNS(RadialGradient)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"
#include "Filters/ParameterColor.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace orvane {

ORVANE_KERNEL(solidColorKernel, SolidColor, "solidColor");
static GreyRange linearGradientRange(const Node& node, const PixelRect& rect);
ORVANE_KERNEL(linearGradientKernel, LinearGradient, "linearGradient", nullptr, linearGradientRange);
ORVANE_KERNEL(radialGradientKernel, RadialGradient, "radialGradient");

namespace {

/// Steep enough to take any float distance past both ends, small enough that 0 times it is 0.
constexpr double steepest = 1e30;

template <class Record> void setColors(Record& record, const CIColor& color0, const CIColor& color1)
{
    std::ranges::copy(workingColor(color0), record.color0);
    std::ranges::copy(workingColor(color1), record.color1);
}

bool isGrey(const float* color)
{
    return color[0] == color[1] && color[1] == color[2];
}

} // namespace

static GreyRange linearGradientRange(const Node& node, const PixelRect& rect)
{
    using Record = HWY_NAMESPACE::LinearGradient::Record;
    Record p;
    std::memcpy(&p, node.as<PointwiseNode>()->parameters.record.data(), sizeof p);
    if (!isGrey(p.color0) || !isGrey(p.color1))
        return {};
    // It grows along a line, so it is least and greatest in corners.
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const double x : {rect.x0 + 0.5, rect.x1 - 0.5}) {
        for (const double y : {rect.y0 + 0.5, rect.y1 - 0.5}) {
            const double t = (x - double(p.point0[0])) * double(p.slope[0])
                + (y - double(p.point0[1])) * double(p.slope[1]);
            low = std::min(low, t);
            high = std::max(high, t);
        }
    }
    // Floats of coordinates up to 100,000 are off by less than a hundredth of a pixel.
    const double slack = 1e-4 + 0.01 * std::abs(p.slope[0]) + 0.01 * std::abs(p.slope[1]);
    const auto value = [&](double t) {
        return float(std::lerp(double(p.color0[0]), double(p.color1[0]), std::clamp(t, 0.0, 1.0)));
    };
    const float ends[] = {value(low - slack), value(high + slack)};
    return {std::min(ends[0], ends[1]), std::max(ends[0], ends[1])};
}

CIImage CIImage::withColor(const CIColor& color)
{
    HWY_NAMESPACE::SolidColor::Record record;
    std::ranges::copy(workingColor(color), record.color);
    return applyKernel(solidColorKernel, Parameters::of(record), {}, CGRect::infinite(),
                       color.alpha == 1);
}

CIImage CIFilter::linearGradient(CGPoint point0, const CIColor& color0, CGPoint point1,
                                 const CIColor& color1)
{
    HWY_NAMESPACE::LinearGradient::Record record{};
    const double dx = point1.x - point0.x;
    const double dy = point1.y - point0.y;
    const double square = dx * dx + dy * dy;
    if (square > 0 && std::isfinite(square)) {
        record.point0[0] = float(point0.x);
        record.point0[1] = float(point0.y);
        record.slope[0] = float(dx / square);
        record.slope[1] = float(dy / square);
    }
    setColors(record, color0, color1);
    return applyKernel(linearGradientKernel, Parameters::of(record), {}, CGRect::infinite(),
                       color0.alpha == 1 && color1.alpha == 1);
}

CIImage CIFilter::radialGradient(CGPoint center, double radius0, const CIColor& color0,
                                 double radius1, const CIColor& color1)
{
    HWY_NAMESPACE::RadialGradient::Record record{};
    const double slope =
        std::clamp(1 / (radius1 - radius0), -steepest, steepest); // equal radii too
    if (std::isfinite(center.x + center.y) && std::isfinite(radius0) && !std::isnan(slope)) {
        record.center[0] = float(center.x);
        record.center[1] = float(center.y);
        record.radius0 = float(radius0);
        record.slope = float(slope);
    }
    setColors(record, color0, color1);
    return applyKernel(radialGradientKernel, Parameters::of(record), {}, CGRect::infinite(),
                       color0.alpha == 1 && color1.alpha == 1);
}

} // namespace orvane

#endif
