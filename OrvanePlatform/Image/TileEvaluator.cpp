#include "TileEvaluator.h"

#include "Bitmap.h"
#include "BlurGrid.h"
#include "BlurWeights.h"
#include "Lanczos.h"
#include "PlaneConversion.h"
#include "RowSums.h"
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

} // namespace

PassTables makePassTables(const Plan& plan, const PlanPass& pass)
{
    PassTables tables;
    tables.steps.resize(pass.steps.size());
    if (pass.target >= 0) {
        const StoredPlan& target = plan.stored[size_t(pass.target)];
        if (target.form == StoredPlan::Form::ReducedBlur) {
            const float sigma = target.node->as<GaussianNode>()->sigma;
            const std::vector<double> weights = coarseWeights(double(sigma), target.factor);
            tables.steps.back().blur.assign(weights.begin(), weights.end());
            return tables;
        }
    }
    std::vector<PixelRect> requests;
    requestedRects(pass, pixelsBehind(plan, pass, pass.region), requests);
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
                             const PassTables& tables, TileArena& arena, CancellationCheck check)
    : m_pass(pass)
    , m_storedPlans(storedPlans)
    , m_stored(stored)
    , m_tables(tables)
    , m_groups(pass)
    , m_lastByRows(m_groups.oneRow.back())
    , m_lastRead(pass.steps.size())
    , m_drawn(pass.steps.size())
    , m_arena(arena)
    , m_check(check)
    , m_runs(arena, check)
{
    std::vector<bool> readLater(pass.steps.size(), false);
    const auto read = [&](size_t reader, int step) {
        if (step >= 0 && !readLater[size_t(step)])
            m_lastRead[reader].push_back(size_t(step));
        if (step >= 0)
            readLater[size_t(step)] = true;
    };
    for (size_t i = pass.steps.size(); i-- > 0;) {
        for (const int input : pass.steps[i].inputs)
            read(i, input);
        read(i, pass.steps[i].sameBlur);
    }
}

TilePlanes TileEvaluator::draw(const PixelRect& rect)
{
    m_groups.oneRow.back() = false;
    return drawWhole(rect);
}

TilePlanes TileEvaluator::drawWhole(const PixelRect& rect)
{
    drawSteps(rect);
    m_runs.flush();
    const Drawn& result = m_drawn.back();
    return coveringPlanes(result.empty ? TilePlanes{} : result.planes, rect, m_arena);
}

void TileEvaluator::draw(const PixelRect& rect, const RowTarget& target)
{
    // What ends within the rectangle is copied into zeros.
    m_groups.oneRow.back() = m_lastByRows && m_pass.steps.back().node->extent.contains(rect);
    if (!m_groups.oneRow.back())
        return target(drawWhole(rect), rect);
    drawSteps(rect);
    if (m_drawn.back().empty)
        return target(coveringPlanes({}, rect, m_arena), rect);
    const TilePlanes planes = m_drawn.back().planes;
    m_runs.add(rect, [&](int y) { target(planes, {rect.x0, y, rect.x1, y + 1}); }, {planes});
    m_runs.flush();
}

void TileEvaluator::drawSteps(const PixelRect& rect)
{
    m_arena.reset();
    requestedRects(m_pass, rect, m_requests);
    for (size_t i = 0; i < m_pass.steps.size(); ++i) {
        if (m_groups.runBefore[i])
            m_runs.flush();
        m_check();
        drawStep(i);
        m_arena.hold(m_drawn[i].planes);
        for (const size_t input : m_lastRead[i])
            m_arena.letGo(m_drawn[input].planes);
        m_arena.sweep();
    }
}

void TileEvaluator::drawStep(size_t index)
{
    const PlanStep& step = m_pass.steps[index];
    const PixelRect& rect = m_requests[index];
    Drawn& drawn = m_drawn[index];
    drawn = {};
    // Whatever is not pointwise makes nothing of nothing.
    drawn.empty = rect.isEmpty()
        || (!step.inputs.empty() && !step.node->as<PointwiseNode>()
            && m_drawn[size_t(step.inputs.front())].empty);
    if (drawn.empty)
        return;
    drawn.reusable = true;
    drawn.planes = step.stored >= 0
        ? drawStored(index, step, rect)
        : std::visit([&](const auto& node) { return drawNode(index, step, node, rect); },
                     step.node->data);
    if (drawn.empty)
        return;
    // Arithmetic on alpha may leave it a rounding away from the 1 that the recipe promises.
    if (step.node->opaque && step.node->extent.contains(rect))
        drawn.planes.plane[3] = nullptr;
}

TilePlanes TileEvaluator::input(const PlanStep& step, size_t n, const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[size_t(step.inputs[n])];
    if (drawn.empty || drawn.planes.stride != 0)
        return coveringPlanes(drawn.empty ? TilePlanes{} : drawn.planes, rect, m_arena);
    // One row stands for all; where it is not drawn, the reader makes no use of it.
    TilePlanes planes = drawn.planes;
    planes.rect.y0 = std::min(planes.rect.y0, rect.y0);
    planes.rect.y1 = std::max(planes.rect.y1, rect.y1);
    return planes;
}

TilePlanes TileEvaluator::drawStored(size_t index, const PlanStep& step, const PixelRect& rect)
{
    const StoredPlan& plan = m_storedPlans[size_t(step.stored)];
    StoredImage& image = *m_stored[size_t(step.stored)];
    if (plan.form == StoredPlan::Form::ReducedBlur)
        return drawEnlarged(index, EnlargedBlur(image, plan.factor, rect, m_arena), rect);
    if (const auto view = image.view(rect)) {
        m_drawn[index].reusable = false;
        return *view;
    }
    if (!m_groups.oneRow[index])
        return image.read(rect, m_arena);
    const TilePlanes row = m_arena.rowPlanes(rect, image.opaque());
    m_runs.add(rect, [&image, row](int y) { image.readRow(y, row); }, {row});
    return row;
}

TilePlanes TileEvaluator::drawEnlarged(size_t index, const EnlargedBlur& blur,
                                       const PixelRect& rect)
{
    if (m_groups.oneRow[index]) {
        const TilePlanes row = blur.rowPlanes(m_arena);
        m_runs.add(rect, [=](int y) { blur.drawRow(y, row); }, {blur.scratch(), row});
        return row;
    }
    const TilePlanes planes = blur.planes(m_arena);
    for (int y = rect.y0; y < rect.y1; ++y)
        blur.drawRow(y, planes);
    return planes;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep&, const SourceNode& node,
                                   const PixelRect& rect)
{
    const Bitmap& bitmap = *node.bitmap;
    if (!m_groups.oneRow[index])
        return readSource(bitmap, rect, m_arena);
    const TilePlanes row = m_arena.rowPlanes(rect, !bitmap.hasAlpha());
    m_runs.add(rect, [&bitmap, row](int y) { readSourceRow(bitmap, y, row); }, {row});
    return row;
}

/// The one input whose pixels are the result over the whole tile, or -1. Without any pixels, every
/// input is.
int TileEvaluator::decidingInput(const PlanStep& step, Cover cover, const PixelRect& rect) const
{
    const auto empty = [&](size_t n) { return m_drawn[size_t(step.inputs[n])].empty; };
    // What is covered may have been drawn for another reader.
    if (cover == Cover::FirstOverSecond && neededInput(*step.node, 1, rect).isEmpty())
        return 0;
    if (cover == Cover::FirstOverSecond)
        return empty(1) ? 0 : (empty(0) ? 1 : -1);
    if (cover == Cover::FirstWithinMask)
        return empty(2) || empty(0) ? 1 : -1;
    return -1;
}

/// A part of another step's pixels, in their memory. What a step draws never goes beyond its own
/// extent: readers take the planes' edge for the picture's.
TilePlanes TileEvaluator::partOf(size_t index, size_t from, const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[from];
    TilePlanes view = drawn.planes;
    for (int c = 0; c < view.channels(); ++c)
        view.plane[c] = drawn.planes.at(c, rect.x0, rect.y0);
    view.rect = rect;
    // The last step of a pass is drawn whole where its reader does not take rows.
    if (view.stride == 0 && !m_groups.oneRow[index])
        return copiedRows(view);
    // A row of the view that begins elsewhere could be written past its memory's end.
    m_drawn[index].reusable =
        drawn.reusable && drawn.planes.rect.x0 == rect.x0 && m_pass.steps[from].readers == 1;
    return view;
}

/// Planes for what comes as one row after the other.
TilePlanes TileEvaluator::copiedRows(const TilePlanes& row)
{
    const TilePlanes out = m_arena.planes(row.rect, row.opaque());
    const auto copyRow = [row, out](int y) {
        for (int c = 0; c < out.channels(); ++c)
            std::copy_n(row.row(c, y), row.rect.width(), out.row(c, y));
    };
    m_runs.add(row.rect, copyRow, {row, out});
    return out;
}

/// The pixels of another step as this one's own; transparent where it has none.
TilePlanes TileEvaluator::passedOn(size_t index, size_t from, const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[from];
    if (drawn.empty) {
        m_drawn[index].empty = true;
        return {};
    }
    if (drawn.planes.rect.contains(rect))
        return partOf(index, from, rect);
    return coveringPlanes(drawn.planes, rect, m_arena);
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const PointwiseNode& node,
                                   const PixelRect& rect)
{
    if (const int only = decidingInput(step, node.kernel->cover, rect); only >= 0)
        return passedOn(index, size_t(step.inputs[size_t(only)]), rect);
    PointwiseRuns::Run run;
    run.node = &node;
    run.rect = rect;
    run.inputCount = step.inputs.size();
    run.opaque = !step.inputs.empty() || step.node->opaque;
    for (size_t n = 0; n < step.inputs.size(); ++n) {
        const Node& read = *m_pass.steps[size_t(step.inputs[n])].node;
        const bool empty = m_drawn[size_t(step.inputs[n])].empty;
        run.inputs[n] = empty ? m_runs.zeros(rect) : input(step, n, rect);
        // It has pixels, but none that were asked for.
        if (empty && read.opaque && read.extent.contains(rect))
            run.inputs[n].plane[3] = nullptr;
        run.opaque = run.opaque && run.inputs[n].opaque();
    }
    run.output = pointwiseOutput(index, step, run.opaque);
    if (run.opaque && node.kernel->rule == OpaqueRule::KeepsAlpha)
        run.output.plane[3] = nullptr;
    else if (run.output.opaque())
        m_arena.addPlane(run.output, 3);
    run.run = run.opaque ? node.kernel->opaque : node.kernel->general;
    m_runs.add(run);
    return run.output;
}

/// Where a pointwise step draws. Over an input that nobody else reads, if there is one: that keeps
/// a long chain within one tile's planes.
TilePlanes TileEvaluator::pointwiseOutput(size_t index, const PlanStep& step, bool opaque)
{
    const PixelRect& rect = m_requests[index];
    const bool oneRow = m_groups.oneRow[index];
    for (const int input : step.inputs) {
        const Drawn& drawn = m_drawn[size_t(input)];
        if (drawn.reusable && !drawn.empty && drawn.planes.rect == rect
            && m_pass.steps[size_t(input)].readers == 1 && (drawn.planes.stride != 0 || oneRow))
            return drawn.planes;
    }
    return oneRow ? m_arena.rowPlanes(rect, opaque) : m_arena.planes(rect, opaque);
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const CropNode&,
                                   const PixelRect& rect)
{
    return partOf(index, size_t(step.inputs[0]), rect);
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
            if (step1 == -1)
                reverseAcross(source, to, rect.width());
            for (int i = 0; step1 != -1 && i < rect.width(); ++i)
                to[i] = source[i * step1];
        }
    }
    return out;
}

/// The picture with the patches on it.
TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const PatchesNode& node,
                                   const PixelRect& rect)
{
    const auto from = size_t(step.inputs[0]);
    const Drawn& ground = m_drawn[from];
    const Drawn& patched = m_drawn[size_t(step.inputs[1])];
    const bool over = ground.reusable && ground.planes.rect == rect
        && m_pass.steps[from].readers == 1 && (ground.planes.stride != 0 || m_groups.oneRow[index]);
    if (over && patched.empty)
        return ground.planes;
    const TilePlanes picture = input(step, 0, rect);
    const TilePlanes out = over  ? ground.planes
        : m_groups.oneRow[index] ? m_arena.rowPlanes(rect, true)
                                 : m_arena.planes(rect, true);
    std::vector<PixelRect> places;
    for (const NodePtr& patch : node.patches) {
        const PixelRect place = patch->extent.rect.intersection(rect);
        if (!place.isEmpty())
            places.push_back(place);
    }
    const TilePlanes patches = patched.planes;
    const auto layRow = [over, picture, out, patches, places](int y) {
        for (int c = 0; c < out.channels(); ++c) {
            if (!over)
                std::copy_n(picture.at(c, out.rect.x0, y), out.rect.width(), out.row(c, y));
            for (const PixelRect& place : places) {
                if (y >= place.y0 && y < place.y1)
                    std::copy_n(patches.at(c, place.x0, y), place.width(), out.at(c, place.x0, y));
            }
        }
    };
    m_runs.add(rect, layRow, {picture, patches, out});
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep&, const HistogramNode&,
                                   const PixelRect& rect)
{
    // Always a stored leaf, as the next one is: the planner gives them passes of their own.
    return m_arena.planes(rect, false);
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep&, const PatchGroundNode&,
                                   const PixelRect& rect)
{
    return m_arena.planes(rect, false);
}

} // namespace orvane
