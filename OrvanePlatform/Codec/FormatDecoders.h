#pragma once

#include "DecoderSupport.h"

namespace orvane {

/// One function for each format, in the file of its name. `bytes` begin as the format asks.
/// They may throw std::bad_alloc and nothing else.
Result<DecoderOutput> decodeJpeg(Bytes bytes);
Result<DecoderOutput> decodePng(Bytes bytes);
Result<DecoderOutput> decodeTiff(Bytes bytes);
Result<DecoderOutput> decodeHeif(Bytes bytes); ///< AVIF too
Result<DecoderOutput> decodeWebP(Bytes bytes);
Result<DecoderOutput> decodeRaw(Bytes bytes);

/// Whether a TIFF stream holds the mosaic of a camera's sensor rather than a finished picture.
bool holdsMosaic(Bytes tiff);

} // namespace orvane
