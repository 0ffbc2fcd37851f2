#pragma once

#include "CIContext.h"
#include "IntermediateCache.h"
#include "StoredImage.h"
#include "ThreadPool.h"
#include "TilePlanes.h"

#include <functional>
#include <mutex>
#include <vector>

namespace orvane {

struct Node;

/// Draws recipes tile by tile on a pool of threads, everything between two stored images fused, and
/// the stored images band by band as the picture asks for them.
class TiledRenderer {
public:
    /// Takes a finished tile: planes that cover it. Called from several threads at once.
    using TileTarget = std::function<void(const TilePlanes& planes, const PixelRect& tile)>;

    TiledRenderer(ThreadPool& pool, IntermediateCache& cache, const CIContext::Options& settings)
        : m_pool(pool)
        , m_cache(cache)
        , m_settings(settings)
    {
    }

    /// Tiles of the picture as they become finished. False when cancelled.
    bool draw(const Node& root, const PixelRect& rect, StoredFormat format,
              const DrawOptions& options, const TileTarget& target) const;
    /// Rows of a format, from the top, in order, into a sink. Drawing runs a few bands of rows
    /// ahead of the sink, so memory does not grow with the picture.
    Result<void> draw(const Node& root, const PixelRect& rect, StoredFormat format,
                      const DrawOptions& options, RowSink& sink) const;

private:
    /// Scratch memory, one for each worker. Draws of previews leave theirs to the next: to touch it
    /// for the first time takes longer than some of them.
    std::vector<TileArena> arenas(const DrawOptions& options) const;
    void leave(std::vector<TileArena> arenas) const;

    mutable std::mutex m_mutex;
    mutable std::vector<TileArena> m_arenas;
    ThreadPool& m_pool;
    IntermediateCache& m_cache;
    const CIContext::Options& m_settings;
};

} // namespace orvane
