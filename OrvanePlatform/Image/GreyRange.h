#pragma once

#include "Node.h"
#include "PixelRect.h"

#include <limits>

namespace orvane {

/// Bounds of an image's values where red, green and blue are known to be alike, as in a mask made
/// of gradients; without bounds where nothing is known.
struct GreyRange {
    float low = -std::numeric_limits<float>::infinity();
    float high = std::numeric_limits<float>::infinity();
};

/// Over the pixels of `rect`. What holds for a rectangle holds for each part of it, with bounds at
/// least as close.
GreyRange greyRange(const Node& node, const PixelRect& rect);

} // namespace orvane
