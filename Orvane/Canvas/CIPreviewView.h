#pragma once

#include "CanvasTool.h"
#include "CanvasZoom.h"
#include "DraftPace.h"
#include "FieldWatch.h"
#include "RenderScheduler.h"
#include "ScreenPicture.h"

#include <QWidget>

class QNativeGestureEvent;

namespace orvane {

class AppModel;

/// The central view: the model's active picture with its edit, rendered in the background, with
/// zoom and pan, and over it the tool that has the pointer. Tools never wait for a render.
class CIPreviewView final : public QWidget {
    Q_OBJECT

public:
    /// Renders run in the pool, which must outlive the view.
    CIPreviewView(AppModel& model, QThreadPool& pool, QWidget* parent = nullptr);

    /// Shown in the middle while there is no picture.
    void setMessage(const QString& message);

    /// Zoom, pan and the picture's frame, as the mapping functions take them.
    const CanvasView& mapping() const { return m_zoom.view(); }

Q_SIGNALS:
    /// The zoom or the view's size is another.
    void scaleChanged();
    /// A rendered picture has been painted on screen.
    void picturePainted();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    CanvasContent wantedContent() const;
    void refresh();
    RenderScheduler::Render draft() const;
    void showAnotherSource();
    void take(const RenderedPicture& picture);
    void putOnScreen(const RenderedPicture& picture);
    void fitPicture(const QSize& whole, const QRect& seen);
    bool pinch(const QNativeGestureEvent& gesture);
    void paintPicture(QPainter& painter, const QRegion& exposed);
    void paintTool(QPainter& painter);
    void paintFocus(QPainter& painter);

    CanvasTool* wantedTool() const;
    CanvasTool* tool() const;
    CanvasPointer pointer(const QPointF& position) const;
    void followTools();
    void setShowsFocus(bool shows);
    void describe();
    void updateCursor();

    AppModel& m_model;
    QThreadPool& m_pool;
    CanvasContent m_content;
    RenderScheduler m_scheduler;
    ScreenPicture m_picture;
    CanvasZoom m_zoom;
    DraftPace m_pace;
    bool m_isFirstRender = true; ///< of this source; it reduces it too
    QString m_message;
    QString m_failure; ///< of the last render; shown in the message's place
    CGRect m_shownCrop{0, 0, 1, 1}; ///< what the picture on screen shows of the whole frame
    std::vector<std::unique_ptr<CanvasTool>> m_tools;
    CanvasTool* m_lastTool = nullptr; ///< that had the pointer when the tools were last looked at
    CanvasTool* m_dragging = nullptr; ///< that was told of a press and not yet of its end
    std::optional<QPointF> m_press; ///< where a button that pans went down, in view points
    bool m_showsFocus = false; ///< the focus has come by the keyboard
    bool m_isFitting = false; ///< a copy of the picture is being scaled in the background
    bool m_awaitsPaint = false;
    FieldWatch m_watch;
    FieldWatch m_toolWatch;
};

} // namespace orvane
