#pragma once

#include "CGGeometry.h"

#include <array>
#include <optional>
#include <string_view>

namespace orvane {

/// The ratios that a crop is held to. Crops are fractions of the frame, the picture as it stands
/// after rotation and flips; ratios are width by height in its pixels.
namespace CropRatio {

/// Of an id like "3:2", turned to lie or stand as the frame does. Absent for an id that is not two
/// positive numbers, as "free" is. Without a frame, as it is written.
std::optional<double> pixelRatio(std::string_view id, const std::optional<CGSize>& frame);

/// The crop with the ratio: as wide as before where the frame is high enough, about the same
/// centre, moved to lie within the frame. Without a ratio or a frame, the crop itself.
CGRect fit(const CGRect& crop, const std::optional<double>& toPixelRatio, const CGSize& frame);

} // namespace CropRatio

/// An outer frame that is offered for the picture.
struct CanvasShape {
    std::string_view id;
    std::string_view name;
    double aspect; ///< width by height; 0 means no canvas
};
inline constexpr std::array<CanvasShape, 5> canvasShapes = {{{"off", "Off", 0},
                                                             {"1x1", "1:1", 1},
                                                             {"4x5", "4:5", 0.8},
                                                             {"9x16", "9:16", 0.5625},
                                                             {"16x9", "16:9", 16.0 / 9}}};

} // namespace orvane
