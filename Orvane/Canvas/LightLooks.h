#pragma once

#include "EditState.h"

#include <QRegion>

namespace orvane {

struct CanvasView;
class OverlayPainter;

/// How a light that is no brush looks on the canvas.
///
/// Radial: its ring, with a fainter one inside up to which the light is full. Linear: the line
/// through its centre and the two, tangent to its ring, between which the light grows, with an
/// arrow to the full side and the angle beside it.
namespace LightLooks {

void paint(OverlayPainter& painter, const EditState::Light& light, bool isSelected);
/// What that covers, in view points.
QRegion footprint(const EditState::Light& light, const CanvasView& view);

} // namespace LightLooks

} // namespace orvane
