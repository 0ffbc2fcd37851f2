#pragma once

#include <vector>

namespace orvane {

/// Gaussian weights integrated over each pixel, w(0) .. w(n), n = ceil(3 sigma); symmetric, and
/// w(0) + 2 (w(1) + .. + w(n)) = 1.
std::vector<double> gaussianWeights(double sigma);

/// From this sigma on a blur runs on a grid of cells, and its Gaussian fades out around 3 sigma.
constexpr double fadedFrom = 5.4;
/// The weights of a blur, of that form: gaussianWeights below fadedFrom. From there on the Gaussian
/// goes on beyond 3 sigma but falls smoothly from all of itself at 2.4 sigma to nothing at 3.7.
/// At the cut an 8-bit picture of white on black jumps by a few levels near black, and no grid
/// coarser than the pixels can put a jump in its place. A step blurred by both differs by less than
/// 4e-4 of its height, 3 sigma away from it.
std::vector<double> blurWeights(double sigma);

} // namespace orvane
