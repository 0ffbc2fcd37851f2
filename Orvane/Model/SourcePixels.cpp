#include "SourcePixels.h"

#include "Baker.h"
#include "Geometry.h"
#include "PictureDecoder.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace orvane {

namespace {

/// Long edge of the copy that thumbnails are made of.
constexpr int thumbEdge = 64;
/// How much larger than its end a reduced copy is before it is resampled.
constexpr double stepsAhead = 4;

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

CIImage reducedCopy(const CIImage& image, int longEdge)
{
    const CGRect extent = image.extent();
    if (extent.isEmpty() || extent.isInfinite())
        return image;
    const double enough = std::max(longEdge, 1) * stepsAhead;
    double scale = 1;
    while (std::max(extent.width(), extent.height()) * scale >= 2 * enough)
        scale /= 2;
    if (scale == 1)
        return drawnCopy(Geometry::resized(image, longEdge));
    // To whole pixels exactly: a column that the image covers in part would come out dark.
    const double width = std::max(1.0, std::round(extent.width() * scale));
    const double height = std::max(1.0, std::round(extent.height() * scale));
    const CIImage averaged =
        image.clampedToExtent()
            .transformed(CGAffineTransform::translation(-extent.minX(), -extent.minY())
                             .concatenated(CGAffineTransform::scale(width / extent.width(),
                                                                    height / extent.height())))
            .cropped({0, 0, width, height});
    return drawnCopy(Geometry::resized(drawnCopy(averaged), longEdge));
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
        pixels->m_thumbBase = reducedCopy(image, thumbEdge);
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
