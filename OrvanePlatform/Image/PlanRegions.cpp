// Which rectangles the passes of a plan read: on the full grid and on the coarse grids of the
// blurs.

#include "BlurGrid.h"
#include "Planner.h"

namespace orvane {

namespace {

const Node& blurredNode(const StoredPlan& stored)
{
    return *stored.node->inputs.front();
}

/// The averages that `cells` of a reduced blur, or of coarser averages, are made of.
PixelRect averagesBehind(const Plan& plan, const StoredPlan& target, const PixelRect& cells)
{
    const StoredPlan& averages = plan.stored[size_t(target.averages)];
    const bool blur = target.form == StoredPlan::Form::ReducedBlur;
    const PixelRect wanted = blur
        ? cells.grown(coarseReach(target.node->as<GaussianNode>()->sigma, target.factor))
        : finerCells(cells, levelsBetween(averages.factor, target.factor));
    const Node& input = blurredNode(averages);
    return cellExtent(input, averages.factor).held(wanted, coarseEdges(input));
}

/// The patches on a picture that lie in a part of it.
PixelRect patchesWithin(const PatchesNode& patched, const PixelRect& rect)
{
    PixelRect part;
    for (const NodePtr& patch : patched.patches)
        part = part.united(patch->extent.rect.intersection(rect));
    return part;
}

/// What a step needs of the step that is its input n.
PixelRect neededOfStep(const PlanStep& step, size_t n, const PixelRect& rect)
{
    if (const auto* patched = step.node->as<PatchesNode>())
        return n == 0 ? rect : patchesWithin(*patched, rect);
    return neededInput(*step.node, n, rect);
}

} // namespace

PixelRect pixelsBehind(const Plan& plan, const PlanPass& pass, const PixelRect& rect)
{
    if (pass.target < 0 || plan.stored[size_t(pass.target)].form != StoredPlan::Form::Averages)
        return rect;
    const StoredPlan& averages = plan.stored[size_t(pass.target)];
    const Node& input = blurredNode(averages);
    return cellExtent(input, 1).held(finerCells(rect, levelsBetween(1, averages.factor)),
                                     coarseEdges(input));
}

std::vector<StoredRead> storedReads(const Plan& plan, const PlanPass& pass, const PixelRect& rect)
{
    if (rect.isEmpty())
        return {};
    if (pass.target >= 0 && plan.stored[size_t(pass.target)].averages >= 0) {
        const StoredPlan& target = plan.stored[size_t(pass.target)];
        return {{target.averages, averagesBehind(plan, target, rect)}};
    }
    std::vector<StoredRead> reads;
    std::vector<PixelRect> requests;
    requestedRects(pass, pixelsBehind(plan, pass, rect), requests);
    for (size_t i = 0; i < pass.steps.size(); ++i) {
        const int index = pass.steps[i].stored;
        if (index < 0 || requests[i].isEmpty())
            continue;
        const StoredPlan& stored = plan.stored[size_t(index)];
        reads.push_back({index,
                         stored.form == StoredPlan::Form::ReducedBlur
                             ? coarserCells(requests[i], levelsBetween(1, stored.factor))
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
            request = request.united(neededOfStep(step, n, requests[i]));
        }
    }
}

} // namespace orvane
