#pragma once

#include "CGGeometry.h"
#include "PlacedBitmap.h"

#include <vector>

namespace orvane {

/// Strokes with round caps and joins, white on black, one grey byte a pixel, antialiased: the part
/// of a picture of width x height where they lie, with a pixel of black around it wherever the
/// picture goes on; no bitmap when they lie outside. Points are fractions of the width and the
/// height, y from the top; lineWidth is in pixels. A stroke of one point is a dab; an empty one
/// paints nothing. width and height at least 1. Asked again for the mask of the same strokes, it
/// hands out the same bitmap where it still can.
PlacedBitmap brushMask(const std::vector<std::vector<CGPoint>>& strokes, int width, int height,
                       double lineWidth);

} // namespace orvane
