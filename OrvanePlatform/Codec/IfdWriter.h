#pragma once

#include "PictureEncoder.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace orvane {

/// One tag of a TIFF directory; the value little-endian.
struct IfdEntry {
    uint16_t tag = 0;
    uint16_t type = 0; ///< as TIFF 6.0 numbers them; above 13 is not TIFF
    uint64_t count = 0;
    std::vector<uint8_t> value;
};

enum class TiffKind { Classic, Big };

/// Appends a directory with its values to the sink, little-endian, linked to nothing; the sink
/// stands at its end afterwards. The offset of the directory, or absent when the sink refused.
std::optional<uint64_t> appendIfd(ByteSink& sink, std::vector<IfdEntry> entries, TiffKind kind);

} // namespace orvane
