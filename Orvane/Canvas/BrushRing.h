#pragma once

#include "CanvasTool.h"

namespace orvane {

/// A round brush under the pointer, and the stroke in progress. The radius is a fraction of the
/// picture's long edge.
class BrushRing {
public:
    enum class Mark { None, Minus };

    bool isDrawing() const { return m_isDrawing; }
    const std::vector<CGPoint>& stroke() const { return m_stroke; }

    /// Each answers with what is to be painted anew.
    QRegion hover(const CanvasPointer& pointer, double radius);
    QRegion begin(const CanvasPointer& pointer, double radius, double spacing);
    /// Outside of the picture nothing is added.
    QRegion draw(const CanvasPointer& pointer, double radius, double spacing);
    std::vector<CGPoint> end();
    void cancel();

    void paint(OverlayPainter& painter, double radius, Mark mark = Mark::None) const;
    QCursor cursor() const;

private:
    std::optional<CGPoint> m_at;
    std::vector<CGPoint> m_stroke;
    bool m_isDrawing = false;
};

} // namespace orvane
