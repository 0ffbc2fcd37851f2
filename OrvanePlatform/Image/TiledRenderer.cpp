#include "TiledRenderer.h"

#include "BandWriter.h"
#include "ReducedBlur.h"
#include "TileEvaluator.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>

namespace orvane {

/// One draw on its way.
struct TiledRenderer::Drawing {
    Drawing(const Node& root, const PixelRect& rect, StoredFormat storedFormat,
            const DrawOptions& drawOptions, const CIContext::Options& settings)
        : plan(makePlan(root, rect, settings.tileWidth, settings.tileHeight))
        , stored(plan.stored.size())
        , format(storedFormat)
        , options(drawOptions)
    {
    }

    bool cancelled() const { return options.cancellation && options.cancellation->isCancelled(); }
    Digest key(const StoredPlan& planned) const
    {
        return DigestBuilder()
            .add(planned.node->digest)
            .add(uint64_t(planned.form))
            .add(uint64_t(format))
            .digest();
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

bool TiledRenderer::drawPass(Drawing& drawing, const PlanPass& pass, const TileTarget& target) const
{
    const PassTables tables = makePassTables(pass);
    const auto tiles =
        tilesOf(pass.region, pass.tileWidth, pass.tileHeight, m_settings.shuffleSeed);
    std::atomic<size_t> next = 0;
    m_pool.runOnAll([&](int) {
        TileEvaluator evaluator(pass, drawing.plan.stored, drawing.stored, tables);
        for (size_t i = next.fetch_add(1); i < tiles.size(); i = next.fetch_add(1)) {
            if (drawing.cancelled())
                return;
            target(evaluator.draw(tiles[i]), tiles[i]);
        }
    });
    ++drawing.statistics.passes;
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
    const double sigma = reducedSigma(planned.node->as<GaussianNode>()->sigma, f);
    const PixelRect cells = planned.region.grown(int(std::ceil(3 * sigma)));
    StoredImage coarse(cells, planned.node->opaque, StoredFormat::Float);
    const auto tiles = tilesOf(cells, std::max(1, pass.tileWidth / f),
                               std::max(1, pass.tileHeight / f), m_settings.shuffleSeed);
    const PassTables tables = makePassTables(pass);
    std::atomic<size_t> next = 0;
    m_pool.runOnAll([&](int) {
        TileEvaluator evaluator(pass, drawing.plan.stored, drawing.stored, tables);
        TileArena arena;
        for (size_t i = next.fetch_add(1); i < tiles.size(); i = next.fetch_add(1)) {
            if (drawing.cancelled())
                return;
            arena.reset();
            const PixelRect& t = tiles[i];
            averageCells(evaluator.draw({t.x0 * f, t.y0 * f, t.x1 * f, t.y1 * f}), t, f, coarse,
                         arena);
        }
    });
    ++drawing.statistics.passes;
    if (drawing.cancelled())
        return false;
    drawing.stored[size_t(pass.target)] = blurredCells(coarse, sigma, planned.region, m_pool);
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
                kept = m_cache.find(drawing.key(planned), planned.region);
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
            m_cache.keep(drawing.key(planned), drawing.stored[size_t(pass.target)]);
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
    if (!drawStored(drawing))
        return Error{"Cancelled."};
    const PlanPass& pass = drawing.plan.passes.back();
    const PassTables tables = makePassTables(pass);
    BandWriter bands(rect, pass.tileWidth, pass.tileHeight, m_pool.workers(), sink,
                     options.cancellation);
    m_pool.runOnAll([&](int) {
        TileEvaluator evaluator(pass, drawing.plan.stored, drawing.stored, tables);
        bands.work([&](const PixelRect& tile) { return evaluator.draw(tile); });
    });
    ++drawing.statistics.passes;
    drawing.statistics.sinkMilliseconds = bands.sinkMilliseconds();
    drawing.report();
    return bands.result();
}

} // namespace orvane
