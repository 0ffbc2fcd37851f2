#pragma once

#include "CanvasTool.h"
#include "CaptionFrame.h"

namespace orvane {

/// The selected caption's frame, which a drag moves. A click on another caption selects that.
class TextTool final : public CanvasTool {
public:
    using CanvasTool::CanvasTool;

    /// While nothing else is at work and the selection names a caption.
    bool isActive() const override;
    QString description() const override;
    QRegion press(const CanvasPointer& pointer) override;
    QRegion drag(const CanvasPointer& pointer) override;
    QRegion release(const CanvasPointer& pointer) override;
    QRegion hover(const CanvasPointer& pointer) override;
    void cancel() override;
    /// Escape deselects the caption.
    bool key(const QKeyEvent& event, const CanvasView& view) override;
    void paint(OverlayPainter& painter) const override;
    QCursor cursor() const override;

private:
    using Layer = EditState::TextLayer;
    struct Drag {
        std::string id;
        CGPoint start;
        CGPoint toCentre; ///< from the pointer to the caption's centre
        CGPoint position; ///< of the centre, as it is shown
        bool hasMoved = false;
        mutable CaptionWords words = {}; ///< made when they are first painted, as wide as ...
        mutable double wordsWidth = 0; ///< ... this many device pixels of the picture
    };

    const Layer* selected() const;
    Layer shown(const Layer& layer) const;
    const Layer* captionAt(const CanvasPointer& pointer) const;
    void paintWords(OverlayPainter& painter, const Layer& caption) const;
    QRegion footprint(const CanvasView& view) const;

    mutable CaptionFrame m_frames;
    std::optional<Drag> m_drag;
    bool m_isOverOther = false; ///< the pointer is over a caption that a click selects
    bool m_isInside = false;
};

} // namespace orvane
