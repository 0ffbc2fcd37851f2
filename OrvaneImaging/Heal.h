#pragma once

#include "CIImage.h"
#include "HealSpot.h"

#include <vector>

namespace orvane::Heal {

/// Covers each spot, in order, with a soft-edged patch of the same image from 2.4 radii away in
/// both axes, towards the middle of the image. No radius is smaller than 2 pixels. The extent
/// stays. An infinite image, or an empty list, gives the image itself.
CIImage apply(const CIImage& image, const std::vector<HealSpot>& spots);

} // namespace orvane::Heal
