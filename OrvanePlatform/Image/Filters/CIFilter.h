#pragma once

#include "CIImage.h"

#include <array>
#include <optional>
#include <span>

/// The builtin operations. Each takes images and numbers and returns a recipe; at its neutral
/// setting it returns its input itself. Numbers are narrowed to 32-bit floats when they are set.
/// Nothing is clamped unless the comment says so.
namespace orvane::CIFilter {

// ---- Tone and colour: one input, pixel by pixel, the input's extent ----

/// rgb * 2^ev.
CIImage exposureAdjust(const CIImage& input, double ev);

/// A point of white: kelvin, and tint on a scale where positive is greener.
struct WhitePoint {
    double kelvin = 6500;
    double tint = 0;
};
/// What is white under `neutral` becomes white under `target`. A target below the neutral's kelvin
/// warms; a positive tint is greener.
CIImage temperatureAndTint(const CIImage& input, WhitePoint neutral, WhitePoint target);

/// highlightAmount 0..2 (1 neutral), shadowAmount -1..1 (0 neutral); both are clamped to that.
CIImage highlightShadowAdjust(const CIImage& input, double highlightAmount, double shadowAmount);

struct ColorControls {
    double saturation = 1;
    double brightness = 0;
    double contrast = 1;
};
CIImage colorControls(const CIImage& input, const ColorControls& controls);

CIImage vibrance(const CIImage& input, double amount);

/// Rows over (r, g, b, a) of the straight colour, then the bias.
struct ColorMatrix {
    std::array<double, 4> red{1, 0, 0, 0};
    std::array<double, 4> green{0, 1, 0, 0};
    std::array<double, 4> blue{0, 0, 1, 0};
    std::array<double, 4> alpha{0, 0, 0, 1};
    std::array<double, 4> bias{0, 0, 0, 0};
};
CIImage colorMatrix(const CIImage& input, const ColorMatrix& matrix);

/// Each straight channel, alpha too, held to low..high.
CIImage colorClamp(const CIImage& input, double low = 0, double high = 1);

/// max(c, 0)^power.
CIImage gammaAdjust(const CIImage& input, double power);

/// Tables over the sRGB-encoded value: n >= 2 triples r, g, b for the domain (low, high).
/// Absent when there are fewer than two triples, or high <= low. An identity table gives the input.
std::optional<CIImage> colorCurves(const CIImage& input, std::span<const float> triples,
                                   double low = 0, double high = 1);

/// A cube of dimension^3 RGBA entries, red fastest, over the clamped sRGB-encoded colour;
/// trilinear. Absent unless the dimension is 2..64 and the table has dimension^3 * 4 floats.
std::optional<CIImage> colorCubeWithColorSpace(const CIImage& input, int dimension,
                                               std::span<const float> rgba);

/// Luma of 0..1 to a ramp from color0 to color1.
CIImage falseColor(const CIImage& input, const CIColor& color0, const CIColor& color1);

/// Positive intensity darkens beyond the radius, negative lightens. Intensity -1..1, falloff 0..1.
CIImage vignetteEffect(const CIImage& input, CGPoint center, double radius, double intensity,
                       double falloff);

// ---- Several images, pixel by pixel: the union of the extents ----

/// time 0 is the input, 1 the target; clamped between.
CIImage dissolveTransition(const CIImage& input, const CIImage& target, double time);
CIImage screenBlendMode(const CIImage& input, const CIImage& background);
CIImage maximumCompositing(const CIImage& input, const CIImage& background);
/// The plain sum of all four stored channels, alpha included.
CIImage additionCompositing(const CIImage& input, const CIImage& background);
CIImage sourceOverCompositing(const CIImage& input, const CIImage& background);
/// The input where the mask is white, the background where it is black or the input is empty.
CIImage blendWithMask(const CIImage& input, const CIImage& background, const CIImage& mask);

// ---- Without an input: infinite ----

CIImage linearGradient(CGPoint point0, const CIColor& color0, CGPoint point1,
                       const CIColor& color1);
CIImage radialGradient(CGPoint center, double radius0, const CIColor& color0, double radius1,
                       const CIColor& color1);

// ---- Neighbourhoods; radii are the sigma of a Gaussian, in pixels ----

/// The extent grows by ceil(3 radius).
CIImage gaussianBlur(const CIImage& input, double radius);
CIImage unsharpMask(const CIImage& input, double radius, double intensity);
CIImage noiseReduction(const CIImage& input, double noiseLevel, double sharpness = 0.4);
CIImage bloom(const CIImage& input, double radius, double intensity);
/// Sigma is radius times the mask's luma at the pixel.
CIImage maskedVariableBlur(const CIImage& input, const CIImage& mask, double radius);

// ---- Resampling ----

struct Corners {
    CGPoint topLeft;
    CGPoint topRight;
    CGPoint bottomRight;
    CGPoint bottomLeft;
};
/// The corners of the input's extent go to the four points.
CIImage perspectiveTransform(const CIImage& input, const Corners& corners);
CIImage lanczosScaleTransform(const CIImage& input, double scale, double aspectRatio = 1);

// ---- Reading ----

/// count x 1 pixels: the share of the rectangle's pixels in each bin of each straight linear
/// channel, times scale. Data, not colour: read it as RGBAFloat.
CIImage areaHistogram(const CIImage& input, const CGRect& rect, int count, double scale = 1);

} // namespace orvane::CIFilter
