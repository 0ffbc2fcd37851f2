#pragma once

#include "Filters/ColorTable.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

/// A three-dimensional colour table. Copies share the table, which never changes.
class LUT {
public:
    static constexpr int smallestDimension = ColorTable::smallestDimension;
    static constexpr int largestDimension = ColorTable::largestDimension;

    /// From the text of a ".cube" file. 3D tables only; the domain lines are not read.
    /// Absent when the size is missing or outside 2..64, or the count of lines does not fit it.
    static std::optional<LUT> fromCube(std::string_view text);
    /// From dimension^3 triples, red fastest. Absent when the dimension is outside 2..64 or the
    /// count does not fit it.
    static std::optional<LUT> fromRGB(int dimension, std::span<const float> rgb);

    /// The edge of the cube, 2..64.
    int dimension() const { return m_table.dimension(); }
    /// dimension^3 entries of red, green, blue and an alpha of 1; red varies fastest, then green.
    /// The colours are not clamped.
    const std::vector<float>& rgba() const { return *m_table.rgba(); }
    /// The bytes of rgba(), as colour cubes are handed to the filter and kept.
    std::span<const std::byte> cubeData() const { return std::as_bytes(std::span(rgba())); }
    /// The same entries as the filter takes them, digested.
    const ColorTable& table() const { return m_table; }

    bool operator==(const LUT& other) const;

private:
    explicit LUT(ColorTable table)
        : m_table(std::move(table))
    {
    }
    static std::optional<LUT> fromRGBA(int dimension, std::vector<float> rgba);

    ColorTable m_table;
};

} // namespace orvane
