#include "CanvasZoom.h"

#include "AppModel.h"

#include <utility>

namespace orvane {

namespace {

constexpr int glideMilliseconds = 150;

double mixed(double from, double to, double progress)
{
    return from + (to - from) * progress;
}

} // namespace

CanvasZoom::CanvasZoom(AppModel& model)
    : m_model(model)
    , m_zoom(heldZoom(model.zoom))
    , m_tick(model.actualSizeTick)
    , m_watch([this] { follow(); })
{
    m_view.zoom = m_zoom;
    m_glide.setStartValue(0.0);
    m_glide.setEndValue(1.0);
    m_glide.setDuration(glideMilliseconds);
    m_glide.setEasingCurve(QEasingCurve::OutQuad);
    connect(&m_glide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        const double progress = value.toDouble();
        const CGPoint& pan = m_glideStart.pan;
        show(mixed(m_glideStart.zoom, m_zoom, progress),
             {mixed(pan.x, 0, progress), mixed(pan.y, 0, progress)});
    });
    m_watch.watch(model.zoom, model.actualSizeTick);
}

/// Takes over what others have set.
void CanvasZoom::follow()
{
    const double zoom = heldZoom(m_model.zoom);
    if (zoom != m_zoom)
        zoomAbout(m_pointer.value_or(CGPoint{m_view.size.width / 2, m_view.size.height / 2}), zoom);
    if (std::exchange(m_tick, m_model.actualSizeTick.value()) == m_model.actualSizeTick.value())
        return;
    const auto& source = m_model.sourceImage.value();
    const CGSize size = source ? source->extent().size : CGSize();
    if (size.width > 0 && size.height > 0)
        glideTo(actualSizeZoom(size, m_view.size));
}

void CanvasZoom::setFrame(const CGSize& frame)
{
    m_view.frame = frame;
    m_view.pan = heldPan(m_view);
}

void CanvasZoom::setSize(const CGSize& size)
{
    m_view.size = size;
    m_view.pan = heldPan(m_view);
    Q_EMIT scaleChanged();
}

void CanvasZoom::zoomAbout(const CGPoint& point, double zoom)
{
    stopGliding();
    setView(heldZoom(zoom), panKeeping(point, heldZoom(zoom), m_view));
}

void CanvasZoom::pinch(const CGPoint& point, double factor)
{
    stopGliding();
    const double zoom = heldZoom(m_view.zoom * m_view.pinch * factor);
    m_view.pan = panKeeping(point, zoom, m_view);
    m_view.pinch = zoom / m_view.zoom;
    m_view.pan = heldPan(m_view);
    Q_EMIT moved();
}

void CanvasZoom::endPinch()
{
    setView(heldZoom(m_view.zoom * m_view.pinch), m_view.pan);
}

void CanvasZoom::startPan()
{
    stopGliding();
    m_panAtStart = m_view.pan;
}

void CanvasZoom::panBy(double dx, double dy)
{
    m_view.pan = {m_panAtStart->x + dx, m_panAtStart->y + dy};
    m_view.pan = heldPan(m_view);
    Q_EMIT moved();
}

void CanvasZoom::glideToFit()
{
    glideTo(1);
}

void CanvasZoom::fit()
{
    stopGliding();
    setView(1, {});
}

void CanvasZoom::glideTo(double zoom)
{
    stopGliding();
    m_glideStart = m_view;
    m_zoom = zoom;
    m_model.zoom = zoom;
    m_glide.start();
}

/// What comes next starts from where it stands.
void CanvasZoom::stopGliding()
{
    if (m_glide.state() != QAbstractAnimation::Running)
        return;
    m_glide.stop();
    m_zoom = m_view.zoom;
    m_model.zoom = m_zoom;
}

void CanvasZoom::setView(double zoom, const CGPoint& pan)
{
    m_zoom = zoom;
    m_model.zoom = zoom;
    show(zoom, pan);
}

void CanvasZoom::show(double zoom, const CGPoint& pan)
{
    const bool rescales = zoom != m_view.zoom;
    m_view.zoom = zoom;
    m_view.pinch = 1;
    m_view.pan = pan;
    m_view.pan = heldPan(m_view);
    Q_EMIT moved();
    if (rescales)
        Q_EMIT scaleChanged();
}

} // namespace orvane
