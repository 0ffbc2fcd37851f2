#pragma once

#include "CIContext.h"
#include "CIImage.h"

namespace orvane {

/// The longer side of what the canvas renders, in pixels: only an export works at full size.
inline constexpr int proxyEdge = 2560;

/// The source reduced to the proxy's size and drawn into memory once, so that a slider's next
/// picture does not begin with reducing the source again (0.2 s for 20 megapixels, against 0.05 s
/// for grading the proxy). The source itself when it is no larger, or when the draw was cancelled.
/// The values are the working ones, linear and unclipped; metadata is not carried.
CIImage drawnProxy(const CIImage& source, const CancellationToken* cancellation = nullptr);

} // namespace orvane
