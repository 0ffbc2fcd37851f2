#pragma once

#include "CIContext.h"
#include "Digest.h"
#include "IntermediateCache.h"
#include "Planner.h"
#include "Schedule.h"
#include "StoredImage.h"
#include "ThreadPool.h"
#include "TileEvaluator.h"
#include "TileQueue.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace orvane {

/// Takes the picture as it is drawn. Rows come from the top; several bands side by side may be
/// under way.
class PictureTarget {
public:
    virtual ~PictureTarget() = default;
    /// Rows are about to be drawn. False: not now.
    virtual bool begin(const PixelRect& rows) = 0;
    /// A finished tile of such rows: planes that cover it. Called from several threads at once.
    virtual void take(const TilePlanes& planes, const PixelRect& tile) = 0;
    /// All tiles of the rows have been taken.
    virtual void end(const PixelRect& rows) = 0;
};

/// One draw on its way: its plan, the images between its passes, and each worker's scratch memory:
/// one for each arena.
class Drawing {
public:
    Drawing(const Node& root, const PixelRect& rect, StoredFormat format,
            const DrawOptions& options, const CIContext::Options& settings,
            IntermediateCache& cache, std::vector<TileArena> arenas, PictureTarget& target);

    /// Draws one tile. Finished: everything is drawn, or the draw was cancelled. From several
    /// threads at once.
    ThreadPool::Step work(int worker);
    bool cancelled() const;
    bool isComplete() const { return m_queue.complete(); }
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

    const PlanPass& passOf(size_t step) const;
    bool openNext();
    void complete(size_t step);
    const Digest& key(size_t stored);
    Digest role(size_t stored) const;
    std::vector<bool> findKept();
    void allocate(size_t stored);
    void release(size_t step);
    void drawTile(const PlanPass& pass, int slot, const PixelRect& tile);
    void averageTile(const PlanPass& pass, int slot, const PixelRect& tile);
    TileEvaluator& evaluator(const PlanPass& pass, int slot);
    void count(const HistogramNode& histogram, const TilePlanes& planes, const PixelRect& tile);
    void settleHistogram(const PlanPass& pass);

    Plan m_plan;
    Schedule m_schedule;
    StoredFormat m_format;
    const DrawOptions& m_options;
    IntermediateCache& m_cache;
    PictureTarget& m_target;
    std::vector<std::shared_ptr<StoredImage>> m_stored;
    std::vector<std::optional<Digest>> m_keys; ///< by stored image, as they are asked for
    std::vector<Pass> m_passes;
    std::vector<TileArena> m_arenas; ///< by worker
    std::mutex m_mutex; ///< of what is not a tile's own
    TileQueue m_queue;
    std::mutex m_countsMutex;
    std::vector<uint64_t> m_counts; ///< of the histogram being drawn
    size_t m_storedBytes = 0;
    DrawStatistics m_statistics;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace orvane
