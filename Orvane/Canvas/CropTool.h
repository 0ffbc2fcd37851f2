#pragma once

#include "CanvasTool.h"
#include "CropGeometry.h"

namespace orvane {

/// Handles on the crop, over the whole frame. While it is open the crop costs no render.
class CropTool final : public CanvasTool {
public:
    using CanvasTool::CanvasTool;

    bool isActive() const override;
    QString description() const override;
    bool needsWholeFrame() const override { return true; }
    QRegion press(const CanvasPointer& pointer) override;
    QRegion drag(const CanvasPointer& pointer) override;
    QRegion release(const CanvasPointer& pointer) override;
    QRegion hover(const CanvasPointer& pointer) override;
    void cancel() override;
    /// Arrows move the crop, with Alt they resize it; Shift makes larger steps. Enter finishes,
    /// Escape cancels.
    bool key(const QKeyEvent& event, const CanvasView& view) override;
    void paint(OverlayPainter& painter) const override;
    QCursor cursor() const override;

private:
    struct Drag {
        CropGrab grab;
        CGRect origin;
        CGPoint anchor;
        CGRect crop; ///< as it is shown
    };

    CGRect shown() const;
    CropGeometry::Ratio ratio(const CanvasView& view) const;
    void paintGuide(OverlayPainter& painter, const QRectF& crop) const;

    std::optional<Drag> m_drag;
    CropGrab m_hovered;
};

} // namespace orvane
