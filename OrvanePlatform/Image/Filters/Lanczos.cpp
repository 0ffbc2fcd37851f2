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

/// w at x, x + step, x + 2 step, ... An angle is turned step by step, and the sine of its multiple
/// follows from its own: four sines for an output instead of two for each tap.
class LanczosWeights {
public:
    LanczosWeights(double x, double step, int lobes)
        : m_x(x)
        , m_step(step)
        , m_lobes(lobes)
        , m_sine(std::sin(std::numbers::pi * x / lobes))
        , m_cosine(std::cos(std::numbers::pi * x / lobes))
        , m_turnSine(std::sin(std::numbers::pi * step / lobes))
        , m_turnCosine(std::cos(std::numbers::pi * step / lobes))
    {
    }

    double next()
    {
        const double weight = current();
        m_x += m_step;
        const double sine = m_sine * m_turnCosine + m_cosine * m_turnSine;
        m_cosine = m_cosine * m_turnCosine - m_sine * m_turnSine;
        m_sine = sine;
        return weight;
    }

private:
    double current() const
    {
        if (std::abs(m_x) < 1e-6) // 1 to 1e-11, and what was turned there is mostly rounding
            return 1;
        if (std::abs(m_x) >= m_lobes)
            return 0;
        const double angle = std::numbers::pi * m_x;
        const double multiple =
            m_lobes == 3 ? m_sine * (3 - 4 * m_sine * m_sine) : 2 * m_sine * m_cosine;
        return m_lobes * multiple * m_sine / (angle * angle);
    }

    double m_x;
    double m_step;
    int m_lobes;
    double m_sine;
    double m_cosine;
    double m_turnSine;
    double m_turnCosine;
};

LanczosAxis scaledAxis(int origin, int count, double scale)
{
    const int size = heldToInt(std::max(1.0, std::floor(count * scale + 0.5)));
    return {heldToInt(std::floor(origin * scale + 0.5)), size, origin, count};
}

} // namespace

LanczosTaps lanczosTaps(const LanczosAxis& axis, int output)
{
    const double scale = double(axis.count) / axis.inputCount;
    const int lobes = scale < 1 ? 3 : 2;
    const double stretch = std::max(1.0, 1 / scale);
    const double centre = (output - axis.origin + 0.5) / scale;
    LanczosTaps taps;
    const int first = int(std::ceil(centre - lobes * stretch - 0.5));
    const int last = int(std::floor(centre + lobes * stretch - 0.5));
    taps.first = axis.inputOrigin + first;
    taps.weights.reserve(size_t(last - first + 1));
    LanczosWeights weights((first + 0.5 - centre) / stretch, 1 / stretch, lobes);
    double sum = 0;
    for (int k = first; k <= last; ++k) {
        taps.weights.push_back(weights.next());
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
