#pragma once

#include "BrushRing.h"

namespace orvane {

/// The retouch brush: a stroke becomes spots half a radius apart.
class RetouchTool final : public CanvasTool {
public:
    using CanvasTool::CanvasTool;

    bool isActive() const override;
    QString description() const override;
    QRegion press(const CanvasPointer& pointer) override;
    QRegion drag(const CanvasPointer& pointer) override;
    QRegion release(const CanvasPointer& pointer) override;
    QRegion hover(const CanvasPointer& pointer) override;
    void cancel() override { m_brush.cancel(); }
    /// Escape lays the brush down.
    bool key(const QKeyEvent& event, const CanvasView& view) override;
    void paint(OverlayPainter& painter) const override;
    QCursor cursor() const override { return m_brush.cursor(); }

private:
    double radius() const;

    BrushRing m_brush;
};

} // namespace orvane
