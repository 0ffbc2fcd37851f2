// lanczosScaleTransform: separable, premultiplied, linear light, edges clamped.
//   w(x) = a sin(pi x) sin(pi x / a) / (pi x)^2, a = 3 when reducing and 2 when enlarging
//   sample i lies at c = (i + 0.5) / s; tap k weighs w((k + 0.5 - c) / max(1, 1/s)), normalised
// The size is round(size s), at least 1; the ratio of the sizes is the true s, so both edges align.
// Overshoot is kept in the colours; alpha is held to 0..1.

#include "Lanczos.h"

#include "Filters/CIFilter.h"

#include <cmath>
#include <numbers>

namespace orvane {

namespace {

double lanczosWeight(double x, double lobes)
{
    if (x == 0)
        return 1;
    if (std::abs(x) >= lobes)
        return 0;
    const double angle = std::numbers::pi * x;
    return lobes * std::sin(angle) * std::sin(angle / lobes) / (angle * angle);
}

LanczosAxis scaledAxis(int origin, int count, double scale)
{
    const int size = heldToInt(std::max(1.0, std::floor(count * scale + 0.5)));
    return {heldToInt(std::floor(origin * scale + 0.5)), size, origin, count};
}

} // namespace

LanczosTaps lanczosTaps(const LanczosAxis& axis, int output)
{
    const double scale = double(axis.count) / axis.inputCount;
    const double lobes = scale < 1 ? 3 : 2;
    const double stretch = std::max(1.0, 1 / scale);
    const double centre = (output - axis.origin + 0.5) / scale;
    LanczosTaps taps;
    const int first = int(std::ceil(centre - lobes * stretch - 0.5));
    const int last = int(std::floor(centre + lobes * stretch - 0.5));
    taps.first = axis.inputOrigin + first;
    double sum = 0;
    for (int k = first; k <= last; ++k) {
        taps.weights.push_back(lanczosWeight((k + 0.5 - centre) / stretch, lobes));
        sum += taps.weights.back();
    }
    for (double& weight : taps.weights)
        weight /= sum;
    return taps;
}

CIImage CIFilter::lanczosScaleTransform(const CIImage& input, double scale, double aspectRatio)
{
    const double scaleX = scale * aspectRatio;
    const NodePtr& node = input.node();
    if (node->extent.infinite || node->extent.isEmpty() || (scaleX == 1 && scale == 1)
        || !(scaleX > 0) || !(scale > 0) || !std::isfinite(scaleX) || !std::isfinite(scale))
        return input;
    const PixelRect& r = node->extent.rect;
    const LanczosNode lanczos{scaledAxis(r.x0, r.width(), scaleX),
                              scaledAxis(r.y0, r.height(), scale)};
    const PixelRect result{lanczos.x.origin, lanczos.y.origin, lanczos.x.origin + lanczos.x.count,
                           lanczos.y.origin + lanczos.y.count};
    return CIImage(makeNode(lanczos, {node}, Extent::of(result), node->opaque));
}

} // namespace orvane
