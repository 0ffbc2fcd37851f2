#pragma once

#include "CIImage.h"

#include <variant>

/// The frame of the picture: straightened, flipped, cropped and laid on a canvas, before any
/// grading.
namespace orvane::Geometry {

/// What fills a canvas beyond the picture.
struct ColourFill {
    CIColor colour;
    bool operator==(const ColourFill&) const = default;
};
/// A blurred, enlarged copy of the picture.
struct BlurFill {
    bool operator==(const BlurFill&) const = default;
};
/// The edge pixels of the picture, stretched outwards.
struct EdgeFill {
    bool operator==(const EdgeFill&) const = default;
};
using Fill = std::variant<ColourFill, BlurFill, EdgeFill>;

/// The crop that keeps everything.
inline const CGRect fullFrame{0, 0, 1, 1};

/// Rotates, flips, crops and extends, in this order.
/// rotation: degrees, positive turns clockwise on screen; up to 0.01 either way is none.
/// crop: fractions of the frame as it stands after rotation and flips, the origin at the top left.
/// canvasAspect: width by height; 0 or less means no canvas.
CIImage apply(const CIImage& image, double rotation, bool flipH, bool flipV, const CGRect& crop,
              double canvasAspect, const Fill& fill);

/// The picture centred, on whole pixels, on a canvas from (0, 0) that keeps one side and grows the
/// other. An aspect of 0 or less, or within 0.001 of the picture's own, gives the image itself.
CIImage extend(const CIImage& image, double toAspect, const Fill& fill);

/// What shows behind a rotated picture: infinite, under the same transform as the picture.
CIImage backdrop(const CIImage& image, const Fill& fill, const CGAffineTransform& rotatedBy);

/// A blurred copy of the image, centred on the rectangle and just large enough to cover it.
CIImage blurred(const CIImage& image, const CGRect& filling);

/// Reduced so that the longer side measures longEdge pixels. Never enlarges: a longEdge of the
/// image's own size or more, or below 1, gives the image itself, as does an infinite or empty
/// image.
CIImage resized(const CIImage& image, int longEdge);

} // namespace orvane::Geometry
