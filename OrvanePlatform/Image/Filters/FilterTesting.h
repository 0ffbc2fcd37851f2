#pragma once

#include "CIImage.h"
#include "PixelRect.h"

#include <cstdint>
#include <vector>

/// What the tests of single operations share: small pictures of floats in, floats out. Samples are
/// premultiplied linear R G B A as the engine holds them; rows run upwards, so the first four
/// floats are pixel (0, 0).
namespace orvane::FilterTesting {

/// A picture over (0, 0, width, height) from width * height * 4 floats. It counts as having alpha
/// even where every alpha is 1. Reading divides by alpha and multiplies back: with an alpha that is
/// not a power of two a colour may move by one unit in its last place.
CIImage pixelsImage(int width, int height, const std::vector<float>& rgba);
/// The same from width * height * 3 floats and without alpha, so that the opaque form of a pixel
/// program runs. Exact.
CIImage opaqueImage(int width, int height, const std::vector<float>& rgb);

/// The pixels of `rect`, four floats each, by the plain evaluator and by the tiled one.
std::vector<float> reference(const CIImage& image, const PixelRect& rect);
std::vector<float> tiled(const CIImage& image, const PixelRect& rect);

/// `count` numbers evenly spread over low..high: the same for the same seed on every machine.
std::vector<float> randomFloats(size_t count, float low, float high, uint32_t seed = 1);

/// The largest |a - b| / max(1, |b|): absolute for values of a picture's own range, relative for
/// larger ones. Infinite when the lengths differ or a difference is not a number.
double largestDifference(const std::vector<float>& a, const std::vector<float>& b);

} // namespace orvane::FilterTesting
