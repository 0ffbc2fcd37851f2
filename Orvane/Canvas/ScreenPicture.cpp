#include "ScreenPicture.h"

#include "Baker.h"

#include <QPainter>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace orvane {

namespace {

/// From this many device pixels for one of the picture, pixels are shown as squares.
constexpr double squaresFrom = 4;

bool reduces(const QSize& from, const QSize& to)
{
    return to.width() < from.width() || to.height() < from.height();
}

bool isWithin(const QSize& size, const QSize& bounds)
{
    return size.width() <= bounds.width() && size.height() <= bounds.height();
}

/// Reduced pictures are small in any case; an enlarged one is worth its memory while all of it is
/// on screen.
bool isWorthFitting(const QSize& picture, const QSize& target, const QSize& view)
{
    if (target == picture)
        return false;
    return reduces(picture, target)
        || (isWithin(target, view) && target.width() < squaresFrom * picture.width());
}

/// `frame`: pixels of the finished picture, whatever the content's proxy.
RenderedPicture rendered(const CanvasContent& content, const CGSize& frame, CanvasView view,
                         double pixelRatio, const CancellationToken& cancellation)
{
    const auto start = std::chrono::steady_clock::now();
    auto drawn = Baker::cgImage(picture(content),
                                {.cancellation = &cancellation, .keepIntermediates = true});
    if (!drawn)
        return {};
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    RenderedPicture result{.picture =
                               withoutCopy(std::make_shared<const CGImage>(std::move(*drawn))),
                           .frame = frame,
                           .crop = content.state.crop,
                           .milliseconds = took.count()};
    view.frame = frame;
    const QSize size = deviceSize(view, pixelRatio);
    const QSize whole =
        QSizeF(view.size.width * pixelRatio, view.size.height * pixelRatio).toSize();
    if (isWorthFitting(result.picture.size(), size, whole) && !cancellation.isCancelled())
        result.fitted = fittedTo(size, result.picture);
    return result;
}

} // namespace

QImage withoutCopy(std::shared_ptr<const CGImage> drawn)
{
    const auto format = drawn->format == PixelFormat::BGRX8 ? QImage::Format_RGB32
                                                            : QImage::Format_ARGB32_Premultiplied;
    auto* const owned = new std::shared_ptr<const CGImage>(std::move(drawn));
    const CGImage& image = **owned;
    return {image.pixels.data(),
            image.width,
            image.height,
            qsizetype(image.rowBytes),
            format,
            [](void* held) { delete static_cast<std::shared_ptr<const CGImage>*>(held); },
            owned};
}

RenderedPicture renderedForScreen(const CanvasContent& content, const CanvasView& view,
                                  double pixelRatio, const CancellationToken& cancellation)
{
    return rendered(content, pictureSize(content), view, pixelRatio, cancellation);
}

RenderedPicture draftedForScreen(const CanvasContent& content, int edge, const CanvasView& view,
                                 double pixelRatio, const CancellationToken& cancellation)
{
    RenderedPicture draft =
        rendered(draftOf(content, edge), pictureSize(content), view, pixelRatio, cancellation);
    draft.isDraft = true;
    return draft;
}

QSize deviceSize(const CanvasView& view, double pixelRatio)
{
    const CGRect picture = pictureRect(view);
    return {std::max(1, int(std::lround(picture.width() * pixelRatio))),
            std::max(1, int(std::lround(picture.height() * pixelRatio)))};
}

QImage fittedTo(const QSize& size, const QImage& picture)
{
    if (reduces(picture.size(), size))
        return picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QImage enlarged(size, picture.format());
    QPainter painter(&enlarged);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(enlarged.rect(), picture);
    return enlarged;
}

void ScreenPicture::set(const RenderedPicture& rendered)
{
    m_picture = rendered.picture;
    m_fitted = rendered.fitted;
}

void ScreenPicture::draw(QPainter& painter, const QRect& target) const
{
    if (m_fitted.size() == target.size()) {
        painter.drawImage(target.topLeft(), m_fitted);
        return;
    }
    const double scale = double(target.width()) / m_picture.width();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < squaresFrom);
    painter.drawImage(target, m_picture);
}

bool ScreenPicture::wantsFit(const QSize& target, const QSize& view) const
{
    return !m_picture.isNull() && m_fitted.size() != target
        && isWorthFitting(m_picture.size(), target, view);
}

void ScreenPicture::takeFit(const QImage& picture, const QImage& fitted)
{
    if (picture.cacheKey() == m_picture.cacheKey())
        m_fitted = fitted;
}

} // namespace orvane
