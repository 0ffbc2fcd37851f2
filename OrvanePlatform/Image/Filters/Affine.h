#pragma once

#include "CIImage.h"
#include "Node.h"

namespace orvane {

/// The node under a transform that is no whole-pixel one. Empty when nothing of it is left: a scale
/// below 1 / 100,000.
CIImage affineWarp(const NodePtr& input, const CGAffineTransform& transform);

} // namespace orvane
