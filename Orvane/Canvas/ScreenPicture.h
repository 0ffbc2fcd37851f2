#pragma once

#include "CanvasMapping.h"
#include "RenderScheduler.h"

#include <QImage>
#include <QRect>

class QPainter;

namespace orvane {

/// Draws the content for a view: the picture, and where it is reduced on screen also the reduced
/// one, so that neither costs the main thread anything. From any thread. The view's own frame is
/// not read: it is the recipe's. A null picture when cancelled or empty.
RenderedPicture renderedForScreen(const CanvasContent& content, const CanvasView& view,
                                  double pixelRatio, const CancellationToken& cancellation);

/// The size of a picture on screen in device pixels, the same wherever it is panned to.
QSize deviceSize(const CanvasView& view, double pixelRatio);

/// The picture on screen, with its reduced copy for as long as the size holds.
class ScreenPicture {
public:
    void set(const RenderedPicture& rendered);
    bool isEmpty() const { return m_picture.isNull(); }
    /// In pixels; empty without a picture.
    CGSize frame() const;

    /// Fills `target`, in device pixels of a painter whose transform is the identity. Reduced by
    /// area; enlarged smoothly up to four device pixels for one of the picture, and beyond as
    /// squares, which is how single pixels are judged.
    void draw(QPainter& painter, const QRect& target);

private:
    QImage m_picture;
    QImage m_reduced;
};

} // namespace orvane
