#pragma once

#include "IntermediateCache.h"
#include "Planner.h"
#include "Schedule.h"
#include "StoredImage.h"
#include "TileEvaluator.h"
#include "TiledRenderer.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace orvane {

/// One draw on its way: its plan, the images between its passes, and each worker's scratch memory.
class Drawing {
public:
    Drawing(const Node& root, const PixelRect& rect, StoredFormat format,
            const DrawOptions& options, const CIContext::Options& settings, ThreadPool& pool,
            IntermediateCache& cache, std::vector<TileArena> arenas);

    const std::vector<ScheduledRows>& steps() const { return m_schedule.steps; }
    bool drawsPicture(const ScheduledRows& rows) const;
    /// One step of the schedule; `target` takes the tiles of the picture itself. False when
    /// cancelled.
    bool drawRows(size_t step, const TiledRenderer::TileTarget& target);
    /// The scratch memory, for another draw; this one draws nothing any more.
    std::vector<TileArena> takeArenas() { return std::move(m_arenas); }
    /// Fills the statistics that were asked for.
    void report(double sinkMilliseconds);

private:
    struct Pass {
        std::unique_ptr<PassTables> tables;
        std::vector<std::unique_ptr<TileEvaluator>> evaluators; ///< by worker
        double milliseconds = 0;
        double megapixels = 0;
        double storedMegabytes = 0;
    };

    bool cancelled() const;
    const Digest& key(size_t stored);
    Digest role(size_t stored) const;
    std::vector<bool> findKept();
    void allocate(size_t stored);
    void release(size_t step);
    void drawTile(const PlanPass& pass, int slot, const PixelRect& tile,
                  const TiledRenderer::TileTarget& target);
    void averageTile(const PlanPass& pass, int slot, const PixelRect& tile);
    TileEvaluator& evaluator(const PlanPass& pass, int slot);
    void count(const HistogramNode& histogram, const TilePlanes& planes, const PixelRect& tile);
    void settleHistogram(const PlanPass& pass);

    Plan m_plan;
    Schedule m_schedule;
    StoredFormat m_format;
    const DrawOptions& m_options;
    const CIContext::Options& m_settings;
    ThreadPool& m_pool;
    IntermediateCache& m_cache;
    std::vector<std::shared_ptr<StoredImage>> m_stored;
    std::vector<std::optional<Digest>> m_keys; ///< by stored image, as they are asked for
    std::vector<Pass> m_passes;
    std::vector<TileArena> m_arenas; ///< by worker
    std::mutex m_countsMutex;
    std::vector<uint64_t> m_counts; ///< of the histogram being drawn
    size_t m_storedBytes = 0;
    DrawStatistics m_statistics;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace orvane
