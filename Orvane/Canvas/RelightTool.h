#pragma once

#include "BrushRing.h"
#include "LightGeometry.h"

namespace orvane {

/// Lights on the picture: a drag moves one by its centre or sizes it by its ring, a click elsewhere
/// adds one. With a brush selected, the pointer paints.
class RelightTool final : public CanvasTool {
public:
    using CanvasTool::CanvasTool;

    bool isActive() const override;
    QString description() const override;
    QRegion press(const CanvasPointer& pointer) override;
    QRegion drag(const CanvasPointer& pointer) override;
    QRegion release(const CanvasPointer& pointer) override;
    QRegion hover(const CanvasPointer& pointer) override;
    void cancel() override;
    /// Enter leaves with the lights, Escape without them; arrows move the selected light.
    bool key(const QKeyEvent& event, const CanvasView& view) override;
    void paint(OverlayPainter& painter) const override;
    QCursor cursor() const override;

private:
    using Light = EditState::Light;
    struct Drag {
        LightGeometry::Grab grab;
        CGPoint start;
        double moved = 0; ///< the farthest from there, as a fraction of the long edge
        Light light = {}; ///< that is held, as it is shown
    };

    const Light* selectedBrush() const;
    void hold(Drag& drag, const CanvasPointer& pointer) const;
    bool moveSelected(const CGPoint& by);

    BrushRing m_brush;
    std::optional<Drag> m_drag;
    LightGeometry::Grab m_hovered;
    std::optional<CGPoint> m_fromCentre; ///< of the hovered light to the pointer, in pixels
};

} // namespace orvane
