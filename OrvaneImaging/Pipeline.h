#pragma once

#include "Adjustments.h"
#include "CIImage.h"

/// The grade: one image and one flat record give the graded image. Geometry comes before it, text
/// after it.
namespace orvane::Pipeline {

/// Builds the recipe; draws nothing and never fails. The extent is the input's, whatever the stages
/// did. A record at its defaults gives the image itself.
CIImage render(const CIImage& image, const Adjustments& adjustments);

/// radius in pixels, the sigma of the blur; a negative intensity softens.
CIImage unsharp(const CIImage& image, double radius, double intensity);

/// hue in degrees, saturation and lightness 0..1; the components are as encoded as the arguments.
CIColor hslToRgb(double hue, double saturation, double lightness);

} // namespace orvane::Pipeline
