#include "BlurGrid.h"

#include "BlurWeights.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace orvane {

namespace {

/// Of sigma to the side of a cell.
constexpr double smallestRatio = fadedFrom / 2;
/// Cells beyond 3 sigma: for what fades out there, and for the little that the inverse of the
/// grid's filters rings.
constexpr int extraReach = 2;
/// Points at which a filter's response is matched, from 0 to half a cycle a cell.
constexpr int responsePoints = 256;

/// sum of w(k) cos(k t) for |k| <= n, by the recurrence of the cosines.
double response(const std::vector<double>& weights, double t)
{
    const double twice = 2 * std::cos(t);
    double before = 1;
    double now = twice / 2;
    double sum = weights[0];
    for (size_t k = 1; k < weights.size(); ++k) {
        sum += 2 * weights[k] * now;
        before = std::exchange(now, twice * now - before);
    }
    return sum;
}

} // namespace

int blurReduction(float sigma)
{
    int factor = 1;
    while (factor * 2 * smallestRatio <= double(sigma))
        factor *= 2;
    return factor;
}

int coarseReach(float sigma, int factor)
{
    return (gaussianBorder(sigma) + factor - 1) / factor + extraReach;
}

std::vector<double> coarseWeights(double sigma, int factor)
{
    // The response wanted of the whole, divided by that of going down and up the levels, each
    // cos(t / 2)^3 but for the first one up, cos(t / 2)^5, and brought back from frequencies to
    // weights.
    const std::vector<double> blur = blurWeights(sigma);
    std::vector<double> weights(size_t(coarseReach(float(sigma), factor)) + 1, 0.0);
    for (int m = 0; m < responsePoints; ++m) {
        const double t = (m + 0.5) * std::numbers::pi / responsePoints;
        double levels = std::pow(std::cos(t / 4), 2);
        for (int scale = 1; scale < factor; scale *= 2)
            levels *= std::pow(std::cos(t / factor * scale / 2), 6);
        const double wanted = response(blur, t / factor) / levels;
        for (size_t j = 0; j < weights.size(); ++j)
            weights[j] += wanted * std::cos(double(j) * t) / responsePoints;
    }
    double sum = weights[0];
    for (size_t j = 1; j < weights.size(); ++j)
        sum += 2 * weights[j];
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

int levelsBetween(int finer, int coarser)
{
    int levels = 0;
    for (; finer < coarser; finer *= 2)
        ++levels;
    return levels;
}

PixelRect finerCells(PixelRect r, int levels)
{
    for (; levels > 0 && !r.isEmpty(); --levels)
        r = {2 * r.x0 - 1, 2 * r.y0 - 1, 2 * r.x1 + 1, 2 * r.y1 + 1};
    return r;
}

PixelRect coarserCells(PixelRect r, int levels)
{
    for (; levels > 0 && !r.isEmpty(); --levels)
        r = {floorDivided(r.x0, 2) - 1, floorDivided(r.y0, 2) - 1, floorDivided(r.x1 - 1, 2) + 2,
             floorDivided(r.y1 - 1, 2) + 2};
    return r;
}

CoarseEdges coarseEdges(const Node& blurred)
{
    const bool repeated = blurred.as<ClampNode>() && !blurred.inputs.front()->extent.infinite;
    return repeated ? CoarseEdges::Repeated : CoarseEdges::Transparent;
}

const Node& averagedNode(const Node& blur)
{
    const Node& blurred = *blur.inputs.front();
    return coarseEdges(blurred) == CoarseEdges::Repeated ? *blurred.inputs.front() : blurred;
}

CellExtent cellExtent(const Node& blurred, int factor)
{
    const bool repeated = coarseEdges(blurred) == CoarseEdges::Repeated;
    const Extent& extent = (repeated ? *blurred.inputs.front() : blurred).extent;
    if (extent.infinite)
        return {{}, true};
    PixelRect r = extent.rect;
    for (int f = 1; f < factor && !r.isEmpty(); f *= 2) {
        // With repeated edges, up to the first cell made of nothing but repeats; otherwise up to
        // the last that is made of anything at all.
        r = repeated ? PixelRect{floorDivided(r.x0, 2) - 1, floorDivided(r.y0, 2) - 1,
                                 floorDivided(r.x1 + 1, 2) + 1, floorDivided(r.y1 + 1, 2) + 1}
                     : PixelRect{floorDivided(r.x0 - 1, 2), floorDivided(r.y0 - 1, 2),
                                 floorDivided(r.x1, 2) + 1, floorDivided(r.y1, 2) + 1};
    }
    return {r, false};
}

PixelRect CellExtent::held(const PixelRect& wanted, CoarseEdges edges) const
{
    if (infinite || wanted.isEmpty() || cells.isEmpty())
        return infinite ? wanted : PixelRect{};
    if (edges == CoarseEdges::Transparent)
        return wanted.intersection(cells);
    // Where all that is wanted lies beyond an edge, the edge's cells stand for it.
    const auto within = [](int low, int high, int first, int last) {
        return std::pair{std::clamp(low, first, last - 1), std::clamp(high, first + 1, last)};
    };
    const auto [x0, x1] = within(wanted.x0, wanted.x1, cells.x0, cells.x1);
    const auto [y0, y1] = within(wanted.y0, wanted.y1, cells.y0, cells.y1);
    return {x0, y0, x1, y1};
}

} // namespace orvane
