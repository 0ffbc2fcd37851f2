#pragma once

#include "Adjustments.h"
#include "CIImage.h"

#include <array>
#include <span>

namespace orvane::Curves {

/// The table of one channel: an output of 0..255 for each input of 0..255.
using Table = std::array<int, 256>;

/// Monotone cubic interpolation of the points, level before the first and after the last.
/// The points may be unsorted; of equal x the last one counts, coordinates are held to 0..255, and
/// fewer than two different x give the identity.
Table lut(std::span<const Adjustments::CurvePoint> points);

/// The master curve, then those of the colour channels, on sRGB-encoded values. A missing channel
/// is the identity; the identity curve gives the image itself.
CIImage apply(const CIImage& image, const Adjustments::Curve& curve);

} // namespace orvane::Curves
