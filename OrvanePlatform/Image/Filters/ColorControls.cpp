// colorControls, on straight linear colour, nothing clamped, in this order:
//
//   c = Y + (c - Y) saturation;  c = (c - 0.5) contrast + 0.5;  c += brightness
//   Y = 0.2125 r + 0.7154 g + 0.0721 b
//
// All three are linear, so the kernel is one fused step: c' = c colour + (Y grey + offset).

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/ColorControls.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Controls : StraightKernel<1> {
    struct Record {
        float colour;
        float grey;
        float offset;
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L colour(p.colour);
        const L base = mulAdd(luma(in[0].r, in[0].g, in[0].b), L(p.grey), L(p.offset));
        return {mulAdd(in[0].r, colour, base), mulAdd(in[0].g, colour, base),
                mulAdd(in[0].b, colour, base), in[0].a};
    }
};
ORVANE_KERNEL_RUNS(Controls)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <cmath>

namespace orvane {

ORVANE_KERNEL(controlsKernel, Controls, "colorControls");

CIImage CIFilter::colorControls(const CIImage& input, const ColorControls& controls)
{
    const double saturation = float(controls.saturation);
    const double brightness = float(controls.brightness);
    const double contrast = float(controls.contrast);
    if (saturation == 1 && brightness == 0 && contrast == 1)
        return input;
    const HWY_NAMESPACE::Controls::Record record{float(saturation * contrast),
                                                 float((1 - saturation) * contrast),
                                                 float(0.5 - 0.5 * contrast + brightness)};
    if (!std::isfinite(record.colour) || !std::isfinite(record.grey)
        || !std::isfinite(record.offset))
        return input;
    return applyKernel(controlsKernel, Parameters::of(record), {{input}});
}

} // namespace orvane

#endif
