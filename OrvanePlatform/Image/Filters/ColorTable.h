#pragma once

#include "CIImage.h"

#include <memory>
#include <optional>
#include <vector>

namespace orvane {

/// The entries of a colour cube with their digest, made once: recipes that share a table cost no
/// more than a node. Copies share the entries, which never change.
class ColorTable {
public:
    static constexpr int smallestDimension = 2;
    static constexpr int largestDimension = 64;

    /// dimension^3 entries of red, green, blue and alpha, red fastest; sRGB-encoded, not clamped.
    /// Absent unless the dimension is 2..64 and the count fits it.
    static std::optional<ColorTable> make(int dimension, std::vector<float> rgba);

    int dimension() const { return m_dimension; }
    const std::shared_ptr<const std::vector<float>>& rgba() const { return m_rgba; }
    /// Of the entries.
    const Digest& digest() const { return m_digest; }

private:
    ColorTable(int dimension, std::vector<float> rgba);

    int m_dimension;
    Digest m_digest;
    std::shared_ptr<const std::vector<float>> m_rgba;
};

namespace CIFilter {

/// The cube over the clamped sRGB-encoded colour; trilinear.
CIImage colorCubeWithColorSpace(const CIImage& input, const ColorTable& table);

} // namespace CIFilter

} // namespace orvane
