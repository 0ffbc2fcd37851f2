#include "PointwiseRuns.h"

#include <algorithm>

namespace orvane {

namespace {

bool isPointwise(const PlanStep& step)
{
    return step.stored < 0 && step.node->as<PointwiseNode>();
}

/// Lays patches on the rows of its input.
bool laysPatches(const PlanStep& step)
{
    return step.stored < 0 && step.node->as<PatchesNode>();
}

bool isCrop(const PlanStep& step)
{
    return step.stored < 0 && step.node->as<CropNode>();
}

/// Looks at nothing but the same row of its inputs.
bool followsRows(const PlanStep& step)
{
    return isPointwise(step) || laysPatches(step) || isCrop(step);
}

/// Whether its pixels may be an input's, in the input's memory.
bool passesOn(const PlanStep& step)
{
    return isCrop(step)
        || (isPointwise(step) && step.node->as<PointwiseNode>()->kernel->cover != Cover::None);
}

/// Whether it can draw one row after the other. A resampling does not look at its own rows twice.
bool drawsRows(const PlanStep& step)
{
    return step.stored >= 0 || followsRows(step) || step.node->as<SourceNode>()
        || step.node->as<WarpNode>();
}

/// Which inputs are copied into zeros first: those that end before what is read of their reader
/// does.
class Copies {
public:
    explicit Copies(const PlanPass& pass)
        : m_pass(pass)
    {
        const Extent& drawn = pass.steps.back().node->extent;
        if (!drawn.infinite)
            requestedRects(pass, drawn.rect, m_requests);
    }
    bool isCopied(int input, size_t reader) const
    {
        const PlanStep& step = m_pass.steps[reader];
        if (isCrop(step))
            return false;
        // What a mask lets through is drawn within the mask alone.
        const bool masked = isPointwise(step) && input == step.inputs.front()
            && step.node->as<PointwiseNode>()->kernel->cover == Cover::FirstWithinMask;
        return endsEarly(input, reader) || (masked && endsEarly(step.inputs[2], reader));
    }

private:
    bool endsEarly(int input, size_t reader) const
    {
        const Extent& extent = m_pass.steps[size_t(input)].node->extent;
        return m_requests.empty() ? !extent.contains(m_pass.steps[reader].node->extent)
                                  : !extent.contains(m_requests[reader]);
    }

    const PlanPass& m_pass;
    std::vector<PixelRect> m_requests; ///< none: the pass's extent is infinite
};

} // namespace

RowGroups::RowGroups(const PlanPass& pass)
    : runBefore(pass.steps.size(), false)
    , oneRow(pass.steps.size(), false)
{
    std::vector<int> group(pass.steps.size(), 0);
    // By step: nothing of it is there before what waits has been run.
    std::vector<bool> waits(pass.steps.size(), false);
    const Copies copies(pass);
    int current = 0;
    for (size_t i = 0; i < pass.steps.size(); ++i) {
        const PlanStep& step = pass.steps[i];
        const auto waiting = [&](const int input) {
            return waits[size_t(input)] && group[size_t(input)] == current;
        };
        const auto copiedWhileWaiting = [&](const int input) {
            return waiting(input) && copies.isCopied(input, i);
        };
        runBefore[i] = followsRows(step) ? std::ranges::any_of(step.inputs, copiedWhileWaiting)
                                         : std::ranges::any_of(step.inputs, waiting);
        current += runBefore[i];
        group[i] = current;
        waits[i] = isCrop(step) ? std::ranges::any_of(step.inputs, waiting) : followsRows(step);
        oneRow[i] = drawsRows(step);
    }
    // Readers first: what hands an input's row on needs readers that follow it.
    for (size_t i = pass.steps.size(); i-- > 0;) {
        const PlanStep& reader = pass.steps[i];
        for (const int input : reader.inputs) {
            const bool together = followsRows(reader) && group[size_t(input)] == group[i]
                && !copies.isCopied(input, i) && (!passesOn(reader) || oneRow[i]);
            oneRow[size_t(input)] = oneRow[size_t(input)] && together;
        }
    }
}

TilePlanes PointwiseRuns::zeros(const PixelRect& rect)
{
    const size_t size = size_t(rect.width() + rowPadding);
    if (m_zeros.size() < size) {
        // Those who wait read the old row; to run them now would leave the rows that they draw for
        // the asker behind.
        m_outgrown.push_back(std::move(m_zeros));
        m_zeros.assign(size, 0.0f);
    }
    TilePlanes planes;
    planes.rect = rect;
    for (float*& plane : planes.plane)
        plane = m_zeros.data();
    return planes;
}

void PointwiseRuns::add(const Run& run)
{
    m_ones.resize(std::max(m_ones.size(), size_t(run.rect.width() + rowPadding)), 1.0f);
    m_waiting.push_back({run, {}, {}});
    for (size_t n = 0; n < run.inputCount; ++n)
        m_arena.hold(run.inputs[n]);
    m_arena.hold(run.output);
}

void PointwiseRuns::add(const PixelRect& rect, std::function<void(int y)> row,
                        std::initializer_list<TilePlanes> uses)
{
    Waiting& waiting = m_waiting.emplace_back();
    waiting.run.rect = rect;
    waiting.row = std::move(row);
    for (const TilePlanes& planes : uses) {
        waiting.run.inputs[waiting.run.inputCount++] = planes;
        m_arena.hold(planes);
    }
}

/// The row of a run that is drawn first.
PointwiseRow PointwiseRuns::firstRow(const Run& run) const
{
    const PixelRect& rect = run.rect;
    PointwiseRow row{.x = rect.x0, .y = rect.y0, .count = rect.width(), .inputs = {}, .output = {}};
    for (size_t n = 0; n < run.inputCount; ++n) {
        const TilePlanes& input = run.inputs[n];
        for (int c = 0; c < input.channels(); ++c)
            row.inputs[n][c] = input.at(c, rect.x0, rect.y0);
        if (input.opaque())
            row.inputs[n][3] = m_ones.data();
    }
    for (int c = 0; c < run.output.channels(); ++c)
        row.output[c] = run.output.at(c, rect.x0, rect.y0);
    return row;
}

/// Runs it, and moves on to the next. With many short steps, putting together each row anew took
/// a fiftieth of a draw.
void PointwiseRuns::runRow(Waiting& waiting)
{
    const Run& run = waiting.run;
    PointwiseRow& row = waiting.pixels;
    run.run(run.node->parameters.record.data(), run.node->parameters.tableData(), row);
    ++row.y;
    for (size_t n = 0; n < run.inputCount; ++n) {
        const TilePlanes& input = run.inputs[n];
        for (int c = 0; c < input.channels(); ++c)
            row.inputs[n][c] += input.stride;
    }
    for (int c = 0; c < run.output.channels(); ++c)
        row.output[c] += run.output.stride;
}

void PointwiseRuns::flush()
{
    if (m_waiting.empty())
        return;
    PixelRect all;
    for (Waiting& waiting : m_waiting) {
        all = all.united(waiting.run.rect);
        // Not before: m_ones may have moved.
        if (!waiting.row)
            waiting.pixels = firstRow(waiting.run);
    }
    for (int y = all.y0; y < all.y1; ++y) {
        m_check();
        for (Waiting& waiting : m_waiting) {
            if (y < waiting.run.rect.y0 || y >= waiting.run.rect.y1)
                continue;
            if (waiting.row)
                waiting.row(y);
            else
                runRow(waiting);
        }
    }
    for (const auto& waiting : m_waiting) {
        const Run& run = waiting.run;
        for (size_t n = 0; n < run.inputCount; ++n)
            m_arena.letGo(run.inputs[n]);
        m_arena.letGo(run.output);
    }
    m_waiting.clear();
    m_outgrown.clear();
}

} // namespace orvane
