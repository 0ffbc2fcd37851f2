#pragma once

#include "Adjustments.h"
#include "CIImage.h"
#include "EditState.h"
#include "Geometry.h"
#include "LUT.h"

#include <optional>

namespace orvane {

/// What the render takes of an edit. `lut` is the table that the state's `lutID` names, found by
/// the caller; crop, rotation, flips, canvas and text are not the render's business.
Adjustments adjustments(const EditState& state, const std::optional<LUT>& lut);

/// What fills the canvas beyond the picture: `canvasColor`, the stretched edge, or a blurred copy.
Geometry::Fill canvasFill(const EditState& state);

/// Whether the crop of the state counts, or the whole frame is shown, as the crop tool needs it.
enum class Cropping { Applied, Ignored };

/// The source straightened, flipped, cropped and laid on the state's canvas: what the render
/// grades.
CIImage framed(const CIImage& source, const EditState& state,
               Cropping cropping = Cropping::Applied);

} // namespace orvane
