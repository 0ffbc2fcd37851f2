#pragma once

#include "CIImage.h"

/// The pixel program of healing.
namespace orvane::HealKernels {

/// The patch laid over the background through the mask's red, over an extent; as opaque as the
/// background.
CIImage healed(const CIImage& patch, const CIImage& background, const CIImage& mask,
               const CGRect& extent);

} // namespace orvane::HealKernels
