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
/// So many device pixels are scaled smoothly within a frame.
constexpr long smoothWithinFrame = 1'500'000;

bool reduces(const QSize& from, const QSize& to)
{
    return to.width() < from.width() || to.height() < from.height();
}

bool isSmooth(const QSize& from, const QSize& to)
{
    return to.width() < squaresFrom * from.width();
}

long areaOf(const QRegion& region)
{
    long area = 0;
    for (const QRect& rect : region)
        area += long(rect.width()) * rect.height();
    return area;
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
    RenderedPicture result{.picture =
                               withoutCopy(std::make_shared<const CGImage>(std::move(*drawn))),
                           .frame = frame,
                           .crop = content.state.crop};
    view.frame = frame;
    const CGRect place = pictureRect(view);
    const QSize size = deviceSize(view, pixelRatio);
    const QRect seen = QRectF(-place.minX() * pixelRatio, -place.minY() * pixelRatio,
                              view.size.width * pixelRatio, view.size.height * pixelRatio)
                           .toAlignedRect();
    if (size != result.picture.size() && !cancellation.isCancelled())
        result.fitted = fittedTo(size, partWorthFitting(seen, size), result.picture);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    result.milliseconds = took.count();
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

RenderedPicture draftedForScreen(const CanvasContent& content, double scale, const CanvasView& view,
                                 double pixelRatio, const CancellationToken& cancellation)
{
    RenderedPicture draft =
        rendered(draftOf(content, scale), pictureSize(content), view, pixelRatio, cancellation);
    draft.scale = scale;
    return draft;
}

QSize deviceSize(const CanvasView& view, double pixelRatio)
{
    const CGRect picture = pictureRect(view);
    return {std::max(1, int(std::lround(picture.width() * pixelRatio))),
            std::max(1, int(std::lround(picture.height() * pixelRatio)))};
}

QRect partWorthFitting(const QRect& seen, const QSize& whole)
{
    const int across = seen.width() / 8;
    const int down = seen.height() / 8;
    return seen.adjusted(-across, -down, across, down) & QRect({}, whole);
}

FittedPicture fittedTo(const QSize& whole, const QRect& part, const QImage& picture)
{
    // Reduced ones are small in any case.
    if (reduces(picture.size(), whole))
        return {picture.scaled(whole, Qt::IgnoreAspectRatio, Qt::SmoothTransformation), {}, whole};
    if (part.isEmpty())
        return {};
    QImage enlarged(part.size(), picture.format());
    QPainter painter(&enlarged);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, isSmooth(picture.size(), whole));
    painter.drawImage(QRect(-part.topLeft(), whole), picture);
    return {enlarged, part.topLeft(), whole};
}

void ScreenPicture::set(const RenderedPicture& rendered)
{
    m_picture = rendered.picture;
    m_fitted = rendered.fitted;
}

void ScreenPicture::draw(QPainter& painter, const QRect& target, const QRegion& exposed) const
{
    const QRegion seen = exposed & target;
    const bool isFitted = m_fitted.whole == target.size();
    const QRect fitted = isFitted ? m_fitted.place().translated(target.topLeft()) : QRect();
    for (const QRect& rect : seen& fitted)
        painter.drawImage(rect, m_fitted.part, rect.translated(-fitted.topLeft()));
    if (m_picture.size() == target.size()) {
        for (const QRect& rect : seen)
            painter.drawImage(rect, m_picture, rect.translated(-target.topLeft()));
        return;
    }
    if (const QRegion rest = seen - fitted; !rest.isEmpty())
        drawScaled(painter, target, rest);
}

void ScreenPicture::drawScaled(QPainter& painter, const QRect& target, const QRegion& exposed) const
{
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform,
                          isSmooth(m_picture.size(), target.size())
                              && areaOf(exposed) <= smoothWithinFrame);
    for (const QRect& rect : exposed) {
        painter.setClipRect(rect);
        painter.drawImage(target, m_picture);
    }
    painter.restore();
}

bool ScreenPicture::wantsFit(const QSize& whole, const QRect& seen) const
{
    if (m_picture.isNull() || whole == m_picture.size())
        return false;
    return m_fitted.whole != whole || !m_fitted.place().contains(seen & QRect({}, whole));
}

void ScreenPicture::takeFit(const QImage& picture, const FittedPicture& fitted)
{
    if (picture.cacheKey() == m_picture.cacheKey())
        m_fitted = fitted;
}

} // namespace orvane
