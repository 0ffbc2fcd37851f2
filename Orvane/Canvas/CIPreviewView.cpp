#include "CIPreviewView.h"

#include "AppModel.h"
#include "BackgroundWork.h"
#include "OverlayPainter.h"
#include "Theme.h"

#include <QKeyEvent>
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

CGPoint toPoint(const QPointF& point)
{
    return {point.x(), point.y()};
}

} // namespace

CIPreviewView::CIPreviewView(AppModel& model, QThreadPool& pool, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_pool(pool)
    , m_scheduler(pool, debounce)
    , m_zoom(model)
    , m_tools(makeCanvasTools(model))
    , m_watch([this] { refresh(); })
    , m_toolWatch([this] { followTools(); })
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setMouseTracking(true);
    setMinimumSize(320, 240);
    setAccessibleName(tr("Picture"));
    connect(&m_scheduler, &RenderScheduler::rendered, this, &CIPreviewView::take);
    connect(&m_zoom, &CanvasZoom::scaleChanged, this, &CIPreviewView::scaleChanged);
    connect(&m_zoom, &CanvasZoom::scaleChanged, this, &CIPreviewView::describe);
    connect(&m_zoom, &CanvasZoom::moved, this, [this] {
        updateCursor();
        update();
    });
    m_watch.watch(model.sourceImageVersion, model.sourceImage, model.adjust, model.curve,
                  model.lutAmount, model.lutID, model.lights, model.ciHealSpots, model.comparing,
                  model.rotation, model.flipH, model.flipV, model.crop, model.canvasAspect,
                  model.canvasFill, model.canvasColor, model.texts, model.cropMode, model.ciLUT);
    m_toolWatch.watch(model.cropMode, model.crop, model.cropGuide, model.relightMode, model.lights,
                      model.selectedLightID, model.healing, model.healSize, model.pickingWhite,
                      model.texts, model.selectedTextID);
    m_watch.refresh();
    m_toolWatch.refresh();
}

CanvasContent CIPreviewView::wantedContent() const
{
    const auto& source = m_model.sourceImage.value();
    CanvasContent content{.version = m_model.sourceImageVersion};
    if (!source)
        return content;
    const bool isKnown = content.version == m_content.version;
    content.proxy = isKnown ? m_content.proxy : proxyOf(*source);
    content.state = m_model.editState();
    if (m_model.cropMode)
        content.state = uncropped(std::move(content.state));
    content.lut = m_model.ciLUT.value();
    content.comparing = m_model.comparing;
    return content;
}

void CIPreviewView::refresh()
{
    const CanvasContent before = std::exchange(m_content, wantedContent());
    const bool isAnother = m_content.version != before.version;
    if (isAnother)
        showAnotherSource();
    if (m_content.isEmpty())
        return;
    const bool isModal = m_content.comparing || m_content.state.crop != before.state.crop;
    m_scheduler.request(
        RenderKey::of(m_content),
        [content = m_content, view = mapping(),
         ratio = devicePixelRatioF()](const CancellationToken& token) {
            return renderedForScreen(content, view, ratio, token);
        },
        isAnother || isModal ? RenderScheduler::Start::AtOnce : RenderScheduler::Start::Debounced,
        draft());
}

/// Of the present content. The first picture of a source reduces it: a draft would come no sooner.
RenderScheduler::Render CIPreviewView::draft() const
{
    if (m_content.comparing || m_isFirstRender)
        return {};
    const CGRect place = pictureRect(mapping());
    const double onScreen = std::max(place.width(), place.height()) * devicePixelRatioF();
    const CGSize size = pictureSize(m_content);
    const double scale = m_pace.scale(std::max(size.width, size.height), onScreen);
    return [content = m_content, scale, view = mapping(),
            ratio = devicePixelRatioF()](const CancellationToken& token) {
        return draftedForScreen(content, scale, view, ratio, token);
    };
}

/// Until its first picture is there: its thumbnail, enlarged. The old picture would be taken for
/// the new one.
void CIPreviewView::showAnotherSource()
{
    m_scheduler.clear();
    m_isFirstRender = true;
    RenderedPicture standIn;
    for (const EditImage& image : m_model.session.value()) {
        if (image.id == m_model.activeImageID.value() && image.thumb && !m_content.isEmpty())
            standIn = {.picture = withoutCopy(image.thumb),
                       .frame = pictureSize(m_content),
                       .crop = m_content.state.crop};
    }
    putOnScreen(standIn);
    m_zoom.fit();
}

void CIPreviewView::take(const RenderedPicture& picture)
{
    putOnScreen(picture);
    m_awaitsPaint = !m_picture.isEmpty();
    if (picture.isDraft)
        return m_pace.drew(picture.scale, picture.milliseconds);
    m_isFirstRender = false;
    m_model.refreshHistogram();
    m_model.syncWindowChrome();
}

void CIPreviewView::putOnScreen(const RenderedPicture& picture)
{
    m_picture.set(picture);
    m_shownCrop = picture.crop;
    m_failure = tr(picture.failure);
    m_zoom.setFrame(picture.frame);
    updateCursor();
    update();
}

void CIPreviewView::setMessage(const QString& message)
{
    m_message = message;
    update();
}

void CIPreviewView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (m_picture.isEmpty()) {
        painter.fillRect(rect(), Theme::surround);
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(rect(), Qt::AlignCenter, m_failure.isEmpty() ? m_message : m_failure);
    } else {
        paintPicture(painter, event->region());
        paintTool(painter);
    }
    if (m_showsFocus)
        paintFocus(painter);
}

void CIPreviewView::paintPicture(QPainter& painter, const QRegion& exposed)
{
    // In whole device pixels: at a fractional scale the view itself may begin between two, and any
    // other position would blur the picture.
    const QTransform toDevice = painter.deviceTransform();
    painter.save();
    painter.setWorldTransform(toDevice.inverted());
    const CGRect place = pictureRect(mapping());
    const QPoint corner = toDevice.map(QPointF(place.minX(), place.minY())).toPoint();
    const QRect target(corner, deviceSize(mapping(), toDevice.m11()));
    QRegion onDevice;
    for (const QRect& rect : exposed)
        onDevice += toDevice.mapRect(QRectF(rect)).toAlignedRect();
    // What is transparent, such as the corners of a straightened picture, shows what lies around.
    const bool isSolid = !m_picture.picture().hasAlphaChannel();
    for (const QRect& rect : isSolid ? onDevice - target : onDevice)
        painter.fillRect(rect, Theme::surround);
    m_picture.draw(painter, target, onDevice);
    painter.restore();
    const QRect seen = toDevice.mapRect(QRectF(rect())).toAlignedRect().translated(-corner);
    if (m_picture.wantsFit(target.size(), seen))
        fitPicture(target.size(), seen);
    if (std::exchange(m_awaitsPaint, false))
        QMetaObject::invokeMethod(this, &CIPreviewView::picturePainted, Qt::QueuedConnection);
}

void CIPreviewView::paintTool(QPainter& painter)
{
    const CanvasTool* const active = tool();
    if (!active)
        return;
    const QTransform toDevice = painter.deviceTransform();
    painter.save();
    painter.setWorldTransform(toDevice.inverted());
    OverlayPainter overlay(painter, mapping(), toDevice);
    active->paint(overlay);
    painter.restore();
}

void CIPreviewView::paintFocus(QPainter& painter)
{
    painter.setPen(QPen(Theme::accent, 2));
    painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
}

/// Scales a copy in the background. One at a time: when the size has changed meanwhile, the next
/// paint asks again.
void CIPreviewView::fitPicture(const QSize& whole, const QRect& seen)
{
    if (std::exchange(m_isFitting, true))
        return;
    runInBackground(
        m_pool, *this,
        [whole, part = partWorthFitting(seen, whole), picture = m_picture.picture()] {
            return std::pair(picture, fittedTo(whole, part, picture));
        },
        [this](const std::pair<QImage, FittedPicture>& fitted) {
            m_isFitting = false;
            m_picture.takeFit(fitted.first, fitted.second);
            update();
        });
}

void CIPreviewView::resizeEvent(QResizeEvent*)
{
    m_zoom.setSize({double(width()), double(height())});
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
        m_zoom.endPinch();
        return true;
    }
    if (gesture.gestureType() != Qt::ZoomNativeGesture || m_picture.isEmpty() || wantedTool())
        return false;
    m_zoom.pinch(toPoint(gesture.position()), 1 + gesture.value());
    return true;
}

void CIPreviewView::wheelEvent(QWheelEvent* event)
{
    if (m_picture.isEmpty() || event->angleDelta().y() == 0)
        return;
    const double steps = event->angleDelta().y() / 120.0;
    m_zoom.zoomAbout(toPoint(event->position()), mapping().zoom * std::pow(1.25, steps));
}

void CIPreviewView::leaveEvent(QEvent*)
{
    m_zoom.setPointer({});
    if (tool() && !m_dragging) {
        tool()->cancel();
        update();
    }
}

// ---- Tools and the pointer ----

/// The first tool of the model that takes the pointer.
CanvasTool* CIPreviewView::wantedTool() const
{
    for (const auto& each : m_tools) {
        if (each->isActive())
            return each.get();
    }
    return nullptr;
}

/// The same, once the picture on screen is the one that its places count in.
CanvasTool* CIPreviewView::tool() const
{
    CanvasTool* const wanted = wantedTool();
    if (!wanted || !mapping().hasFrame())
        return nullptr;
    const CGRect needed = wanted->needsWholeFrame() ? CGRect(0, 0, 1, 1) : m_model.crop.value();
    return m_shownCrop == needed ? wanted : nullptr;
}

CanvasPointer CIPreviewView::pointer(const QPointF& position) const
{
    return {fractionAt(toPoint(position), mapping()), mapping()};
}

/// After the model's tools, or what they show, have changed.
void CIPreviewView::followTools()
{
    CanvasTool* const wanted = wantedTool();
    if (wanted != m_lastTool) {
        for (CanvasTool* const ended : {m_lastTool, m_dragging}) {
            if (ended)
                ended->cancel();
        }
        m_dragging = nullptr;
        // For the arrow keys.
        if (wanted && wanted->needsWholeFrame())
            setFocus(Qt::OtherFocusReason);
        m_lastTool = wanted;
    }
    if (tool() && !m_dragging && underMouse())
        tool()->hover(pointer(mapFromGlobal(QCursor::pos())));
    describe();
    updateCursor();
    update();
}

void CIPreviewView::mousePressEvent(QMouseEvent* event)
{
    if (m_picture.isEmpty() || m_press || (m_dragging && event->button() != Qt::LeftButton))
        return;
    // A release that never came: some other window has it.
    if (m_dragging)
        std::exchange(m_dragging, nullptr)->cancel();
    setShowsFocus(false);
    if (event->button() == Qt::LeftButton && wantedTool()) {
        m_dragging = tool();
        if (m_dragging)
            update(m_dragging->press(pointer(event->position())));
    } else if (event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton) {
        m_press = event->position();
    }
    updateCursor();
}

void CIPreviewView::mouseMoveEvent(QMouseEvent* event)
{
    m_zoom.setPointer(toPoint(event->position()));
    if (m_press) {
        const QPointF moved = event->position() - *m_press;
        const bool pans = m_zoom.isPanning() || std::hypot(moved.x(), moved.y()) >= dragDistance;
        if (!pans || effectiveZoom(mapping()) <= 1)
            return;
        if (!m_zoom.isPanning())
            m_zoom.startPan();
        m_zoom.panBy(moved.x(), moved.y());
    } else if (m_dragging) {
        update(m_dragging->drag(pointer(event->position())));
        updateCursor();
    } else if (CanvasTool* const hovered = tool()) {
        update(hovered->hover(pointer(event->position())));
        updateCursor();
    }
}

void CIPreviewView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->buttons() & (Qt::LeftButton | Qt::MiddleButton))
        return;
    m_press.reset();
    m_zoom.endPan();
    if (CanvasTool* const done = std::exchange(m_dragging, nullptr)) {
        update(done->release(pointer(event->position())));
        if (done == tool())
            update(done->hover(pointer(event->position())));
    }
    updateCursor();
}

void CIPreviewView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (wantedTool())
        mousePressEvent(event);
    else if (event->button() == Qt::LeftButton)
        m_zoom.glideToFit();
}

void CIPreviewView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_dragging) {
        std::exchange(m_dragging, nullptr)->cancel();
        update();
        return;
    }
    CanvasTool* const active = wantedTool();
    if (!active || m_dragging || !active->key(*event, mapping()))
        QWidget::keyPressEvent(event);
}

void CIPreviewView::updateCursor()
{
    if (m_press && effectiveZoom(mapping()) > 1)
        setCursor(Qt::ClosedHandCursor);
    else if (m_dragging || tool())
        setCursor((m_dragging ? m_dragging : tool())->cursor());
    else if (!m_picture.isEmpty() && effectiveZoom(mapping()) > 1 && !wantedTool())
        setCursor(Qt::OpenHandCursor);
    else
        unsetCursor();
}

// ---- Keyboard focus and words ----

void CIPreviewView::focusInEvent(QFocusEvent* event)
{
    const Qt::FocusReason reason = event->reason();
    setShowsFocus(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
}

void CIPreviewView::focusOutEvent(QFocusEvent*)
{
    setShowsFocus(false);
}

void CIPreviewView::setShowsFocus(bool shows)
{
    if (std::exchange(m_showsFocus, shows) != shows)
        update();
}

/// What a screen reader says: the tool, and how large the picture is seen.
void CIPreviewView::describe()
{
    const CanvasTool* const active = wantedTool();
    const double zoom = m_model.zoom;
    const QString size =
        zoom == 1 ? tr("Zoom to fit") : tr("Zoom %1 percent").arg(std::lround(zoom * 100));
    setAccessibleDescription(active ? active->description() + ' ' + size : size);
}

} // namespace orvane
