#pragma once

#include "CanvasTool.h"

namespace orvane {

/// The white balance picker: one click, one reading.
class WhiteTool final : public CanvasTool {
public:
    using CanvasTool::CanvasTool;

    bool isActive() const override;
    QString description() const override;
    QRegion press(const CanvasPointer& pointer) override;
    QRegion drag(const CanvasPointer&) override { return {}; }
    QRegion release(const CanvasPointer& pointer) override;
    QRegion hover(const CanvasPointer& pointer) override;
    void cancel() override;
    /// Escape puts the picker away.
    bool key(const QKeyEvent& event, const CanvasView& view) override;
    void paint(OverlayPainter&) const override { }
    QCursor cursor() const override;

private:
    std::optional<CGPoint> m_press;
    bool m_isInside = false;
};

} // namespace orvane
