#pragma once

#include "CIImage.h"

#include <array>

/// The pixel programs of healing. A change is what a spot adds to the picture: signed, and nothing
/// outside its own small extent.
namespace orvane::HealKernels {

/// What laying the patch over the background through the mask's red adds to the background.
CIImage change(const CIImage& patch, const CIImage& background, const CIImage& mask,
               const CGRect& extent);

/// The plain sum of all four stored channels of up to four images (empty ones add nothing) over an
/// extent. opaque promises that alpha comes out as 1.
CIImage sum(const std::array<CIImage, 4>& images, const CGRect& extent, bool opaque);

} // namespace orvane::HealKernels
