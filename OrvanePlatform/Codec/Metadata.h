#pragma once

#include "ImageProperties.h"

namespace orvane {

/// The properties without any copy of the place a picture was taken at: the GPS records of Exif,
/// their XMP counterparts, and those of the camera maker's own notes. All else stays.
ImageProperties withoutLocation(const ImageProperties& properties);

/// The properties as a new file is to carry them: orientation 1, no old thumbnail, colour space
/// sRGB, and the pixel size given.
ImageProperties preparedForExport(const ImageProperties& properties, int width, int height);

} // namespace orvane
