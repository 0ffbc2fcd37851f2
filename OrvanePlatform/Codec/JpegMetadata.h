#pragma once

#include "DecoderSupport.h"

namespace orvane {

/// The profile and the metadata blocks out of a JPEG's markers ahead of its first scan: Exif and
/// the main XMP packet (APP1), the ICC profile in its chunks (APP2), IPTC out of Photoshop's
/// resources (APP13).
void readJpegMetadata(Bytes jpeg, DecoderOutput& output);

/// The IPTC records (resource 0x0404) out of a block of Photoshop image resources.
Bytes iptcInPhotoshopResources(Bytes resources);

} // namespace orvane
