#pragma once

#include "CIContext.h"
#include "CanvasMapping.h"
#include "RenderScheduler.h"

#include <QImage>
#include <QRect>
#include <QRegion>

#include <memory>
#include <optional>

class QPainter;

namespace orvane {

/// Draws the content for a view: the picture, and what the view shows of it scaled to the screen,
/// so that neither costs the main thread anything. From any thread. The view's own frame
/// is not read: it is the recipe's. A null picture when cancelled or empty.
RenderedPicture renderedForScreen(const CanvasContent& content, const CanvasView& view,
                                  double pixelRatio, const CancellationToken& cancellation);
/// The same from a proxy that is smaller by a scale of at most 1, to stand in for it.
RenderedPicture draftedForScreen(const CanvasContent& content, double scale, const CanvasView& view,
                                 double pixelRatio, const CancellationToken& cancellation);

/// The engine's bytes as they are, owned by the image.
QImage withoutCopy(std::shared_ptr<const CGImage> drawn);

/// The size of a picture on screen in device pixels, the same wherever it is panned to.
QSize deviceSize(const CanvasView& view, double pixelRatio);

/// What of the picture is to be scaled for a view that shows `seen` of it: that, with a margin to
/// pan into. Both within `whole`, the picture's size on screen.
QRect partWorthFitting(const QRect& seen, const QSize& whole);

/// The part of a picture that is scaled to the size `whole`: reduced by area, enlarged smoothly up
/// to four device pixels for one of the picture, and beyond as squares, which is how single pixels
/// are judged. From any thread.
FittedPicture fittedTo(const QSize& whole, const QRect& part, const QImage& picture);

/// The picture on screen, with its scaled copy for as long as that holds.
class ScreenPicture {
public:
    void set(const RenderedPicture& rendered);
    bool isEmpty() const { return m_picture.isNull(); }
    const QImage& picture() const { return m_picture; }

    /// Draws what of `target`, the place of the whole picture, lies within `exposed`, both in
    /// device pixels of a painter whose transform is the identity. Where the scaled copy does not
    /// reach, quickly: a reduced picture is then coarser, and so is one that moves.
    void draw(QPainter& painter, const QRect& target, const QRegion& exposed) const;

    /// Whether a copy is still to be scaled to this size for a view that shows `seen` of it.
    bool wantsFit(const QSize& whole, const QRect& seen) const;
    /// Takes a copy that was made of `picture`, unless another one is shown by now.
    void takeFit(const QImage& picture, const FittedPicture& fitted);

private:
    void drawScaled(QPainter& painter, const QRect& target, const QRegion& exposed) const;

    QImage m_picture;
    FittedPicture m_fitted;
};

} // namespace orvane
