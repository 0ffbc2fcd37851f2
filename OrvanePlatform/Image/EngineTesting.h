#pragma once

#include "CIContext.h"
#include "CIImage.h"
#include "PixelRect.h"

#include <cstdint>
#include <vector>

/// What the tests of the whole engine share: a picture, a recipe with everything in it, a draw.
namespace orvane::EngineTesting {

/// An 8-bit photograph of sorts: smooth, with edges and noise. channels: 3 RGB, 4 RGBA.
CIImage photograph(int width, int height, int channels = 3);
/// Every kind of node in one recipe: pointwise runs, small and large blurs, two resamplings, moves.
CIImage everything(const CIImage& source);

PixelRect pixels(const CIImage& image);
/// The image's whole extent, rows from the top.
std::vector<uint8_t> drawn(const CIImage& image, const CIContext& context, PixelFormat format,
                           const DrawOptions& options = {});

} // namespace orvane::EngineTesting
