#pragma once

#include "CGGeometry.h"

#include <optional>

namespace orvane {

/// What a drag in the crop tool holds.
struct CropGrab {
    enum class Kind { Corner, EdgeX, EdgeY, Move };
    Kind kind = Kind::Move;
    bool isMaxX = false; ///< of a corner or an upright edge: the right side, not the left one
    bool isMaxY = false; ///< of a corner or a level edge: the bottom, not the top

    static CropGrab corner(bool x, bool y) { return {Kind::Corner, x, y}; }
    static CropGrab edgeX(bool x) { return {Kind::EdgeX, x, false}; }
    static CropGrab edgeY(bool y) { return {Kind::EdgeY, false, y}; }
    static CropGrab move() { return {}; }

    bool holdsX() const { return kind == Kind::Corner || kind == Kind::EdgeX; }
    bool holdsY() const { return kind == Kind::Corner || kind == Kind::EdgeY; }
    bool operator==(const CropGrab&) const = default;
};

/// Crops here are fractions of the whole frame, y from the top, and so are points and offsets.
namespace CropGeometry {

/// How near to a side a press grabs it.
inline constexpr double reach = 0.04;
/// The smallest width and height.
inline constexpr double smallest = 0.05;

/// The ratio that a crop is held to, and the frame's size in pixels, which gives it a meaning.
struct Ratio {
    std::optional<double> pixels; ///< width by height; absent: any
    CGSize frame;
};

CropGrab grab(const CGPoint& at, const CGRect& crop);

/// The crop after a drag by `offset` from where it was grabbed. Sides stop at the frame's edges and
/// short of each other; a moved crop keeps its size.
CGRect resized(const CGRect& crop, const CropGrab& grab, const CGPoint& by, const Ratio& in);

/// Moved by an offset, as far as the frame goes.
CGRect moved(const CGRect& crop, const CGPoint& by);
/// Wider and higher by `by` about its centre, moved back into the frame.
CGRect grown(const CGRect& crop, double by, const Ratio& in);

} // namespace CropGeometry

} // namespace orvane
