// Which rectangles the passes of a plan read: on the full grid and on the coarse grids of the
// blurs.

#include "Planner.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {

int blurReduction(float sigma)
{
    int factor = 1;
    while (float(factor) * 2 <= sigma / 8)
        factor *= 2;
    return factor;
}

double reducedSigma(float sigma, int factor)
{
    const double f = factor;
    const double variance =
        (double(sigma) * double(sigma) + 1.0 / 12 - (f * f - 1) / 12 - f * f / 6) / (f * f)
        - 1.0 / 12;
    return std::sqrt(variance);
}

CoarseEdges coarseEdges(const StoredPlan& blur)
{
    const Node* input = blur.node->inputs.front().get();
    const auto* clamp = input->as<ClampNode>();
    return clamp && !input->inputs.front()->extent.infinite ? CoarseEdges::Repeated
                                                            : CoarseEdges::Transparent;
}

namespace {

int coarseReach(const StoredPlan& blur)
{
    return int(std::ceil(3 * reducedSigma(blur.node->as<GaussianNode>()->sigma, blur.factor)));
}

/// The averages that `cells` of a reduced blur are made of.
PixelRect averagesBehind(const StoredPlan& blur, const PixelRect& cells)
{
    const int f = blur.factor;
    const PixelRect wanted = cells.grown(coarseReach(blur));
    const Node* input = blur.node->inputs.front().get();
    const bool repeated = coarseEdges(blur) == CoarseEdges::Repeated;
    const Extent& extent = (repeated ? *input->inputs.front() : *input).extent;
    if (extent.infinite)
        return wanted;
    const PixelRect& r = extent.rect;
    const PixelRect covering{floorDivided(r.x0, f), floorDivided(r.y0, f),
                             floorDivided(r.x1 - 1, f) + 1, floorDivided(r.y1 - 1, f) + 1};
    if (!repeated)
        return wanted.intersection(covering);
    // A cell beyond the picture's edge cells averages repeats of one row or column of pixels, and
    // so do all cells beyond it: one ring of them stands for the rest.
    const PixelRect ring = covering.grown(1);
    const auto held = [](int low, int high, int first, int last) {
        return std::pair{std::clamp(low, first, last - 1), std::clamp(high, first + 1, last)};
    };
    const auto [x0, x1] = held(wanted.x0, wanted.x1, ring.x0, ring.x1);
    const auto [y0, y1] = held(wanted.y0, wanted.y1, ring.y0, ring.y1);
    return {x0, y0, x1, y1};
}

/// The cells that bilinear reads of `rect` touch.
PixelRect reducedCells(const PixelRect& rect, int factor)
{
    if (rect.isEmpty())
        return {};
    const int half = factor / 2;
    return {floorDivided(rect.x0 - half, factor), floorDivided(rect.y0 - half, factor),
            floorDivided(rect.x1 - 1 - half, factor) + 2,
            floorDivided(rect.y1 - 1 - half, factor) + 2};
}

} // namespace

PixelRect pixelsBehind(const Plan& plan, const PlanPass& pass, const PixelRect& rect)
{
    if (pass.target < 0 || plan.stored[size_t(pass.target)].form != StoredPlan::Form::Averages)
        return rect;
    const StoredPlan& averages = plan.stored[size_t(pass.target)];
    const int f = averages.factor;
    return averages.node->inputs.front()->extent.clipped(
        {rect.x0 * f, rect.y0 * f, rect.x1 * f, rect.y1 * f});
}

std::vector<StoredRead> storedReads(const Plan& plan, const PlanPass& pass, const PixelRect& rect)
{
    std::vector<StoredRead> reads;
    if (pass.target >= 0) {
        const StoredPlan& target = plan.stored[size_t(pass.target)];
        if (target.form == StoredPlan::Form::ReducedBlur)
            return {{target.averages, averagesBehind(target, rect)}};
    }
    std::vector<PixelRect> requests;
    requestedRects(pass, pixelsBehind(plan, pass, rect), requests);
    for (size_t i = 0; i < pass.steps.size(); ++i) {
        const int index = pass.steps[i].stored;
        if (index < 0 || requests[i].isEmpty())
            continue;
        const StoredPlan& stored = plan.stored[size_t(index)];
        reads.push_back({index,
                         stored.form == StoredPlan::Form::ReducedBlur
                             ? reducedCells(requests[i], stored.factor)
                             : requests[i]});
    }
    return reads;
}

void requestedRects(const PlanPass& pass, const PixelRect& rect, std::vector<PixelRect>& requests)
{
    requests.assign(pass.steps.size(), PixelRect{});
    requests.back() = pass.steps.back().node->extent.clipped(rect);
    for (size_t i = pass.steps.size(); i-- > 0;) {
        const PlanStep& step = pass.steps[i];
        for (size_t n = 0; n < step.inputs.size(); ++n) {
            PixelRect& request = requests[size_t(step.inputs[n])];
            request = request.united(neededInput(*step.node, n, requests[i]));
        }
    }
}

} // namespace orvane
