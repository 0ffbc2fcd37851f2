#include "ScreenPicture.h"

#include "Baker.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

/// From this many device pixels for one of the picture, pixels are shown as squares.
constexpr double squaresFrom = 4;

/// The engine's bytes as they are, owned by the image.
QImage withoutCopy(CGImage drawn)
{
    const auto format = drawn.format == PixelFormat::BGRX8 ? QImage::Format_RGB32
                                                           : QImage::Format_ARGB32_Premultiplied;
    auto* owned = new CGImage(std::move(drawn));
    return {owned->pixels.data(),
            owned->width,
            owned->height,
            qsizetype(owned->rowBytes),
            format,
            [](void* image) { delete static_cast<CGImage*>(image); },
            owned};
}

bool reduces(const QSize& from, const QSize& to)
{
    return to.width() < from.width() || to.height() < from.height();
}

QImage reducedTo(const QSize& size, const QImage& picture)
{
    return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

RenderedPicture renderedForScreen(const CanvasContent& content, const CanvasView& view,
                                  double pixelRatio, const CancellationToken& cancellation)
{
    auto drawn = Baker::cgImage(picture(content),
                                {.cancellation = &cancellation, .keepIntermediates = true});
    if (!drawn)
        return {};
    RenderedPicture result{withoutCopy(std::move(*drawn)), {}};
    CanvasView shown = view;
    shown.frame = {double(result.picture.width()), double(result.picture.height())};
    const QSize size = deviceSize(shown, pixelRatio);
    if (!size.isEmpty() && reduces(result.picture.size(), size))
        result.fitted = reducedTo(size, result.picture);
    return result;
}

QSize deviceSize(const CanvasView& view, double pixelRatio)
{
    const CGRect picture = pictureRect(view);
    return {std::max(1, int(std::lround(picture.width() * pixelRatio))),
            std::max(1, int(std::lround(picture.height() * pixelRatio)))};
}

void ScreenPicture::set(const RenderedPicture& rendered)
{
    m_picture = rendered.picture;
    m_reduced = rendered.fitted;
}

CGSize ScreenPicture::frame() const
{
    return {double(m_picture.width()), double(m_picture.height())};
}

void ScreenPicture::draw(QPainter& painter, const QRect& target)
{
    if (reduces(m_picture.size(), target.size())) {
        if (m_reduced.size() != target.size())
            m_reduced = reducedTo(target.size(), m_picture);
        painter.drawImage(target.topLeft(), m_reduced);
        return;
    }
    const double scale = double(target.width()) / m_picture.width();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < squaresFrom);
    painter.drawImage(target, m_picture);
}

} // namespace orvane
