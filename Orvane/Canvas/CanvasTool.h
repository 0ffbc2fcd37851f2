#pragma once

#include "CanvasMapping.h"

#include <QCursor>
#include <QRegion>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QKeyEvent;

namespace orvane {

class AppModel;
class OverlayPainter;

/// The pointer over the canvas, as tools see it.
struct CanvasPointer {
    CGPoint fraction; ///< of the picture, y from the top; beyond 0..1 outside of it
    const CanvasView& view; ///< how the picture lies at this moment

    bool isInside() const;
    /// Moved to the picture's nearest edge.
    CGPoint held() const;
};

/// What the pointer does on the picture while a tool of the model has it, and what is painted over
/// the picture for it. A drag is the tool's own until it ends: the model is told once, so that it
/// costs no render and makes one step of history.
///
/// Events answer with the part of the view that is to be painted anew, in view points.
class CanvasTool {
public:
    explicit CanvasTool(AppModel& model)
        : m_model(model)
    {
    }
    virtual ~CanvasTool() = default;
    CanvasTool(const CanvasTool&) = delete;
    CanvasTool& operator=(const CanvasTool&) = delete;

    /// Whether it has the pointer, when no tool before it does.
    virtual bool isActive() const = 0;
    /// What a screen reader says of the canvas.
    virtual QString description() const = 0;
    /// The picture must show the whole frame for it, not the crop.
    virtual bool needsWholeFrame() const { return false; }

    /// The left button goes down; what follows is drag() and release(), or cancel().
    virtual QRegion press(const CanvasPointer& pointer) = 0;
    virtual QRegion drag(const CanvasPointer& pointer) = 0;
    virtual QRegion release(const CanvasPointer& pointer) = 0;
    /// The pointer moves with no button down.
    virtual QRegion hover(const CanvasPointer& pointer) = 0;
    /// Drops the drag, and the pointer has left.
    virtual void cancel() = 0;
    /// False for a key that means nothing to it.
    virtual bool key(const QKeyEvent& event, const CanvasView& view) = 0;

    virtual void paint(OverlayPainter& painter) const = 0;
    /// Tells what a press would do where the pointer was last, or what the drag does.
    virtual QCursor cursor() const = 0;

protected:
    AppModel& m_model;
};

/// In the order in which they are asked for the pointer.
std::vector<std::unique_ptr<CanvasTool>> makeCanvasTools(AppModel& model);

} // namespace orvane
