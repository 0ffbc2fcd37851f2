#pragma once

#include "Adjustments.h"
#include "CIImage.h"

/// The per-pixel operations that are this editor's own. Values are linear light, premultiplied;
/// amounts are slider values divided by 100, so -1..1 is the full range. Extents stay.
namespace orvane::Kernels {

/// Contrast about mid-grey in a gamma space; the result is held to 0..1.
CIImage contrast(const CIImage& image, double cf);

/// One push for all three channels, strong near white and near black; held to 0..1.
CIImage whitesBlacks(const CIImage& image, double whites, double blacks);

/// Orange against blue, apart for shadows and highlights; held to 0..1.
CIImage splitTone(const CIImage& image, double shadow, double highlight);

/// Noise that depends on the pixel's position alone, strongest in the mid-tones; held to 0..1.
CIImage grain(const CIImage& image, double amp);

/// Hue (30 degrees at most), saturation and luminance by eight bands of hue.
CIImage colorMixer(const CIImage& image, const Adjustments::Bands& hue,
                   const Adjustments::Bands& sat, const Adjustments::Bands& lum);

/// Radial distortion and lateral colour fringe about the middle. An infinite image comes back as it
/// is.
CIImage lens(const CIImage& image, double distortion, double fringe);

/// The sharpened image where the original differs from the blurred one by more than the threshold,
/// in linear luminance; the original elsewhere.
CIImage maskedSharpen(const CIImage& original, const CIImage& sharpened, const CIImage& blurred,
                      double threshold);

} // namespace orvane::Kernels
