// colorCurves: a table for each straight channel over its sRGB-encoded value.
//
//   x = enc(v);  pos = clamp((x - low) / (high - low), 0, 1) (n - 1)
//   v' = dec(the line between the two entries around pos)
//
// Outside the domain the end entries hold. The kernel's own table has every segment cut into steps
// that are decoded already, which spares three powers a pixel: a line over a step of width w in
// encoded units is off by at most w^2 / 8 * 3.02, the largest second derivative of dec on 0..1.
// With 2048 steps and a curve of slope s that is 9e-8 s^2, and the three tables (24 kB) fit the
// first-level cache.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/ColorCurves.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Curves : StraightKernel<1> {
    struct Record {
        float low;
        float scale; ///< steps for each encoded unit
        float last; ///< steps; planes have two entries more, the final one repeated
    };
    template <class L> static HWY_INLINE L curve(const float* plane, L index, L fraction)
    {
        L low;
        L high;
        lookupPair(plane, index, low, high);
        return mix(low, high, fraction);
    }
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float* table, const Pixel<L>* in,
                                     Place<L>)
    {
        using V = Three<L>;
        const V zero(0.0f);
        const V position = (encodeSrgb(in->rgb()) - V(p.low)) * V(p.scale);
        // A comparison, not max: it gives 0 for what is not a number, so no index leaves the table.
        const V held = select(position > zero, min(position, V(p.last)), zero);
        const V index = floor(held);
        const V fraction = held - index;
        const size_t plane = size_t(p.last) + 2;
        return {curve(table, index.r, fraction.r), curve(table + plane, index.g, fraction.g),
                curve(table + 2 * plane, index.b, fraction.b), in->a};
    }
};
ORVANE_KERNEL_RUNS(Curves)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"
#include "Filters/ParameterColor.h"

#include <algorithm>
#include <cmath>

namespace orvane {

ORVANE_KERNEL(curvesKernel, Curves, "colorCurves");

namespace {

constexpr size_t wantedSteps = 2048;
/// Even a table of more entries than that has its lines cut, for the steep ones among them.
constexpr size_t leastCuts = 4;

bool isIdentity(std::span<const float> triples, size_t entries, double low, double high)
{
    for (size_t i = 0; i < entries * 3; ++i) {
        const size_t entry = i / 3;
        const double x = low + (high - low) * double(entry) / double(entries - 1);
        // One rounding of a float: however the caller divided, this is the same number.
        if (!(std::abs(double(triples[i]) - x) <= 6e-8 * std::max(1.0, std::abs(x))))
            return false;
    }
    return true;
}

/// The decoded curves in steps, a plane for each channel, with its final value once more.
std::vector<float> decodedSteps(std::span<const float> triples, size_t lines, size_t cuts)
{
    const size_t plane = lines * cuts + 2;
    std::vector<float> table(plane * 3);
    for (size_t i = 0; i < plane; ++i) {
        const size_t line = std::min(i / cuts, lines - 1);
        const double t = std::min(double(i) / double(cuts) - double(line), 1.0);
        for (size_t channel = 0; channel < 3; ++channel) {
            const double a = triples[line * 3 + channel];
            const double b = triples[line * 3 + 3 + channel];
            table[channel * plane + i] = float(decodedComponent(a + (b - a) * t));
        }
    }
    return table;
}

} // namespace

std::optional<CIImage> CIFilter::colorCurves(const CIImage& input, std::span<const float> triples,
                                             double low, double high)
{
    const size_t entries = triples.size() / 3;
    const double d0 = float(low);
    const double d1 = float(high);
    if (entries < 2 || !(d1 > d0) || !std::isfinite(d1 - d0))
        return {};
    if (isIdentity(triples, entries, d0, d1))
        return input;
    const size_t lines = entries - 1;
    const size_t cuts = std::max(leastCuts, (wantedSteps + lines - 1) / lines);
    auto table = std::make_shared<const std::vector<float>>(decodedSteps(triples, lines, cuts));
    const auto steps = double(lines * cuts);
    const HWY_NAMESPACE::Curves::Record record{float(d0), float(steps / (d1 - d0)), float(steps)};
    return applyKernel(curvesKernel, Parameters::of(record, std::move(table)), {{input}});
}

} // namespace orvane

#endif
