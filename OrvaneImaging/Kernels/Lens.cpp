// Lens: with d from the middle and rn = |d| / half diagonal, green and alpha are read at
// middle + d (1 + k rn^2), red and blue a little further out or in: lateral colour fringe.
#include "Kernels.h"
#include "PixelKernels.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

struct LensRecord {
    double centerX;
    double centerY;
    double inverseSquare; ///< 1 / half diagonal squared
    double distortion; ///< of the corner
    double fringe[3]; ///< factors of red, green, blue
};

const LensRecord& lensOf(const void* record)
{
    return *static_cast<const LensRecord*>(record);
}

void map(const void* record, int x, int y, int count, const WarpPositions& positions)
{
    const LensRecord& lens = lensOf(record);
    const double dy = y + 0.5 - lens.centerY;
    for (int i = 0; i < count; ++i) {
        const double dx = x + i + 0.5 - lens.centerX;
        const double scale = 1 + lens.distortion * (dx * dx + dy * dy) * lens.inverseSquare;
        for (int channel = 0; channel < 3; ++channel) {
            positions.x[channel][i] = lens.centerX + dx * (scale * lens.fringe[channel]);
            positions.y[channel][i] = lens.centerY + dy * (scale * lens.fringe[channel]);
        }
    }
}

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
    const LensRecord& lens = lensOf(record);
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

const WarpKernel lensKernel{"lens", 3, map, region};

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
