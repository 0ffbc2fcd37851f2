#pragma once

#include "CIImage.h"

#include <array>

/// The pixel programs of the local lights. Their images carry amounts and not colour: red is
/// brightness, green warmth, blue contrast and alpha saturation, of any sign.
namespace orvane::LightKernels {

using Amounts = std::array<float, 4>;

/// The amounts within `core` radii of the centre, falling to 0 at one radius.
CIImage radial(const CGRect& extent, CGPoint center, double radius, double core, bool invert,
               const Amounts& amounts);

/// The amounts times a ramp from 0 to 1 across 2 `reach` in the direction (cosine, -sine); feather
/// eases a straight ramp (0) into a smooth one (1).
CIImage linear(const CGRect& extent, CGPoint center, double reach, double cosine, double sine,
               double feather, bool invert, const Amounts& amounts);

/// The amounts times the mask's red.
CIImage painted(const CIImage& mask, const Amounts& amounts);

/// The picture under the summed amounts; held to 0..1 wherever they are not all 0.
CIImage lit(const CIImage& image, const CIImage& amounts);

} // namespace orvane::LightKernels
