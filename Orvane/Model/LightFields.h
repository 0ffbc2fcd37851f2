#pragma once

#include "EditState.h"

#include <string>
#include <string_view>

namespace orvane {

/// A light as it is placed: a "gradient", a "brush", an "eraser" (a brush that takes away), or for
/// any other kind a radial one. The place is a fraction of width and height, y from the top.
EditState::Light newLight(std::string_view kind, double x, double y);

/// The number of a light that has this name; null when it is none that may be written.
double EditState::Light::*lightField(std::string_view name);

} // namespace orvane
