#include "BlurWeights.h"

#include <cmath>

namespace orvane {

std::vector<double> gaussianWeights(double sigma)
{
    const auto phi = [](double x) { return 0.5 * (1 + std::erf(x / std::sqrt(2.0))); };
    const int n = int(std::ceil(3 * sigma));
    std::vector<double> weights(size_t(n) + 1);
    double sum = 0;
    for (int i = 0; i <= n; ++i) {
        weights[size_t(i)] = phi((i + 0.5) / sigma) - phi((i - 0.5) / sigma);
        sum += (i == 0 ? 1 : 2) * weights[size_t(i)];
    }
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

} // namespace orvane
