#include "TiledRenderer.h"

#include "BandWriter.h"
#include "Drawing.h"

namespace orvane {

namespace {

/// A target that takes tiles as they come.
class Tiles : public PictureTarget {
public:
    explicit Tiles(const TiledRenderer::TileTarget& target)
        : m_target(target)
    {
    }
    bool begin(const PixelRect&) override { return true; }
    void take(const TilePlanes& planes, const PixelRect& tile) override { m_target(planes, tile); }
    void end(const PixelRect&) override { }

private:
    const TiledRenderer::TileTarget& m_target;
};

} // namespace

std::vector<TileArena> TiledRenderer::arenas(const DrawOptions& options) const
{
    std::vector<TileArena> own;
    if (options.keepIntermediates) {
        const std::lock_guard lock(m_mutex);
        own.swap(m_arenas);
    }
    own.resize(size_t(m_pool.slots()));
    return own;
}

void TiledRenderer::leave(std::vector<TileArena> arenas) const
{
    const std::lock_guard lock(m_mutex);
    m_arenas = std::move(arenas);
}

bool TiledRenderer::draw(const Node& root, const PixelRect& rect, StoredFormat format,
                         const DrawOptions& options, const TileTarget& target) const
{
    Tiles tiles(target);
    Drawing drawing(root, rect, format, options, m_settings, m_cache, arenas(options), tiles);
    m_pool.run([&](int worker) { return drawing.work(worker); });
    drawing.report(0);
    if (options.keepIntermediates)
        leave(drawing.takeArenas());
    return drawing.isComplete();
}

Result<void> TiledRenderer::draw(const Node& root, const PixelRect& rect, StoredFormat format,
                                 const DrawOptions& options, RowSink& sink) const
{
    BandWriter bands(rect, sink);
    Drawing drawing(root, rect, format, options, m_settings, m_cache, arenas(options), bands);
    // Writing comes first: bands are written one after the other, tiles drawn by all the rest.
    m_pool.run([&](int worker) {
        const ThreadPool::Step written = bands.writeNext();
        if (written != ThreadPool::Step::Waiting)
            return written;
        const ThreadPool::Step drawn = drawing.work(worker);
        const bool toBeWritten = drawn == ThreadPool::Step::Finished && !drawing.cancelled();
        return toBeWritten ? ThreadPool::Step::Waiting : drawn;
    });
    drawing.report(bands.sinkMilliseconds());
    if (!bands.stopped())
        return Error{"Cancelled."};
    return bands.result();
}

} // namespace orvane
