#pragma once

#include "CanvasMapping.h"
#include "FieldWatch.h"

#include <QObject>
#include <QVariantAnimation>

#include <optional>

namespace orvane {

class AppModel;

/// Zoom and pan of the view. The zoom is the model's field, so that menus and buttons set it too;
/// the pan, a pinch and the way from one zoom to the next are the view's own. Whenever the zoom
/// comes back to 1, the pan is zero.
class CanvasZoom final : public QObject {
    Q_OBJECT

public:
    explicit CanvasZoom(AppModel& model);

    /// As it is at this moment, in the middle of an animation too.
    const CanvasView& view() const { return m_view; }
    void setFrame(const CGSize& frame);
    void setSize(const CGSize& size);
    /// The point about which commands zoom, when the pointer is over the view.
    void setPointer(const std::optional<CGPoint>& pointer) { m_pointer = pointer; }

    /// At once; what is under the point stays under it.
    void zoomAbout(const CGPoint& point, double zoom);
    /// By a factor, on top of those before, until the pinch ends.
    void pinch(const CGPoint& point, double factor);
    void endPinch();
    void startPan();
    /// By how far the drag has come since startPan(), in view points.
    void panBy(double dx, double dy);
    void endPan() { m_panAtStart.reset(); }
    bool isPanning() const { return m_panAtStart.has_value(); }
    /// A short glide to the whole picture in the middle, as by a double click.
    void glideToFit();
    /// At once, as for another picture.
    void fit();

Q_SIGNALS:
    /// The picture lies elsewhere in its view, or at another size.
    void moved();
    void scaleChanged();

private:
    void follow();
    void glideTo(double zoom);
    void stopGliding();
    void setView(double zoom, const CGPoint& pan);
    void show(double zoom, const CGPoint& pan);

    AppModel& m_model;
    CanvasView m_view;
    double m_zoom = 1; ///< the model's as last seen or written
    int m_tick = 0; ///< the model's requests for the actual size, as far as they are answered
    std::optional<CGPoint> m_pointer;
    std::optional<CGPoint> m_panAtStart;
    QVariantAnimation m_glide;
    CanvasView m_glideStart;
    FieldWatch m_watch;
};

} // namespace orvane
