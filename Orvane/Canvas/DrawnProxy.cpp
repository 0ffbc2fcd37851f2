#include "DrawnProxy.h"

#include "Baker.h"
#include "Bitmap.h"
#include "Geometry.h"
#include "Node.h"

#include <cstring>

namespace orvane {

namespace {

/// Rows into a float bitmap; an opaque picture's without the alpha, a quarter less to read later.
class ProxyRows final : public RowSink {
public:
    ProxyRows(int width, int height, bool isOpaque)
        : m_bitmap(std::make_shared<Bitmap>(width, height, isOpaque ? 3 : 4, SampleType::F32,
                                            isOpaque ? AlphaKind::None : AlphaKind::Premultiplied))
    {
    }

    PixelFormat format() const override { return PixelFormat::RGBAFloat; }

    Result<void> writeRows(const uint8_t* rows, int count, size_t rowBytes) override
    {
        const size_t pixelBytes = size_t(m_bitmap->channels()) * sizeof(float);
        for (int y = 0; y < count; ++y) {
            const uint8_t* from = rows + size_t(y) * rowBytes;
            uint8_t* to = m_bitmap->row(m_next++);
            for (int x = 0; x < m_bitmap->width(); ++x)
                std::memcpy(to + size_t(x) * pixelBytes, from + size_t(x) * 4 * sizeof(float),
                            pixelBytes);
        }
        return {};
    }

    std::shared_ptr<const Bitmap> bitmap() const { return m_bitmap; }

private:
    std::shared_ptr<Bitmap> m_bitmap;
    int m_next = 0;
};

} // namespace

CIImage drawnProxy(const CIImage& source, const CancellationToken* cancellation)
{
    const CIImage reduced = Geometry::resized(source, proxyEdge);
    if (reduced.isSame(source))
        return source;
    const CGRect extent = reduced.extent();
    const bool isOpaque = reduced.node() && reduced.node()->opaque;
    ProxyRows rows(int(extent.width()), int(extent.height()), isOpaque);
    if (!Baker::context().render(reduced, extent, rows, {.cancellation = cancellation}))
        return source;
    return CIImage::withBitmap(rows.bitmap());
}

} // namespace orvane
