#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace orvane {

/// A three-dimensional colour table. Copies share the table, which never changes.
class LUT {
public:
    static constexpr int smallestDimension = 2;
    static constexpr int largestDimension = 64;

    /// From the text of a ".cube" file. 3D tables only; the domain lines are not read.
    /// Absent when the size is missing or outside 2..64, or the count of lines does not fit it.
    static std::optional<LUT> fromCube(std::string_view text);
    /// From dimension^3 triples, red fastest. Absent when the dimension is outside 2..64 or the
    /// count does not fit it.
    static std::optional<LUT> fromRGB(int dimension, std::span<const float> rgb);

    /// The edge of the cube, 2..64.
    int dimension() const { return m_dimension; }
    /// dimension^3 entries of red, green, blue and an alpha of 1; red varies fastest, then green.
    /// The colours are not clamped.
    const std::vector<float>& rgba() const { return *m_rgba; }
    /// The bytes of rgba(), as colour cubes are handed to the filter and kept.
    std::span<const std::byte> cubeData() const { return std::as_bytes(std::span(*m_rgba)); }

    bool operator==(const LUT& other) const;

private:
    LUT(int dimension, std::vector<float> rgba);

    int m_dimension;
    std::shared_ptr<const std::vector<float>> m_rgba;
};

} // namespace orvane
