#include "Drawing.h"

#include "CellAverager.h"
#include "PixelKernels.h"
#include "ReducedBlur.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

using Form = StoredPlan::Form;

/// Tiles of a step for each worker: enough that the last ones to finish cost little.
constexpr int tilesForEachWorker = 4;
/// What is kept has all its rows in memory anyway.
constexpr int tilesOfKept = 32;

TilesAtOnce tilesAtOnce(int workers, bool kept)
{
    if (kept)
        return {.pixels = workers * tilesOfKept, .cells = workers * tilesOfKept};
    // Rows of cells are little work, and stand for many rows of pixels to be held.
    return {.pixels = workers * tilesForEachWorker, .cells = 1};
}

std::string operationName(const Node& node)
{
    if (const auto* pointwise = node.as<PointwiseNode>())
        return std::string(pointwise->kernel->name);
    if (const auto* warp = node.as<WarpNode>())
        return std::string(warp->kernel->name);
    if (const auto* window = node.as<WindowNode>())
        return std::string(window->kernel->name);
    if (const auto* blur = node.as<GaussianNode>())
        return "blur " + std::to_string(blur->sigma).substr(0, 5);
    if (node.as<SourceNode>())
        return "source";
    if (node.as<HalveNode>())
        return "halve";
    if (node.as<LanczosNode>())
        return "lanczos";
    return {};
}

std::string operationNames(const Plan& plan, const PlanPass& pass)
{
    std::string names;
    for (const PlanStep& step : pass.steps) {
        const std::string name = operationName(*step.node);
        if (step.stored >= 0)
            names.append("[").append(std::to_string(step.stored)).append("] ");
        else if (!name.empty())
            names.append(name).append(" ");
    }
    if (pass.target < 0)
        return names;
    const StoredPlan& target = plan.stored[size_t(pass.target)];
    if (target.form == Form::Averages)
        names.append("averaged by ").append(std::to_string(target.factor)).append(" ");
    if (target.form == Form::ReducedBlur)
        names.append("blurred ");
    return names.append("-> ").append(std::to_string(pass.target));
}

/// The stored image that a pass averages as it is, without drawing anything first; or -1.
int imageAveraged(const Plan& plan, const PlanPass& pass)
{
    const int finer = plan.stored[size_t(pass.target)].averages;
    if (finer >= 0)
        return finer;
    const PlanStep* step = &pass.steps.back();
    while (step->stored < 0 && step->node->as<CropNode>())
        step = &pass.steps[size_t(step->inputs.front())];
    const bool whole = step->stored >= 0 && plan.stored[size_t(step->stored)].form == Form::Whole;
    return whole ? step->stored : -1;
}

} // namespace

Drawing::Drawing(const Node& root, const PixelRect& rect, StoredFormat format,
                 const DrawOptions& options, const CIContext::Options& settings,
                 IntermediateCache& cache, std::vector<TileArena> arenas, PictureTarget& target)
    : m_plan(makePlan(root, rect, settings.tileWidth, settings.tileHeight,
                      options.keepIntermediates ? Intermediates::Kept : Intermediates::Freed))
    , m_format(format)
    , m_options(options)
    , m_cache(cache)
    , m_target(target)
    , m_stored(m_plan.stored.size())
    , m_keys(m_plan.stored.size())
    , m_passes(m_plan.passes.size())
    , m_arenas(std::move(arenas))
    , m_queue(m_plan, m_schedule, int(m_arenas.size()), settings.shuffleSeed)
{
    m_schedule = makeSchedule(m_plan, findKept(),
                              tilesAtOnce(int(m_arenas.size()), options.keepIntermediates));
}

bool Drawing::cancelled() const
{
    return m_options.cancellation && m_options.cancellation->isCancelled();
}

const PlanPass& Drawing::passOf(size_t step) const
{
    return m_plan.passes[size_t(m_schedule.steps[step].pass)];
}

/// What a stored image's samples follow from: its recipe, and which of the images it was drawn from
/// were stored, and so rounded, themselves.
const Digest& Drawing::key(size_t stored)
{
    if (m_keys[stored])
        return *m_keys[stored];
    const StoredPlan& planned = m_plan.stored[stored];
    DigestBuilder digest;
    digest.add(planned.node->digest).add(uint64_t(planned.form)).add(uint64_t(m_format));
    digest.add(uint64_t(planned.exact));
    for (const PlanPass& pass : m_plan.passes) {
        for (const PlanStep& step : pass.steps) {
            const bool read = step.stored >= 0 && step.stored != int(stored);
            if (pass.target == int(stored) && read)
                digest.add(key(size_t(step.stored)));
        }
    }
    m_keys[stored] = digest.digest();
    return *m_keys[stored];
}

Digest Drawing::role(size_t stored) const
{
    const StoredPlan& planned = m_plan.stored[stored];
    DigestBuilder digest;
    digest.add(uint64_t(m_plan.stored.size())).add(uint64_t(stored)).add(uint64_t(planned.form));
    for (const int edge :
         {planned.region.x0, planned.region.y0, planned.region.x1, planned.region.y1})
        digest.add(uint64_t(edge));
    return digest.digest();
}

std::vector<bool> Drawing::findKept()
{
    std::vector<bool> available(m_stored.size(), false);
    if (!m_options.keepIntermediates)
        return available;
    // Only what the picture asks for is looked up: what stands behind a kept image stays unused.
    std::vector<bool> wanted(m_plan.passes.size(), false);
    std::vector<bool> lookedUp(m_stored.size(), false);
    wanted.back() = true;
    for (size_t p = m_plan.passes.size(); p-- > 0;) {
        for (const PlanStep& step : m_plan.passes[p].steps) {
            if (!wanted[p] || step.stored < 0 || lookedUp[size_t(step.stored)])
                continue;
            const auto stored = size_t(step.stored);
            lookedUp[stored] = true;
            m_stored[stored] = m_cache.find(key(stored), m_plan.stored[stored].region);
            available[stored] = m_stored[stored] != nullptr;
            m_statistics.reusedImages += available[stored];
            for (size_t q = 0; q < p && !available[stored]; ++q)
                wanted[q] = wanted[q] || m_plan.passes[q].target == step.stored;
        }
    }
    return available;
}

void Drawing::allocate(size_t stored)
{
    const StoredPlan& planned = m_plan.stored[stored];
    const bool coarse = planned.form == Form::Averages || planned.form == Form::ReducedBlur;
    const bool kept = m_options.keepIntermediates && planned.form != Form::Averages;
    const bool opaque =
        planned.node->opaque && (coarse || planned.node->extent.contains(planned.region));
    const int rows = kept ? planned.region.height() : m_schedule.images[stored].rows;
    const StoredFormat format = coarse || planned.exact ? StoredFormat::Float : m_format;
    m_stored[stored] = std::make_shared<StoredImage>(planned.region, opaque, format, rows,
                                                     m_cache.memory(m_options.keepIntermediates));
    m_storedBytes += m_stored[stored]->byteSize();
    m_statistics.peakStoredBytes = std::max(m_statistics.peakStoredBytes, m_storedBytes);
    m_statistics.storedImages += planned.form != Form::Averages;
}

/// Lets go of what no later step reads.
void Drawing::release(size_t step)
{
    for (size_t i = 0; i < m_stored.size(); ++i) {
        if (!m_stored[i] || m_schedule.images[i].lastStep != int(step))
            continue;
        m_storedBytes -= std::min(m_storedBytes, m_stored[i]->byteSize());
        m_stored[i].reset();
    }
}

TileEvaluator& Drawing::evaluator(const PlanPass& pass, int slot)
{
    Pass& own = m_passes[size_t(&pass - m_plan.passes.data())];
    auto& evaluator = own.evaluators[size_t(slot)];
    if (!evaluator)
        evaluator = std::make_unique<TileEvaluator>(pass, m_plan.stored, m_stored, *own.tables,
                                                    m_arenas[size_t(slot)],
                                                    CancellationCheck(m_options.cancellation));
    return *evaluator;
}

void Drawing::drawTile(const PlanPass& pass, int slot, const PixelRect& tile)
{
    if (pass.target < 0)
        return evaluator(pass, slot)
            .draw(tile, [&](const TilePlanes& planes, const PixelRect& rows) {
                m_target.take(planes, rows);
            });
    const StoredPlan& planned = m_plan.stored[size_t(pass.target)];
    StoredImage* image = m_stored[size_t(pass.target)].get();
    TileArena& arena = m_arenas[size_t(slot)];
    switch (planned.form) {
    case Form::Whole:
        // Its rows are read until the last one is drawn.
        if (pass.patches)
            return image->write(evaluator(pass, slot).draw(tile), tile);
        return evaluator(pass, slot)
            .draw(tile, [&](const TilePlanes& planes, const PixelRect& rows) {
                image->write(planes, rows);
            });
    case Form::Averages:
        return averageTile(pass, slot, tile);
    case Form::ReducedBlur: {
        const Pass& own = m_passes[size_t(&pass - m_plan.passes.data())];
        arena.reset();
        return blurCells(*m_stored[size_t(planned.averages)], own.tables->steps.back().blur, tile,
                         coarseEdges(*planned.node->inputs.front()), *image, arena);
    }
    case Form::Histogram:
        return count(*planned.node->as<HistogramNode>(), evaluator(pass, slot).draw(tile), tile);
    }
}

void Drawing::averageTile(const PlanPass& pass, int slot, const PixelRect& tile)
{
    const StoredPlan& planned = m_plan.stored[size_t(pass.target)];
    StoredImage& image = *m_stored[size_t(pass.target)];
    const CoarseEdges edges = coarseEdges(*planned.node->inputs.front());
    TileArena& arena = m_arenas[size_t(slot)];
    const int from = imageAveraged(m_plan, pass);
    if (from >= 0) {
        const auto reads = storedReads(m_plan, pass, tile);
        const PixelRect rows = reads.empty() ? PixelRect{} : reads.front().rect;
        arena.reset();
        const int factor = m_plan.stored[size_t(from)].factor;
        CellAverager averager(tile, levelsBetween(factor, planned.factor), edges, rows, image,
                              arena);
        averager.add(*m_stored[size_t(from)]);
        return averager.finish();
    }
    const PixelRect pixels = pixelsBehind(m_plan, pass, tile);
    CellAverager averager(tile, levelsBetween(1, planned.factor), edges, pixels, image, arena);
    if (!pixels.isEmpty())
        evaluator(pass, slot).draw(pixels, [&](const TilePlanes& planes, const PixelRect& rows) {
            averager.add(planes, rows);
        });
    averager.finish();
}

/// Makes what the next step draws with and into. False where it must wait.
bool Drawing::openNext()
{
    const auto next = m_queue.toOpen();
    if (!next)
        return false;
    const ScheduledRows& rows = m_schedule.steps[*next];
    const PlanPass& pass = passOf(*next);
    if (pass.target < 0 && !m_target.begin(rows.rect))
        return false;
    Pass& own = m_passes[size_t(rows.pass)];
    if (!own.tables) {
        own.tables = std::make_unique<PassTables>(makePassTables(m_plan, pass));
        own.evaluators.resize(m_arenas.size());
        const bool blur =
            pass.target >= 0 && m_plan.stored[size_t(pass.target)].form == Form::ReducedBlur;
        m_statistics.passes += !blur;
    }
    if (pass.target >= 0 && !m_stored[size_t(pass.target)]) {
        allocate(size_t(pass.target));
        own.storedMegabytes = double(m_stored[size_t(pass.target)]->byteSize()) / 1e6;
    }
    m_queue.open();
    return true;
}

ThreadPool::Step Drawing::work(int worker)
{
    std::unique_lock lock(m_mutex);
    if (cancelled())
        return ThreadPool::Step::Finished;
    auto tile = m_queue.take(worker);
    while (!tile && openNext())
        tile = m_queue.take(worker);
    if (!tile)
        return m_queue.complete() ? ThreadPool::Step::Finished : ThreadPool::Step::Waiting;
    lock.unlock();
    const auto start = std::chrono::steady_clock::now();
    try {
        drawTile(passOf(tile->step), worker, tile->rect);
    } catch (const DrawCancelled&) {
        return ThreadPool::Step::Finished;
    }
    const std::chrono::duration<double, std::milli> spent =
        std::chrono::steady_clock::now() - start;
    lock.lock();
    Pass& own = m_passes[size_t(m_schedule.steps[tile->step].pass)];
    own.milliseconds += spent.count();
    own.megapixels += tile->rect.area() / 1e6;
    for (const size_t step : m_queue.finished(*tile))
        complete(step);
    return ThreadPool::Step::Worked;
}

void Drawing::complete(size_t step)
{
    const ScheduledRows& rows = m_schedule.steps[step];
    const PlanPass& pass = passOf(step);
    if (pass.target < 0) {
        m_target.end(rows.rect);
    } else if (int(step) == m_schedule.images[size_t(pass.target)].lastDrawn) {
        const auto stored = size_t(pass.target);
        if (m_plan.stored[stored].form == Form::Histogram)
            settleHistogram(pass);
        if (m_options.keepIntermediates && m_plan.stored[stored].form != Form::Averages)
            m_cache.keep(key(stored), role(stored), m_stored[stored]);
        // There may be thousands, and this was all of it.
        if (pass.patches)
            m_passes[size_t(rows.pass)].evaluators.clear();
    }
    release(step);
}

void Drawing::count(const HistogramNode& histogram, const TilePlanes& planes, const PixelRect& tile)
{
    std::vector<uint64_t> counts(size_t(histogram.count) * 4);
    for (int y = tile.y0; y < tile.y1; ++y) {
        for (int x = tile.x0; x < tile.x1; ++x) {
            const float alpha = planes.opaque() ? 1.0f : *planes.at(3, x, y);
            for (int c = 0; c < 4; ++c) {
                const float stored = c == 3 ? alpha : *planes.at(c, x, y);
                const float v = c == 3 || alpha == 1 ? stored : (alpha > 0 ? stored / alpha : 0.0f);
                const double bin = std::isnan(v) ? 0 : std::floor(double(v) * histogram.count);
                ++counts[size_t(std::clamp(bin, 0.0, histogram.count - 1.0)) * 4 + size_t(c)];
            }
        }
    }
    const std::lock_guard lock(m_countsMutex);
    m_counts.resize(counts.size());
    for (size_t i = 0; i < counts.size(); ++i)
        m_counts[i] += counts[i];
}

void Drawing::settleHistogram(const PlanPass& pass)
{
    const auto& histogram = *m_plan.stored[size_t(pass.target)].node->as<HistogramNode>();
    auto image = std::make_shared<StoredImage>(PixelRect{0, 0, histogram.count, 1}, false,
                                               StoredFormat::Float);
    m_counts.resize(size_t(histogram.count) * 4);
    for (int c = 0; c < 4; ++c) {
        for (int i = 0; i < histogram.count; ++i)
            image->floatRow(c, 0)[i] = float(double(m_counts[size_t(i) * 4 + size_t(c)])
                                             / histogram.region.area() * double(histogram.scale));
    }
    m_counts.clear();
    m_stored[size_t(pass.target)] = std::move(image);
}

void Drawing::report(double sinkMilliseconds)
{
    if (!m_options.statistics)
        return;
    m_statistics.sinkMilliseconds = sinkMilliseconds;
    m_statistics.drawMilliseconds =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start)
            .count();
    for (size_t p = 0; p < m_passes.size(); ++p) {
        if (m_passes[p].tables)
            m_statistics.passTimes.push_back({operationNames(m_plan, m_plan.passes[p]),
                                              m_passes[p].megapixels, m_passes[p].storedMegabytes,
                                              m_passes[p].milliseconds});
    }
    *m_options.statistics = m_statistics;
}

} // namespace orvane
