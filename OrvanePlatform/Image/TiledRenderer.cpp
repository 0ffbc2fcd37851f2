#include "TiledRenderer.h"

#include "BandWriter.h"
#include "Drawing.h"

namespace orvane {

bool TiledRenderer::draw(const Node& root, const PixelRect& rect, StoredFormat format,
                         const DrawOptions& options, const TileTarget& target) const
{
    Drawing drawing(root, rect, format, options, m_settings, m_pool, m_cache);
    bool going = true;
    for (size_t step = 0; going && step < drawing.steps().size(); ++step)
        going = drawing.drawRows(step, target);
    drawing.report(0);
    return going;
}

Result<void> TiledRenderer::draw(const Node& root, const PixelRect& rect, StoredFormat format,
                                 const DrawOptions& options, RowSink& sink) const
{
    Drawing drawing(root, rect, format, options, m_settings, m_pool, m_cache);
    BandWriter bands(rect, m_pool, sink);
    const TileTarget narrow = [&](const TilePlanes& planes, const PixelRect& tile) {
        bands.narrow(planes, tile);
    };
    for (size_t step = 0; step < drawing.steps().size(); ++step) {
        const ScheduledRows& rows = drawing.steps()[step];
        const bool picture = drawing.drawsPicture(rows);
        if (picture && !bands.begin(rows.rect))
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
