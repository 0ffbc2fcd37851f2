#include "CIPreviewView.h"

#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace orvane {

namespace {

constexpr std::chrono::milliseconds debounce(180);
/// A press that moves less is a click.
constexpr double dragDistance = 10;
/// About 3 % of white's luminance: neutral, and dark enough that the picture's blacks keep depth.
constexpr QColor surround(0x30, 0x30, 0x30);

CGPoint toPoint(const QPointF& point)
{
    return {point.x(), point.y()};
}

} // namespace

CIPreviewView::CIPreviewView(QThreadPool& pool, QWidget* parent)
    : QWidget(parent)
    , m_scheduler(pool, debounce)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setMinimumSize(320, 240);
    setAccessibleName(tr("Picture"));
    connect(&m_scheduler, &RenderScheduler::rendered, this, &CIPreviewView::take);
}

void CIPreviewView::setContent(const CanvasContent& content)
{
    const bool isNewSource = content.version != m_content.version;
    m_content = content;
    if (isNewSource) {
        // Until its first picture is there: the old one would be taken for the new.
        m_scheduler.clear();
        take({});
        setView(1, {});
    }
    if (content.isEmpty())
        return;
    m_scheduler.request(
        RenderKey::of(content),
        [content, view = m_view, ratio = devicePixelRatioF()](const CancellationToken& token) {
            return renderedForScreen(content, view, ratio, token);
        },
        isNewSource || content.comparing ? RenderScheduler::Start::AtOnce
                                         : RenderScheduler::Start::Debounced);
}

void CIPreviewView::setMessage(const QString& message)
{
    m_message = message;
    update();
}

void CIPreviewView::take(const RenderedPicture& picture)
{
    m_picture.set(picture);
    m_failure = tr(picture.failure);
    m_view.frame = m_picture.frame();
    m_awaitsPaint = !m_picture.isEmpty();
    updateCursor();
    update();
}

void CIPreviewView::zoomIn()
{
    setZoom(zoomedIn(m_view.zoom), {m_view.size.width / 2, m_view.size.height / 2});
}

void CIPreviewView::zoomOut()
{
    setZoom(zoomedOut(m_view.zoom), {m_view.size.width / 2, m_view.size.height / 2});
}

void CIPreviewView::zoomToFit()
{
    setView(1, {});
}

void CIPreviewView::zoomToActualSize()
{
    const CGSize& source = m_content.sourceSize;
    if (source.width > 0 && source.height > 0)
        setView(actualSizeZoom(source, m_view.size), {});
}

void CIPreviewView::setZoom(double zoom, const CGPoint& around)
{
    setView(zoom, panKeeping(around, zoom, m_view));
}

void CIPreviewView::setView(double zoom, const CGPoint& pan)
{
    const bool changes = zoom != m_view.zoom;
    m_view.zoom = zoom;
    m_view.pinch = 1;
    m_view.pan = pan;
    m_view.pan = heldPan(m_view);
    updateCursor();
    update();
    if (changes)
        Q_EMIT scaleChanged();
}

bool CIPreviewView::event(QEvent* event)
{
    if (event->type() == QEvent::NativeGesture)
        return pinch(*static_cast<QNativeGestureEvent*>(event));
    return QWidget::event(event);
}

bool CIPreviewView::pinch(const QNativeGestureEvent& gesture)
{
    if (gesture.gestureType() == Qt::EndNativeGesture) {
        setView(heldZoom(m_view.zoom * m_view.pinch), m_view.pan);
        return true;
    }
    if (gesture.gestureType() != Qt::ZoomNativeGesture || m_picture.isEmpty())
        return false;
    const double pinch = m_view.pinch * (1 + gesture.value());
    const double zoom = heldZoom(m_view.zoom * pinch);
    m_view.pan = panKeeping(toPoint(gesture.position()), zoom, m_view);
    m_view.pinch = zoom / m_view.zoom;
    m_view.pan = heldPan(m_view);
    update();
    return true;
}

void CIPreviewView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), surround);
    if (m_picture.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(rect(), Qt::AlignCenter, m_failure.isEmpty() ? m_message : m_failure);
        return;
    }
    // In whole device pixels: at a fractional scale the view itself may begin between two, and any
    // other position would blur the picture.
    const QTransform toDevice = painter.deviceTransform();
    painter.setWorldTransform(toDevice.inverted());
    const CGRect place = pictureRect(m_view);
    const QPoint corner = toDevice.map(QPointF(place.minX(), place.minY())).toPoint();
    m_picture.draw(painter, {corner, deviceSize(m_view, toDevice.m11())});
    if (std::exchange(m_awaitsPaint, false))
        QMetaObject::invokeMethod(this, &CIPreviewView::picturePainted, Qt::QueuedConnection);
}

void CIPreviewView::resizeEvent(QResizeEvent*)
{
    m_view.size = {double(width()), double(height())};
    m_view.pan = heldPan(m_view);
    Q_EMIT scaleChanged();
}

void CIPreviewView::wheelEvent(QWheelEvent* event)
{
    if (m_picture.isEmpty() || event->angleDelta().y() == 0)
        return;
    const double steps = event->angleDelta().y() / 120.0;
    setZoom(heldZoom(m_view.zoom * std::pow(1.25, steps)), toPoint(event->position()));
}

void CIPreviewView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_picture.isEmpty())
        return;
    m_press = event->position();
    updateCursor();
}

void CIPreviewView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_press || effectiveZoom(m_view) <= 1)
        return;
    const QPointF moved = event->position() - *m_press;
    if (!m_panAtDrag && std::hypot(moved.x(), moved.y()) < dragDistance)
        return;
    if (!m_panAtDrag)
        m_panAtDrag = m_view.pan;
    m_view.pan = {m_panAtDrag->x + moved.x(), m_panAtDrag->y + moved.y()};
    m_view.pan = heldPan(m_view);
    update();
}

void CIPreviewView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_press.reset();
    m_panAtDrag.reset();
    updateCursor();
}

void CIPreviewView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        zoomToFit();
}

void CIPreviewView::updateCursor()
{
    if (m_picture.isEmpty() || effectiveZoom(m_view) <= 1)
        unsetCursor();
    else
        setCursor(m_press ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

} // namespace orvane
