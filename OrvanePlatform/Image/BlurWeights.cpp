#include "BlurWeights.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr double cut = 3;
/// In sigmas: how far the fade goes to either side of its middle, and how far beyond the cut that
/// is, which keeps the sum of what is taken and given even.
constexpr double fade = 0.65;
constexpr double beyond = 0.05;

/// w(0) .. w(n) as the Gaussian over each pixel times factor(i), their sum made 1.
template <class Factor> std::vector<double> weightsUpTo(int n, double sigma, Factor&& factor)
{
    const auto phi = [](double x) { return 0.5 * (1 + std::erf(x / std::sqrt(2.0))); };
    std::vector<double> weights(size_t(n) + 1);
    double sum = 0;
    for (int i = 0; i <= n; ++i) {
        weights[size_t(i)] = factor(i) * (phi((i + 0.5) / sigma) - phi((i - 0.5) / sigma));
        sum += (i == 0 ? 1 : 2) * weights[size_t(i)];
    }
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

} // namespace

std::vector<double> gaussianWeights(double sigma)
{
    return weightsUpTo(int(std::ceil(cut * sigma)), sigma, [](int) { return 1.0; });
}

std::vector<double> blurWeights(double sigma)
{
    if (sigma < fadedFrom)
        return gaussianWeights(sigma);
    // A weight stands for a whole pixel.
    const double middle = std::ceil(cut * sigma) + 0.5 + beyond * sigma;
    return weightsUpTo(int(std::ceil(middle + fade * sigma)), sigma, [&](int i) {
        const double t = std::clamp(((i - middle) / sigma + fade) / (2 * fade), 0.0, 1.0);
        return 1 - t * t * t * (t * (6 * t - 15) + 10);
    });
}

} // namespace orvane
