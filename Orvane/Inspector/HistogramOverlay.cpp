#include "HistogramOverlay.h"

#include "HistogramView.h"

#include <QEvent>

namespace orvane {

namespace {

constexpr int margin = 12; ///< from the canvas's edges

} // namespace

HistogramOverlay::HistogramOverlay(AppModel& model, QWidget* canvas)
    : QObject(canvas)
    , m_model(model)
    , m_canvas(canvas)
    , m_view(new HistogramView(canvas))
    , m_watch([this] { refresh(); })
{
    canvas->installEventFilter(this);
    m_view->hide();
    m_watch.watch(model.histogramOn, model.histogram);
    refresh();
}

bool HistogramOverlay::eventFilter(QObject* canvas, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QObject::eventFilter(canvas, event);
}

void HistogramOverlay::place()
{
    m_view->move(m_canvas->width() - m_view->width() - margin, margin);
}

void HistogramOverlay::refresh()
{
    m_view->setHistogram(m_model.histogram);
    const bool wasShown = !m_view->isHidden();
    if (m_model.histogramOn == wasShown)
        return;
    place();
    m_view->setVisible(m_model.histogramOn);
    m_view->raise();
    if (m_model.histogramOn)
        m_model.refreshHistogram();
}

} // namespace orvane
