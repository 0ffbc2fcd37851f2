#include "SourcePixels.h"

#include "Baker.h"
#include "Geometry.h"
#include "PictureDecoder.h"

#include <new>

namespace orvane {

namespace {

/// Long edge of the copy that thumbnails are made of.
constexpr int thumbEdge = 64;

} // namespace

CIImage drawnCopy(const CIImage& image)
{
    const CGRect extent = image.extent();
    if (extent.isEmpty() || extent.isInfinite())
        return image;
    auto bitmap = std::make_shared<Bitmap>(int(extent.width()), int(extent.height()), 4,
                                           SampleType::F32, AlphaKind::Premultiplied);
    if (!Baker::context().render(image, bitmap->row(0), bitmap->rowBytes(), extent,
                                 PixelFormat::RGBAFloat))
        return image;
    return CIImage::withBitmap(bitmap, image.properties())
        .transformed(CGAffineTransform::translation(extent.minX(), extent.minY()));
}

Result<SourcePixels::Decoded> SourcePixels::decoded(Bytes bytes)
{
    // What throws here is memory alone.
    try {
        const Result<DecodedPicture> picture = decodePicture(bytes);
        if (!picture)
            return picture.error();
        const CIImage image = imageFromPicture(*picture);
        std::shared_ptr<SourcePixels> pixels(new SourcePixels(std::move(bytes)));
        pixels->m_thumbBase = drawnCopy(Geometry::resized(image, thumbEdge));
        pixels->m_size = image.extent().size;
        pixels->m_decodedSize = picture->bitmap->byteSize();
        pixels->m_note = picture->note;
        pixels->m_decoded = image.node();
        return Decoded{std::move(pixels), image};
    } catch (const std::bad_alloc&) {
        return Error{"There is not enough memory to open this picture."};
    }
}

CIImage SourcePixels::image() const
{
    // Held while decoding: two that ask at once share one picture.
    const std::lock_guard lock(m_mutex);
    if (auto node = m_decoded.lock())
        return CIImage(std::move(node));
    try {
        const Result<DecodedPicture> picture = decodePicture(m_bytes);
        if (!picture)
            return {};
        const CIImage image = imageFromPicture(*picture);
        m_decoded = image.node();
        return image;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace orvane
