#include "TiledRenderer.h"

#include "BandWriter.h"
#include "Drawing.h"

namespace orvane {

std::vector<TileArena> TiledRenderer::arenas() const
{
    std::vector<TileArena> own;
    {
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
    Drawing drawing(root, rect, format, options, m_settings, m_pool, m_cache, arenas());
    bool going = true;
    for (size_t step = 0; going && step < drawing.steps().size(); ++step)
        going = drawing.drawRows(step, target);
    drawing.report(0);
    if (options.keepIntermediates)
        leave(drawing.takeArenas());
    return going;
}

Result<void> TiledRenderer::draw(const Node& root, const PixelRect& rect, StoredFormat format,
                                 const DrawOptions& options, RowSink& sink) const
{
    Drawing drawing(root, rect, format, options, m_settings, m_pool, m_cache, arenas());
    BandWriter bands(rect, m_pool, sink);
    const TileTarget narrow = [&](const TilePlanes& planes, const PixelRect& tile) {
        bands.narrow(planes, tile);
    };
    for (size_t step = 0; step < drawing.steps().size(); ++step) {
        const ScheduledRows& rows = drawing.steps()[step];
        const bool picture = drawing.drawsPicture(rows);
        if (picture ? !bands.begin(rows.rect) : bands.stopped())
            break;
        if (!drawing.drawRows(step, narrow))
            return Error{"Cancelled."};
        if (picture)
            bands.end();
    }
    Result<void> written = bands.finish();
    drawing.report(bands.sinkMilliseconds());
    return written;
}

} // namespace orvane
