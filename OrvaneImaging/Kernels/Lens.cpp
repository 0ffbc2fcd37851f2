// Lens: with d from the middle and rn = |d| / half diagonal, green and alpha are read at
// middle + d (1 + k rn^2), red and blue a little further out or in: lateral colour fringe.
#include "Kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels/Lens.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "WarpMap-inl.h"

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

class LensMap {
public:
    static constexpr int maps = 3;
    struct Record {
        double centerX;
        double centerY;
        double inverseSquare; ///< 1 / half diagonal squared
        double distortion; ///< of the corner
        double fringe[3]; ///< factors of red, green, blue
    };

    HWY_INLINE LensMap(const Record& lens, double cy)
        : m_lens(lens)
        , m_dy(cy - lens.centerY)
        , m_perSquare(lens.distortion * lens.inverseSquare)
        , m_rowScale(1 + m_dy * m_dy * m_perSquare)
    {
    }
    HWY_INLINE void operator()(Doubles cx, Doubles* x, Doubles* y) const
    {
        const Doubles dx = hn::Sub(cx, allOf(m_lens.centerX));
        const Doubles scale = hn::MulAdd(hn::Mul(dx, dx), allOf(m_perSquare), allOf(m_rowScale));
        for (int channel = 0; channel < maps; ++channel) {
            const Doubles factor = hn::Mul(scale, allOf(m_lens.fringe[channel]));
            x[channel] = hn::MulAdd(dx, factor, allOf(m_lens.centerX));
            y[channel] = hn::MulAdd(allOf(m_dy), factor, allOf(m_lens.centerY));
        }
    }

private:
    const Record& m_lens;
    double m_dy;
    double m_perSquare;
    double m_rowScale;
};

ORVANE_WARP_MAP_RUN(LensMap)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace orvane {

ORVANE_WARP_MAP(LensMap)

namespace {

using LensRecord = HWY_NAMESPACE::LensMap::Record;

struct Interval {
    double low;
    double high;
};

/// Every product of a number in `a` and one in `b`.
Interval product(Interval a, Interval b)
{
    const auto [low, high] =
        std::minmax({a.low * b.low, a.low * b.high, a.high * b.low, a.high * b.high});
    return {low, high};
}

double smallestSquare(Interval distance)
{
    if (distance.low <= 0 && distance.high >= 0)
        return 0;
    return std::min(distance.low * distance.low, distance.high * distance.high);
}

double largestSquare(Interval distance)
{
    return std::max(distance.low * distance.low, distance.high * distance.high);
}

/// The factors are bounded over the whole rectangle, so the result may be larger than needed.
CGRect region(const void* record, const PixelRect& rect)
{
    const auto& lens = *static_cast<const LensRecord*>(record);
    const Interval dx{rect.x0 - lens.centerX, rect.x1 - lens.centerX};
    const Interval dy{rect.y0 - lens.centerY, rect.y1 - lens.centerY};
    const double atNearest =
        1 + lens.distortion * (smallestSquare(dx) + smallestSquare(dy)) * lens.inverseSquare;
    const double atFarthest =
        1 + lens.distortion * (largestSquare(dx) + largestSquare(dy)) * lens.inverseSquare;
    const auto [least, most] = std::minmax({lens.fringe[0], lens.fringe[1], lens.fringe[2]});
    const Interval factor{std::min(atNearest, atFarthest) * least,
                          std::max(atNearest, atFarthest) * most};
    const Interval x = product(dx, factor);
    const Interval y = product(dy, factor);
    return {lens.centerX + x.low, lens.centerY + y.low, x.high - x.low, y.high - y.low};
}

const WarpKernel lensKernel{"lens", 3, mapLensMap, region};

} // namespace

CIImage Kernels::lens(const CIImage& image, double distortion, double fringe)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.isEmpty())
        return image;
    const double halfDiagonal = std::hypot(extent.width() * 0.5, extent.height() * 0.5);
    const LensRecord lens{.centerX = extent.midX(),
                          .centerY = extent.midY(),
                          .inverseSquare = 1 / (halfDiagonal * halfDiagonal),
                          .distortion = distortion * 0.35,
                          .fringe = {1 + fringe * 0.02, 1, 1 - fringe * 0.02}};
    // Beyond the frame the border repeats instead of turning transparent.
    return applyWarp(lensKernel, Parameters::of(lens), image.clampedToExtent(), extent);
}

} // namespace orvane

#endif
