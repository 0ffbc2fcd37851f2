#pragma once

#include "DecoderSupport.h"

namespace orvane {

/// What decoding needs to know from an Exif block.
struct ExifSummary {
    int orientation = 1; ///< 1..8
    bool isAdobeRgb = false; ///< ColorSpace 2, or interoperability "R03"
};

/// Reads the summary of a TIFF stream and sets its orientation to 1 in place. Broken tags are
/// passed over; a block that is no TIFF stream gives the defaults.
ExifSummary takeOrientation(std::span<uint8_t> tiff);

/// The same for `tiff:Orientation` in an XMP packet: 1 in place.
void neutralizeOrientation(std::string& xmp);

/// The metadata of a TIFF or RAW file as a TIFF stream of its own, without what describes the
/// pixels. Empty when there is none or it cannot be read.
std::vector<uint8_t> exifFromTiffFile(Bytes file);

/// The first TIFF stream in the bytes: some writers put "Exif\0\0" ahead of it.
Bytes withoutExifPrefix(Bytes block);

} // namespace orvane
