#include "TextTool.h"

#include "AppModel.h"
#include "OverlayPainter.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

/// A press that moves less, in fractions, is a click.
constexpr double clickDistance = 0.01;
/// Between the words and their frame, in view points.
constexpr double padding = 6;

bool contains(const CGRect& rect, const CGPoint& point)
{
    return point.x >= rect.minX() && point.x <= rect.maxX() && point.y >= rect.minY()
        && point.y <= rect.maxY();
}

} // namespace

bool TextTool::isActive() const
{
    return !m_model.healing && !m_model.pickingWhite && !m_model.relightMode && !m_model.cropMode
        && selected();
}

QString TextTool::description() const
{
    return QCoreApplication::translate(
        "orvane::CIPreviewView",
        "Drag the caption to place it, or use Position X and Y in the Text section.");
}

/// Null when the selection names none.
const EditState::TextLayer* TextTool::selected() const
{
    const auto& layers = m_model.texts.value();
    const auto found = std::find_if(layers.begin(), layers.end(), [&](const Layer& layer) {
        return layer.id == m_model.selectedTextID.value();
    });
    return found == layers.end() ? nullptr : &*found;
}

EditState::TextLayer TextTool::shown(const Layer& layer) const
{
    Layer result = layer;
    if (m_drag && m_drag->id == layer.id && m_drag->hasMoved) {
        result.x = m_drag->position.x;
        result.y = m_drag->position.y;
    }
    return result;
}

/// The topmost one there, or null.
const EditState::TextLayer* TextTool::captionAt(const CanvasPointer& pointer) const
{
    const auto& layers = m_model.texts.value();
    const auto found = std::find_if(layers.rbegin(), layers.rend(), [&](const Layer& layer) {
        return contains(m_frames.rect(layer, pointer.view.frame), pointer.fraction);
    });
    return found == layers.rend() ? nullptr : &*found;
}

QRegion TextTool::press(const CanvasPointer& pointer)
{
    const Layer* const layer = selected();
    if (!layer || !pointer.isInside())
        return {};
    const CGPoint centre{layer->x, layer->y};
    Drag drag{layer->id, pointer.fraction, {}, centre};
    // Taken by its words, the caption keeps them under the pointer; from elsewhere it comes to it.
    if (contains(m_frames.rect(*layer, pointer.view.frame), pointer.fraction))
        drag.toCentre = {centre.x - pointer.fraction.x, centre.y - pointer.fraction.y};
    m_drag = std::move(drag);
    return {};
}

QRegion TextTool::drag(const CanvasPointer& pointer)
{
    if (!m_drag)
        return {};
    const QRegion before = footprint(pointer.view);
    const CGPoint held = pointer.held();
    m_drag->hasMoved = m_drag->hasMoved
        || std::hypot(held.x - m_drag->start.x, held.y - m_drag->start.y) >= clickDistance;
    m_drag->position = {std::clamp(held.x + m_drag->toCentre.x, 0.0, 1.0),
                        std::clamp(held.y + m_drag->toCentre.y, 0.0, 1.0)};
    return before + footprint(pointer.view);
}

QRegion TextTool::release(const CanvasPointer& pointer)
{
    if (!m_drag)
        return {};
    const QRegion changed = drag(pointer);
    const Drag done = *std::exchange(m_drag, {});
    if (done.hasMoved)
        m_model.setTextPosition(done.id, done.position.x, done.position.y);
    else if (const Layer* const other = captionAt(pointer))
        m_model.selectText(std::string(other->id));
    return changed;
}

QRegion TextTool::hover(const CanvasPointer& pointer)
{
    m_isInside = pointer.isInside();
    const Layer* const layer = captionAt(pointer);
    m_isOverOther = layer && layer->id != m_model.selectedTextID.value();
    return {};
}

void TextTool::cancel()
{
    m_drag.reset();
    m_isInside = false;
}

bool TextTool::key(const QKeyEvent& event, const CanvasView&)
{
    if (event.key() != Qt::Key_Escape)
        return false;
    m_model.selectText({});
    return true;
}

QRegion TextTool::footprint(const CanvasView& view) const
{
    const Layer* const layer = selected();
    if (!layer)
        return {};
    const CGRect rect = m_frames.rect(shown(*layer), view.frame);
    const CGPoint from = viewPoint(rect.origin, view);
    const CGPoint to = viewPoint({rect.maxX(), rect.maxY()}, view);
    return Footprint::area(
        CGRect(from.x, from.y, to.x - from.x, to.y - from.y).inset(-padding * 2, -padding * 2));
}

void TextTool::paint(OverlayPainter& painter) const
{
    const Layer* const layer = selected();
    if (!layer)
        return;
    const Layer caption = shown(*layer);
    const CGRect rect = m_frames.rect(caption, painter.view().frame);
    const double room = painter.points(padding);
    const QRectF frame = QRectF(painter.at(rect.origin), painter.at({rect.maxX(), rect.maxY()}))
                             .adjusted(-room, -room, room, room);
    if (m_drag && m_drag->hasMoved)
        paintWords(painter, caption);
    // Without handles at its corners: it can only be moved.
    painter.frame(frame);
}

/// The picture has the caption where it was until it is rendered anew.
void TextTool::paintWords(OverlayPainter& painter, const Layer& caption) const
{
    const QPointF size = painter.at({1, 1}) - painter.at({0, 0});
    if (m_drag->wordsWidth != size.x()) {
        m_drag->words = CaptionFrame::words(caption, {std::round(size.x()), std::round(size.y())});
        m_drag->wordsWidth = size.x();
    }
    const CaptionWords& words = m_drag->words;
    if (!words.image.isNull())
        painter.image(painter.at({caption.x, caption.y}) - words.toCentre, words.image, 0.75);
}

QCursor TextTool::cursor() const
{
    if (!m_isInside && !m_drag)
        return Qt::ArrowCursor;
    return m_isOverOther && !m_drag ? Qt::PointingHandCursor : Qt::SizeAllCursor;
}

} // namespace orvane
