#include "TiledRenderer.h"

#include "BandWriter.h"
#include "ReducedBlur.h"
#include "TileEvaluator.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <random>

namespace orvane {

/// One draw on its way.
struct TiledRenderer::Drawing {
    Drawing(const Node& root, const PixelRect& rect, StoredFormat storedFormat,
            const DrawOptions& drawOptions, const CIContext::Options& settings)
        : plan(makePlan(root, rect, settings.tileWidth, settings.tileHeight,
                        drawOptions.keepIntermediates ? Intermediates::Kept : Intermediates::Freed))
        , stored(plan.stored.size())
        , format(storedFormat)
        , options(drawOptions)
    {
    }

    bool cancelled() const { return options.cancellation && options.cancellation->isCancelled(); }
    /// What a stored image's samples follow from: its recipe, and which of the images it was drawn
    /// from were stored, and so rounded, themselves.
    Digest key(size_t index) const
    {
        const StoredPlan& planned = plan.stored[index];
        DigestBuilder digest;
        digest.add(planned.node->digest).add(uint64_t(planned.form)).add(uint64_t(format));
        for (const PlanPass& pass : plan.passes) {
            for (const PlanStep& step : pass.steps) {
                if (pass.target == int(index) && step.stored >= 0)
                    digest.add(key(size_t(step.stored)));
            }
        }
        return digest.digest();
    }
    void report()
    {
        if (!options.statistics)
            return;
        const std::chrono::duration<double, std::milli> spent =
            std::chrono::steady_clock::now() - start;
        statistics.drawMilliseconds = spent.count();
        *options.statistics = statistics;
    }
    void noteMemory()
    {
        size_t bytes = 0;
        for (const auto& image : stored)
            bytes += image ? image->byteSize() : 0;
        statistics.peakStoredBytes = std::max(statistics.peakStoredBytes, bytes);
    }

    Plan plan;
    std::vector<std::shared_ptr<StoredImage>> stored;
    StoredFormat format;
    const DrawOptions& options;
    DrawStatistics statistics;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

namespace {

/// Tiles of a region in rows from the top, or shuffled.
std::vector<PixelRect> tilesOf(const PixelRect& region, int width, int height, uint64_t seed)
{
    std::vector<PixelRect> tiles;
    for (int y = region.y1; y > region.y0; y -= height) {
        for (int x = region.x0; x < region.x1; x += width)
            tiles.push_back(
                {x, std::max(y - height, region.y0), std::min(x + width, region.x1), y});
    }
    if (seed != 0) {
        std::mt19937_64 random(seed);
        std::shuffle(tiles.begin(), tiles.end(), random);
    }
    return tiles;
}

} // namespace

void TiledRenderer::drawTiles(
    Drawing& drawing, const PlanPass& pass, const std::vector<PixelRect>& tiles,
    const std::function<void(TileEvaluator&, const PixelRect&)>& body) const
{
    const PassTables tables = makePassTables(pass);
    std::vector<std::unique_ptr<TileEvaluator>> evaluators(size_t(m_pool.slots()));
    std::atomic<size_t> next = 0;
    m_pool.run([&](int slot) {
        const size_t index = next.fetch_add(1);
        if (index >= tiles.size() || drawing.cancelled())
            return ThreadPool::Step::Finished;
        auto& evaluator = evaluators[size_t(slot)];
        if (!evaluator)
            evaluator =
                std::make_unique<TileEvaluator>(pass, drawing.plan.stored, drawing.stored, tables);
        body(*evaluator, tiles[index]);
        return ThreadPool::Step::Worked;
    });
    ++drawing.statistics.passes;
}

bool TiledRenderer::drawPass(Drawing& drawing, const PlanPass& pass, const TileTarget& target) const
{
    const auto tiles =
        tilesOf(pass.region, pass.tileWidth, pass.tileHeight, m_settings.shuffleSeed);
    drawTiles(drawing, pass, tiles, [&](TileEvaluator& evaluator, const PixelRect& tile) {
        target(evaluator.draw(tile), tile);
    });
    return !drawing.cancelled();
}

bool TiledRenderer::fillWhole(Drawing& drawing, const PlanPass& pass) const
{
    const StoredPlan& planned = drawing.plan.stored[size_t(pass.target)];
    const bool opaque = planned.node->opaque && planned.node->extent.contains(planned.region);
    auto image = std::make_shared<StoredImage>(planned.region, opaque, drawing.format);
    drawing.stored[size_t(pass.target)] = image;
    drawing.noteMemory();
    return drawPass(drawing, pass, [&](const TilePlanes& planes, const PixelRect& tile) {
        image->write(planes, tile);
    });
}

bool TiledRenderer::fillReducedBlur(Drawing& drawing, const PlanPass& pass) const
{
    const StoredPlan& planned = drawing.plan.stored[size_t(pass.target)];
    const int f = planned.factor;
    const CoarseArea area = coarseArea(planned);
    StoredImage coarse(area.cells, planned.node->opaque, StoredFormat::Float);
    const auto tiles = tilesOf(area.cells, std::max(1, pass.tileWidth / f),
                               std::max(1, pass.tileHeight / f), m_settings.shuffleSeed);
    drawTiles(drawing, pass, tiles, [&](TileEvaluator& evaluator, const PixelRect& t) {
        TileArena arena;
        averageCells(evaluator.draw({t.x0 * f, t.y0 * f, t.x1 * f, t.y1 * f}), t, f, coarse, arena);
    });
    if (drawing.cancelled())
        return false;
    const double sigma = reducedSigma(planned.node->as<GaussianNode>()->sigma, f);
    drawing.stored[size_t(pass.target)] =
        blurredCells(coarse, sigma, planned.region, area.edges, m_pool);
    drawing.noteMemory();
    return !drawing.cancelled();
}

bool TiledRenderer::fillHistogram(Drawing& drawing, const PlanPass& pass) const
{
    const StoredPlan& planned = drawing.plan.stored[size_t(pass.target)];
    const auto& histogram = *planned.node->as<HistogramNode>();
    std::vector<uint64_t> bins(size_t(histogram.count) * 4);
    std::mutex mutex;
    const bool finished =
        drawPass(drawing, pass, [&](const TilePlanes& planes, const PixelRect& tile) {
            std::vector<uint64_t> counts(bins.size());
            for (int y = tile.y0; y < tile.y1; ++y) {
                for (int x = tile.x0; x < tile.x1; ++x) {
                    const float alpha = planes.opaque() ? 1.0f : *planes.at(3, x, y);
                    for (int c = 0; c < 4; ++c) {
                        const float stored = c == 3 ? alpha : *planes.at(c, x, y);
                        const float v =
                            c == 3 || alpha == 1 ? stored : (alpha > 0 ? stored / alpha : 0.0f);
                        const double bin =
                            std::isnan(v) ? 0 : std::floor(double(v) * histogram.count);
                        ++counts[size_t(std::clamp(bin, 0.0, histogram.count - 1.0)) * 4
                                 + size_t(c)];
                    }
                }
            }
            const std::lock_guard lock(mutex);
            for (size_t i = 0; i < bins.size(); ++i)
                bins[i] += counts[i];
        });
    auto image = std::make_shared<StoredImage>(PixelRect{0, 0, histogram.count, 1}, false,
                                               StoredFormat::Float);
    for (int c = 0; c < 4; ++c) {
        for (int i = 0; i < histogram.count; ++i)
            image->floatRow(c, 0)[i] = float(double(bins[size_t(i) * 4 + size_t(c)])
                                             / histogram.region.area() * double(histogram.scale));
    }
    drawing.stored[size_t(pass.target)] = std::move(image);
    return finished;
}

bool TiledRenderer::drawStored(Drawing& drawing) const
{
    const Plan& plan = drawing.plan;
    std::vector<bool> wanted(plan.passes.size(), false);
    wanted.back() = true;
    for (size_t p = plan.passes.size(); p-- > 0;) {
        for (const PlanStep& step : plan.passes[p].steps) {
            if (!wanted[p] || step.stored < 0 || drawing.stored[size_t(step.stored)])
                continue;
            const StoredPlan& planned = plan.stored[size_t(step.stored)];
            if (drawing.options.keepIntermediates) {
                auto& kept = drawing.stored[size_t(step.stored)];
                kept = m_cache.find(drawing.key(size_t(step.stored)), planned.region);
                if (kept) {
                    ++drawing.statistics.reusedImages;
                    continue;
                }
            }
            for (size_t q = 0; q < p; ++q) {
                if (plan.passes[q].target == step.stored)
                    wanted[q] = true;
            }
        }
    }
    for (size_t p = 0; p + 1 < plan.passes.size(); ++p) {
        const PlanPass& pass = plan.passes[p];
        const StoredPlan& planned = plan.stored[size_t(pass.target)];
        if (!wanted[p] || drawing.stored[size_t(pass.target)] || planned.region.isEmpty())
            continue;
        const bool finished = planned.form == StoredPlan::Form::Whole ? fillWhole(drawing, pass)
            : planned.form == StoredPlan::Form::Histogram             ? fillHistogram(drawing, pass)
                                                          : fillReducedBlur(drawing, pass);
        if (!finished)
            return false;
        ++drawing.statistics.storedImages;
        if (drawing.options.keepIntermediates)
            m_cache.keep(drawing.key(size_t(pass.target)), drawing.stored[size_t(pass.target)]);
        for (size_t i = 0; i < plan.stored.size(); ++i) {
            if (plan.stored[i].lastReader == int(p))
                drawing.stored[i].reset();
        }
    }
    return !drawing.cancelled();
}

bool TiledRenderer::draw(const Node& root, const PixelRect& rect, StoredFormat format,
                         const DrawOptions& options, const TileTarget& target) const
{
    Drawing drawing(root, rect, format, options, m_settings);
    const bool finished =
        drawStored(drawing) && drawPass(drawing, drawing.plan.passes.back(), target);
    drawing.report();
    return finished;
}

Result<void> TiledRenderer::draw(const Node& root, const PixelRect& rect, StoredFormat format,
                                 const DrawOptions& options, RowSink& sink) const
{
    Drawing drawing(root, rect, format, options, m_settings);
    if (!drawStored(drawing)) {
        drawing.report();
        return Error{"Cancelled."};
    }
    const PlanPass& pass = drawing.plan.passes.back();
    const PassTables tables = makePassTables(pass);
    BandWriter bands(rect, pass.tileWidth, pass.tileHeight, m_pool.slots(), sink,
                     options.cancellation);
    std::vector<std::unique_ptr<TileEvaluator>> evaluators(size_t(m_pool.slots()));
    m_pool.run([&](int slot) {
        auto& evaluator = evaluators[size_t(slot)];
        if (!evaluator)
            evaluator =
                std::make_unique<TileEvaluator>(pass, drawing.plan.stored, drawing.stored, tables);
        return bands.step([&](const PixelRect& tile) { return evaluator->draw(tile); });
    });
    ++drawing.statistics.passes;
    drawing.statistics.sinkMilliseconds = bands.sinkMilliseconds();
    drawing.report();
    return bands.result();
}

} // namespace orvane
