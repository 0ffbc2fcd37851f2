#pragma once

#include "CIContext.h"
#include "CanvasMapping.h"
#include "RenderScheduler.h"

#include <QImage>
#include <QRect>

#include <memory>
#include <optional>

class QPainter;

namespace orvane {

/// Draws the content for a view: the picture, and the same fitted to the screen where it fits into
/// the view, so that neither costs the main thread anything. From any thread. The view's own frame
/// is not read: it is the recipe's. A null picture when cancelled or empty.
RenderedPicture renderedForScreen(const CanvasContent& content, const CanvasView& view,
                                  double pixelRatio, const CancellationToken& cancellation);
/// The same from a smaller proxy, of that longest edge in pixels, to stand in for it.
RenderedPicture draftedForScreen(const CanvasContent& content, int edge, const CanvasView& view,
                                 double pixelRatio, const CancellationToken& cancellation);

/// The engine's bytes as they are, owned by the image.
QImage withoutCopy(std::shared_ptr<const CGImage> drawn);

/// The size of a picture on screen in device pixels, the same wherever it is panned to.
QSize deviceSize(const CanvasView& view, double pixelRatio);

/// The picture scaled to a size: reduced by area, enlarged smoothly. From any thread.
QImage fittedTo(const QSize& size, const QImage& picture);

/// The picture on screen, with its copy at the size on screen for as long as that holds.
class ScreenPicture {
public:
    void set(const RenderedPicture& rendered);
    bool isEmpty() const { return m_picture.isNull(); }
    const QImage& picture() const { return m_picture; }

    /// Fills `target`, in device pixels of a painter whose transform is the identity. Enlarged
    /// smoothly up to four device pixels for one of the picture, and beyond as squares, which is
    /// how single pixels are judged. Without a fitted copy of that size, quickly: a reduced picture
    /// is then coarser.
    void draw(QPainter& painter, const QRect& target) const;

    /// Whether a fitted copy is still to be made for a target of this size in a view of that size,
    /// both in device pixels.
    bool wantsFit(const QSize& target, const QSize& view) const;
    /// Takes a copy that was made of `picture`, unless another one is shown by now.
    void takeFit(const QImage& picture, const QImage& fitted);

private:
    QImage m_picture;
    QImage m_fitted;
};

} // namespace orvane
