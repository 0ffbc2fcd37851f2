#include "BlurWeights.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr double cut = 3;
constexpr double fadeStart = 2.5;
constexpr double fadeEnd = 3.8;

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
    return weightsUpTo(int(std::ceil(fadeEnd * sigma)), sigma, [&](int i) {
        const double t = std::clamp((i / sigma - fadeStart) / (fadeEnd - fadeStart), 0.0, 1.0);
        return 1 - t * t * t * (t * (6 * t - 15) + 10);
    });
}

} // namespace orvane
