// colorCubeWithColorSpace, on straight colour, alpha kept:
//
//   x = clamp(enc(v), 0, 1) (N - 1) of each channel;  v' = dec(trilinear over the 8 nodes around)
//   node r + g N + b N^2 (red fastest), four floats each; the fourth is not used
//
// Input outside 0..1 is clamped, entries of the table are not. The entries stay interleaved: the
// three channels of a node then come from one line of the cache.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/ColorCube.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Cube : StraightKernel<1> {
    struct Record {
        float last; ///< N - 1
    };
    template <class L> struct Axis {
        L cell;
        L fraction;
    };
    template <class L> static HWY_INLINE Axis<L> axis(const Record& p, L v)
    {
        // A comparison, not max: it gives 0 for what is not a number, so no index leaves the table.
        const L held = select(v > L(0.0f), min(v, L(1.0f)), L(0.0f));
        const L position = encodeSrgb(held) * L(p.last);
        const L cell = min(floor(position), L(p.last - 1));
        return {cell, position - cell};
    }
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float* table, const Pixel<L>* in,
                                     Place<L>)
    {
        const Axis<L> r = axis(p, in[0].r);
        const Axis<L> g = axis(p, in[0].g);
        const Axis<L> b = axis(p, in[0].b);
        const float side = p.last + 1;
        const size_t up = size_t(side) * 4;
        const size_t back = size_t(side) * up;
        // At most 4 * 64^3: exact in a float.
        const L node =
            mulAdd(b.cell, L(float(back)), mulAdd(g.cell, L(float(up)), r.cell * L(4.0f)));
        L channels[3];
        for (size_t c = 0; c < 3; ++c) {
            const auto alongRed = [&](const float* from) {
                return mix(lookup(from, node), lookup(from + 4, node), r.fraction);
            };
            const float* from = table + c;
            const L front = mix(alongRed(from), alongRed(from + up), g.fraction);
            const L rear = mix(alongRed(from + back), alongRed(from + back + up), g.fraction);
            channels[c] = decodeSrgb(mix(front, rear, b.fraction));
        }
        return {channels[0], channels[1], channels[2], in[0].a};
    }
};
ORVANE_KERNEL_RUNS(Cube)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

namespace orvane {

ORVANE_KERNEL(cubeKernel, Cube, "colorCubeWithColorSpace");

std::optional<CIImage> CIFilter::colorCubeWithColorSpace(const CIImage& input, int dimension,
                                                         std::span<const float> rgba)
{
    if (dimension < 2 || dimension > 64)
        return {};
    const auto side = size_t(dimension);
    if (rgba.size() != side * side * side * 4)
        return {};
    auto table = std::make_shared<const std::vector<float>>(rgba.begin(), rgba.end());
    const HWY_NAMESPACE::Cube::Record record{float(dimension - 1)};
    return applyKernel(cubeKernel, Parameters::of(record, std::move(table)), {{input}});
}

} // namespace orvane

#endif
