#pragma once

#include "EditState.h"

namespace orvane::LightGeometry {

using Light = EditState::Light;
using Lights = std::vector<Light>;

// Lengths are fractions of the picture's long edge, as a light's radius is: a ring is grabbed where
// it is seen, on pictures of any shape.

inline constexpr double centreReach = 0.04;
inline constexpr double ringReach = 0.03;
inline constexpr double smallestMove = 0.005;
/// A press that moves less is a click.
inline constexpr double clickDistance = 0.01;

/// Between two points in fractions of a picture of that size.
double distance(const CGPoint& a, const CGPoint& b, const CGSize& frame);

/// What a press holds.
struct Grab {
    enum class Kind { Nothing, Centre, Ring };
    Kind kind = Kind::Nothing;
    std::string id; ///< of the light

    bool operator==(const Grab&) const = default;
};
/// The nearest light whose centre is in reach, else the first whose ring is; never a brush.
Grab grab(const CGPoint& at, const Lights& lights, const CGSize& frame);

/// The radius of a ring dragged to there: 0.02..1.5.
double radius(const CGPoint& centre, const CGPoint& to, const CGSize& frame);

bool isBrush(const Light& light);
/// Null for an id that no light has.
const Light* find(const Lights& lights, const std::string& id);

/// Adds the point to a stroke, unless it is nearer than `spacing` to the last one.
bool extend(std::vector<CGPoint>& stroke, const CGPoint& to, double spacing, const CGSize& frame);

} // namespace orvane::LightGeometry
