#pragma once

#include "RenderScheduler.h"
#include "ScreenPicture.h"

#include <QWidget>

class QNativeGestureEvent;

namespace orvane {

/// The central view: the picture of the content it was last given, rendered in the background, with
/// zoom and pan.
class CIPreviewView final : public QWidget {
    Q_OBJECT

public:
    /// Renders run in the pool, which must outlive the view.
    explicit CIPreviewView(QThreadPool& pool, QWidget* parent = nullptr);

    /// A new source is rendered at once and shown fitted, a change of its edit after a pause, and a
    /// comparison at once. Empty content clears the view.
    void setContent(const CanvasContent& content);
    /// Shown in the middle while there is no picture.
    void setMessage(const QString& message);

    void zoomIn();
    void zoomOut();
    void zoomToFit();
    /// One source pixel on one view point.
    void zoomToActualSize();

    /// Zoom, pan and the picture's frame, as the mapping functions take them.
    const CanvasView& mapping() const { return m_view; }

Q_SIGNALS:
    /// The zoom or the view's size is another.
    void scaleChanged();
    /// A picture has been painted on screen, not merely rendered.
    void picturePainted();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void take(const RenderedPicture& picture);
    void setZoom(double zoom, const CGPoint& around);
    void setView(double zoom, const CGPoint& pan);
    bool pinch(const QNativeGestureEvent& gesture);
    void updateCursor();

    CanvasContent m_content;
    RenderScheduler m_scheduler;
    ScreenPicture m_picture;
    CanvasView m_view;
    QString m_message;
    QString m_failure; ///< of the last render; shown in the message's place
    std::optional<QPointF> m_press; ///< where the left button went down, in view points
    std::optional<CGPoint> m_panAtDrag; ///< present while a drag pans
    bool m_awaitsPaint = false;
};

} // namespace orvane
