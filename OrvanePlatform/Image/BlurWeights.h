#pragma once

#include <vector>

namespace orvane {

/// Gaussian weights integrated over each pixel, w(0) .. w(n), n = ceil(3 sigma); symmetric, and
/// w(0) + 2 (w(1) + .. + w(n)) = 1.
std::vector<double> gaussianWeights(double sigma);

} // namespace orvane
