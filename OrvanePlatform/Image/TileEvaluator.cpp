#include "TileEvaluator.h"

#include "BilinearWindow.h"
#include "Bitmap.h"
#include "BlurWeights.h"
#include "Lanczos.h"
#include "PlaneConversion.h"
#include "ReducedBlur.h"
#include "SourceReader.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

PassTables::Taps makeTaps(const LanczosAxis& axis, int first, int last)
{
    PassTables::Taps taps;
    taps.origin = first;
    std::vector<LanczosTaps> all;
    for (int i = first; i < last; ++i) {
        all.push_back(lanczosTaps(axis, i));
        taps.width = std::max(taps.width, int(all.back().weights.size()));
    }
    for (const LanczosTaps& one : all) {
        taps.first.push_back(one.first);
        const size_t start = taps.weights.size();
        taps.weights.resize(start + size_t(taps.width), 0.0f);
        std::copy(one.weights.begin(), one.weights.end(),
                  taps.weights.begin() + std::ptrdiff_t(start));
    }
    return taps;
}

bool isWholePixelMove(const OrthogonalTransform& t)
{
    return t.a == 1 && t.d == 1;
}

/// Positions are worked out this many pixels at a time.
constexpr int sampledRun = 256;

/// Part of a row of a resampling, at most sampledRun pixels of it.
void sampleRow(const WarpNode& node, const BilinearWindow& window, int x, int y, int count,
               TilePlanes& out)
{
    double positions[6][sampledRun];
    const WarpPositions at{{positions[0], positions[1], positions[2]},
                           {positions[3], positions[4], positions[5]}};
    node.kernel->map(node.parameters.record.data(), x, y, count, at);
    for (int m = 0; m < node.kernel->maps; ++m) {
        BilinearWindow::Output wanted;
        for (int c = 0; c < out.channels(); ++c) {
            if (node.kernel->maps == 1 || m == (c == 3 ? 1 : c))
                wanted.plane[c] = out.at(c, x, y);
        }
        window.sample(at.x[m], at.y[m], count, wanted);
    }
}

} // namespace

PassTables makePassTables(const PlanPass& pass)
{
    PassTables tables;
    tables.steps.resize(pass.steps.size());
    std::vector<PixelRect> requests;
    requestedRects(pass, pass.region, requests);
    for (size_t i = 0; i < pass.steps.size(); ++i) {
        const PlanStep& step = pass.steps[i];
        if (step.stored >= 0)
            continue;
        if (const auto* blur = step.node->as<GaussianNode>()) {
            const std::vector<double> weights = gaussianWeights(blur->sigma);
            tables.steps[i].blur.assign(weights.begin(), weights.end());
        } else if (const auto* lanczos = step.node->as<LanczosNode>()) {
            tables.steps[i].across = makeTaps(lanczos->x, requests[i].x0, requests[i].x1);
            tables.steps[i].down = makeTaps(lanczos->y, requests[i].y0, requests[i].y1);
        }
    }
    return tables;
}

TileEvaluator::TileEvaluator(const PlanPass& pass, const std::vector<StoredPlan>& storedPlans,
                             const std::vector<std::shared_ptr<StoredImage>>& stored,
                             const PassTables& tables)
    : m_pass(pass)
    , m_storedPlans(storedPlans)
    , m_stored(stored)
    , m_tables(tables)
    , m_drawn(pass.steps.size())
{
}

TilePlanes TileEvaluator::draw(const PixelRect& rect)
{
    m_arena.reset();
    requestedRects(m_pass, rect, m_requests);
    for (size_t i = 0; i < m_pass.steps.size(); ++i)
        drawStep(i);
    const Drawn& result = m_drawn.back();
    return coveringPlanes(result.empty ? TilePlanes{} : result.planes, rect, m_arena);
}

void TileEvaluator::drawStep(size_t index)
{
    const PlanStep& step = m_pass.steps[index];
    const PixelRect& rect = m_requests[index];
    Drawn& drawn = m_drawn[index];
    drawn = {};
    drawn.empty = rect.isEmpty();
    if (drawn.empty)
        return;
    drawn.reusable = true;
    drawn.planes = step.stored >= 0
        ? drawStored(step, rect)
        : std::visit([&](const auto& node) { return drawNode(index, step, node, rect); },
                     step.node->data);
    // Arithmetic on alpha may leave it a rounding away from the 1 that the recipe promises.
    if (step.node->opaque && step.node->extent.contains(rect))
        drawn.planes.plane[3] = nullptr;
}

TilePlanes TileEvaluator::input(const PlanStep& step, size_t n, const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[size_t(step.inputs[n])];
    return coveringPlanes(drawn.empty ? TilePlanes{} : drawn.planes, rect, m_arena);
}

/// For weighted sums. Whether alpha is summed must follow from the recipe, not from the tile: a sum
/// of ones is 1 only to within rounding.
TilePlanes TileEvaluator::withRecipesAlpha(const PlanStep& step, TilePlanes planes)
{
    if (!step.node->opaque)
        addOpaqueAlpha(planes, m_arena);
    return planes;
}

TilePlanes TileEvaluator::drawStored(const PlanStep& step, const PixelRect& rect)
{
    const auto index = size_t(step.stored);
    const StoredPlan& plan = m_storedPlans[index];
    if (plan.form == StoredPlan::Form::ReducedBlur)
        return enlargedBlur(*m_stored[index], plan.factor, rect, m_arena);
    return m_stored[index]->read(rect, m_arena);
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep&, const SourceNode& node,
                                   const PixelRect& rect)
{
    return readSource(*node.bitmap, rect, m_arena);
}

/// The one input whose pixels are the result over the whole tile, or -1.
int TileEvaluator::decidingInput(const PlanStep& step, Cover cover) const
{
    const auto empty = [&](size_t n) { return m_drawn[size_t(step.inputs[n])].empty; };
    if (cover == Cover::FirstOverSecond)
        return empty(1) ? 0 : (empty(0) ? 1 : -1);
    if (cover == Cover::FirstWithinMask)
        return empty(2) || empty(0) ? 1 : -1;
    return -1;
}

/// The pixels of another step as this one's own; transparent where it has none.
TilePlanes TileEvaluator::passedOn(size_t index, size_t from, const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[from];
    TilePlanes planes = coveringPlanes(drawn.empty ? TilePlanes{} : drawn.planes, rect, m_arena);
    m_drawn[index].reusable = planes.plane[0] != drawn.planes.plane[0]
        || (drawn.reusable && m_pass.steps[from].readers == 1);
    return planes;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const PointwiseNode& node,
                                   const PixelRect& rect)
{
    if (const int only = decidingInput(step, node.kernel->cover); only >= 0)
        return passedOn(index, size_t(step.inputs[size_t(only)]), rect);
    TilePlanes inputs[maxKernelInputs];
    bool opaque = !step.inputs.empty() || step.node->opaque;
    for (size_t n = 0; n < step.inputs.size(); ++n) {
        inputs[n] = input(step, n, rect);
        opaque = opaque && inputs[n].opaque();
    }
    const bool keeps = node.kernel->rule == OpaqueRule::KeepsAlpha;
    TilePlanes out;
    // Drawing over an input that nobody else reads keeps a long chain within one tile's planes.
    for (size_t n = 0; n < step.inputs.size() && !out.plane[0]; ++n) {
        const Drawn& drawn = m_drawn[size_t(step.inputs[n])];
        if (drawn.reusable && !drawn.empty && drawn.planes.rect == rect
            && m_pass.steps[size_t(step.inputs[n])].readers == 1)
            out = drawn.planes;
    }
    if (!out.plane[0])
        out = m_arena.planes(rect, opaque && keeps);
    if (!opaque) {
        for (size_t n = 0; n < step.inputs.size(); ++n)
            addOpaqueAlpha(inputs[n], m_arena);
    }
    if (opaque && keeps)
        out.plane[3] = nullptr;
    else if (out.opaque())
        out.plane[3] = m_arena.floats(size_t(out.stride) * size_t(rect.height()));
    const PointwiseRun run = opaque ? node.kernel->opaque : node.kernel->general;
    for (int y = rect.y0; y < rect.y1; ++y) {
        PointwiseRow row{.x = rect.x0, .y = y, .count = rect.width(), .inputs = {}, .output = {}};
        for (size_t n = 0; n < step.inputs.size(); ++n) {
            for (int c = 0; c < inputs[n].channels(); ++c)
                row.inputs[n][c] = inputs[n].at(c, rect.x0, y);
        }
        for (int c = 0; c < out.channels(); ++c)
            row.output[c] = out.row(c, y);
        run(node.parameters.record.data(), node.parameters.tableData(), row);
    }
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const CropNode&,
                                   const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[size_t(step.inputs[0])];
    TilePlanes view = drawn.planes;
    for (int c = 0; c < view.channels(); ++c)
        view.plane[c] = drawn.planes.at(c, rect.x0, rect.y0);
    view.rect = rect;
    // A row of the view that begins elsewhere could be written past its memory's end.
    m_drawn[index].reusable = drawn.reusable && drawn.planes.rect.x0 == rect.x0
        && m_pass.steps[size_t(step.inputs[0])].readers == 1;
    return view;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const ClampNode&,
                                   const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[size_t(step.inputs[0])];
    m_drawn[index].reusable = false;
    return edgeRepeatedPlanes(drawn.planes, rect, m_arena);
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const OrthogonalNode& node,
                                   const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[size_t(step.inputs[0])];
    const OrthogonalTransform back = node.forward.inverted();
    if (isWholePixelMove(node.forward)) {
        TilePlanes view = drawn.planes;
        view.rect = node.forward.apply(view.rect);
        m_drawn[index].reusable =
            drawn.reusable && m_pass.steps[size_t(step.inputs[0])].readers == 1;
        return view;
    }
    const TilePlanes& from = drawn.planes;
    TilePlanes out = m_arena.planes(rect, from.opaque());
    // One pixel to the right in the output is this far in the input's memory.
    const std::ptrdiff_t step1 = back.a + back.b * from.stride;
    for (int c = 0; c < from.channels(); ++c) {
        for (int y = rect.y0; y < rect.y1; ++y) {
            const PixelRect first = back.apply(PixelRect{rect.x0, y, rect.x0 + 1, y + 1});
            const float* source = from.at(c, first.x0, first.y0);
            float* to = out.row(c, y);
            for (int i = 0; i < rect.width(); ++i)
                to[i] = source[i * step1];
        }
    }
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep& step, const WarpNode& node,
                                   const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[size_t(step.inputs[0])];
    const PixelRect reach =
        roundedOutward(node.kernel->region(node.parameters.record.data(), rect).inset(-1.5, -1.5));
    const bool inside = !drawn.empty && step.node->inputs[0]->extent.contains(reach);
    TilePlanes out = m_arena.planes(rect, inside && drawn.planes.opaque());
    const BilinearWindow window(drawn.planes, m_arena);
    for (int y = rect.y0; y < rect.y1; ++y) {
        for (int x = rect.x0; x < rect.x1; x += sampledRun)
            sampleRow(node, window, x, y, std::min(sampledRun, rect.x1 - x), out);
    }
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep& step, const HalveNode& node,
                                   const PixelRect& rect)
{
    const PixelRect wanted{node.originX + 2 * rect.x0, node.originY + 2 * rect.y0,
                           node.originX + 2 * rect.x1, node.originY + 2 * rect.y1};
    const TilePlanes from =
        edgeRepeatedPlanes(m_drawn[size_t(step.inputs[0])].planes, wanted, m_arena);
    TilePlanes out = m_arena.planes(rect, from.opaque());
    for (int c = 0; c < from.channels(); ++c) {
        for (int y = rect.y0; y < rect.y1; ++y) {
            const float* low = from.at(c, wanted.x0, wanted.y0 + 2 * (y - rect.y0));
            const float* high = low + from.stride;
            float* to = out.row(c, y);
            for (int i = 0; i < rect.width(); ++i)
                to[i] = 0.25f * (low[2 * i] + low[2 * i + 1] + high[2 * i] + high[2 * i + 1]);
        }
    }
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const GaussianNode& node,
                                   const PixelRect& rect)
{
    const int reach = gaussianBorder(node.sigma);
    const PixelRect window = rect.grown(reach);
    const TilePlanes from = withRecipesAlpha(step, input(step, 0, window));
    const std::vector<float>& weights = m_tables.steps[index].blur;
    const PixelRect tall{rect.x0, window.y0, rect.x1, window.y1};
    TilePlanes across = m_arena.planes(tall, from.opaque());
    TilePlanes out = m_arena.planes(rect, from.opaque());
    for (int c = 0; c < from.channels(); ++c) {
        for (int y = tall.y0; y < tall.y1; ++y)
            convolveAcross(from.at(c, rect.x0, y), across.row(c, y), rect.width(), weights.data(),
                           reach);
        for (int y = rect.y0; y < rect.y1; ++y)
            convolveDown(across.row(c, y), across.stride, out.row(c, y), rect.width(),
                         weights.data(), reach);
    }
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const LanczosNode&,
                                   const PixelRect& rect)
{
    const PassTables::Taps& across = m_tables.steps[index].across;
    const PassTables::Taps& down = m_tables.steps[index].down;
    const auto firstOf = [](const PassTables::Taps& taps, int i) {
        return taps.first[size_t(i - taps.origin)];
    };
    const PixelRect wanted{firstOf(across, rect.x0), firstOf(down, rect.y0),
                           firstOf(across, rect.x1 - 1) + across.width,
                           firstOf(down, rect.y1 - 1) + down.width};
    const TilePlanes from = withRecipesAlpha(
        step, edgeRepeatedPlanes(m_drawn[size_t(step.inputs[0])].planes, wanted, m_arena));
    TilePlanes tall = m_arena.planes({wanted.x0, rect.y0, wanted.x1, rect.y1}, from.opaque());
    TilePlanes out = m_arena.planes(rect, from.opaque());
    for (int c = 0; c < from.channels(); ++c) {
        for (int y = rect.y0; y < rect.y1; ++y) {
            const float* weights = &down.weights[size_t(y - down.origin) * size_t(down.width)];
            float* to = tall.row(c, y);
            std::fill_n(to, wanted.width(), 0.0f);
            for (int k = 0; k < down.width; ++k) {
                const float* row = from.at(c, wanted.x0, firstOf(down, y) + k);
                for (int i = 0; i < wanted.width(); ++i)
                    to[i] += weights[k] * row[i];
            }
            float* result = out.row(c, y);
            for (int x = rect.x0; x < rect.x1; ++x) {
                const float* taps =
                    &across.weights[size_t(x - across.origin) * size_t(across.width)];
                const float* source = to + (firstOf(across, x) - wanted.x0);
                float sum = 0;
                for (int k = 0; k < across.width; ++k)
                    sum += taps[k] * source[k];
                result[x - rect.x0] = c == 3 ? std::clamp(sum, 0.0f, 1.0f) : sum;
            }
        }
    }
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep& step, const WindowNode& node,
                                   const PixelRect& rect)
{
    const TilePlanes from =
        withRecipesAlpha(step,
                         edgeRepeatedPlanes(m_drawn[size_t(step.inputs[0])].planes,
                                            rect.grown(node.border), m_arena));
    TilePlanes out = m_arena.planes(rect, from.opaque());
    WindowBlock block{.width = rect.width(),
                      .height = rect.height(),
                      .inputStride = from.stride,
                      .outputStride = out.stride};
    for (int c = 0; c < from.channels(); ++c) {
        block.input[c] = from.at(c, rect.x0, rect.y0);
        block.output[c] = out.row(c, rect.y0);
    }
    node.kernel->tiled(node.parameters.record.data(), block);
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep&, const HistogramNode&,
                                   const PixelRect& rect)
{
    // Always a stored leaf: the planner gives histograms a pass of their own.
    return m_arena.planes(rect, false);
}

} // namespace orvane
