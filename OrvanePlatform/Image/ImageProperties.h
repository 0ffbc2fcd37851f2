#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

/// The metadata that an image carries from its file to the files made of it, in the blocks that
/// every picture format stores. Empty blocks are absent ones. Orientation is already applied.
struct ImageProperties {
    /// A TIFF stream, beginning with "II*\0" or "MM\0*"; without the "Exif\0\0" of JPEG.
    std::vector<uint8_t> exif;
    /// An XMP packet, UTF-8.
    std::string xmp;
    /// IPTC-IIM records.
    std::vector<uint8_t> iptc;

    bool isEmpty() const { return exif.empty() && xmp.empty() && iptc.empty(); }
    bool operator==(const ImageProperties&) const = default;
};

} // namespace orvane
