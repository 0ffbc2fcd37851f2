#include "CIContext.h"

#include "Node.h"
#include "PlaneConversion.h"
#include "TiledRenderer.h"

#include <cmath>
#include <new>

namespace orvane {

namespace {

/// Compact floats hold 8-bit results exactly enough, but no light far beyond white; deeper results
/// ask for floats between passes.
StoredFormat storedFormat(const Node& root, PixelFormat format)
{
    const bool deep = format == PixelFormat::RGB16 || format == PixelFormat::RGBA16
        || format == PixelFormat::RGBAFloat;
    return deep || root.extendedRange ? StoredFormat::Float : StoredFormat::Compact;
}

bool isDrawable(const CGRect& rect)
{
    return !rect.isInfinite() && !rect.isEmpty() && rect.width() <= farAway
        && rect.height() <= farAway && std::abs(rect.minX()) <= farAway
        && std::abs(rect.minY()) <= farAway;
}

} // namespace

struct CIContext::Impl {
    explicit Impl(const Options& chosen)
        : settings(chosen)
        , pool(chosen.threads)
        , cache(chosen.cacheBytes)
        , renderer(pool, cache, settings)
    {
    }

    bool render(const Node& node, const PixelRect& rect, PixelFormat format, uint8_t* pixels,
                size_t rowBytes, const DrawOptions& options)
    {
        const auto narrowTile = [&](const TilePlanes& planes, const PixelRect& tile) {
            for (int y = tile.y0; y < tile.y1; ++y) {
                const float* rows[4];
                for (int c = 0; c < 4; ++c)
                    rows[c] = planes.plane[c] ? planes.at(c, tile.x0, y) : nullptr;
                uint8_t* to = pixels + size_t(rect.y1 - 1 - y) * rowBytes
                    + size_t(tile.x0 - rect.x0) * size_t(bytesPerPixel(format));
                narrowRow(rows, tile.width(), format, to);
            }
        };
        try {
            return renderer.draw(node, rect, storedFormat(node, format), options, narrowTile);
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    Options settings;
    ThreadPool pool;
    IntermediateCache cache;
    TiledRenderer renderer;
};

CIContext::CIContext()
    : CIContext(Options{})
{
}

CIContext::CIContext(const Options& options)
    : m_impl(std::make_unique<Impl>(options))
{
}

CIContext::~CIContext() = default;

std::optional<CGImage> CIContext::createCGImage(const CIImage& image, const CGRect& rect,
                                                const DrawOptions& options) const
{
    if (!isDrawable(rect))
        return {};
    const PixelRect area = roundedRect(rect);
    if (area.isEmpty())
        return {};
    const Node& node = *image.node();
    CGImage result;
    result.width = area.width();
    result.height = area.height();
    result.format = node.opaque && node.extent.contains(area) ? PixelFormat::BGRX8
                                                              : PixelFormat::BGRA8Premultiplied;
    result.rowBytes = size_t(area.width()) * 4;
    try {
        result.pixels = PixelMemory(result.rowBytes * size_t(area.height()),
                                    m_impl->cache.memory(options.keepIntermediates));
    } catch (const std::bad_alloc&) {
        return {};
    }
    if (!m_impl->render(node, area, result.format, result.pixels.data(), result.rowBytes, options))
        return {};
    return result;
}

bool CIContext::render(const CIImage& image, void* bitmap, size_t rowBytes, const CGRect& bounds,
                       PixelFormat format, const DrawOptions& options) const
{
    if (!isDrawable(bounds))
        return false;
    const int x = heldToInt(std::floor(bounds.minX()));
    const int y = heldToInt(std::floor(bounds.minY()));
    const PixelRect area{x, y, x + heldToInt(std::round(bounds.width())),
                         y + heldToInt(std::round(bounds.height()))};
    if (area.isEmpty())
        return false;
    return m_impl->render(*image.node(), area, format, static_cast<uint8_t*>(bitmap), rowBytes,
                          options);
}

Result<void> CIContext::render(const CIImage& image, const CGRect& rect, RowSink& sink,
                               const DrawOptions& options) const
{
    if (!isDrawable(rect) || roundedRect(rect).isEmpty())
        return Error{"The image has no finite size, so it cannot be drawn."};
    try {
        const Node& node = *image.node();
        return m_impl->renderer.draw(node, roundedRect(rect), storedFormat(node, sink.format()),
                                     options, sink);
    } catch (const std::bad_alloc&) {
        return Error{"There is not enough memory to draw the picture."};
    }
}

} // namespace orvane
