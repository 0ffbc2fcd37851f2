#pragma once

#include "CGGeometry.h"
#include "CIImage.h"

#include <string>
#include <vector>

namespace orvane {

/// One local light as the render takes it: a mask with four amounts.
struct Light {
    std::string type = "radial"; ///< "linear", "brush"; any other text means radial
    double x = 0.5; ///< centre, fraction of the image's width from the left edge
    double y = 0.5; ///< centre, fraction of the image's height from the top edge
    /// Fraction of the image's long edge. Radial: where the light ends. Linear: half the width of
    /// the transition. Brush: half the width of the stroke.
    double radius = 0;
    double angle = 0; ///< degrees; linear only
    double feather = 0; ///< 0..1, softness of the edge
    bool invert = false; ///< inside and outside swapped; radial and linear only
    double brightness = 0; ///< percent, as the three below
    double warmth = 0;
    double contrast = 0;
    double saturation = 0;
    /// Brush only: the points of each stroke, fractions of width and height, y from the top edge.
    std::vector<std::vector<CGPoint>> strokes = {};

    bool operator==(const Light&) const = default;
};

namespace Relight {

/// All lights summed, then applied in one pass; overlapping lights add up. The extent stays.
/// An infinite image, or lights that change nothing, give the image itself.
CIImage apply(const CIImage& image, const std::vector<Light>& lights);

} // namespace Relight

} // namespace orvane
