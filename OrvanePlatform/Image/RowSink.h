#pragma once

#include "Result.h"

#include <cstdint>

namespace orvane {

/// What the rows of a finished picture hold. All but RGBAFloat are sRGB-encoded and clipped to
/// 0..1.
enum class PixelFormat {
    RGB8, ///< the picture over black
    RGB16, ///< the picture over black, native byte order
    RGBA8, ///< straight alpha
    RGBA16, ///< straight alpha, native byte order
    RGBA8Premultiplied,
    BGRX8, ///< blue, green, red, 255: the picture over black, as screens take it
    BGRA8Premultiplied, ///< blue, green, red, alpha: as screens take pictures with holes
    RGBAFloat, ///< the working values as they are: linear, premultiplied, unclipped
};

/// Bytes of one pixel.
int bytesPerPixel(PixelFormat format);

/// Takes finished rows, in order from the top of the picture.
class RowSink {
public:
    virtual ~RowSink() = default;
    virtual PixelFormat format() const = 0;
    /// `count` rows of the picture's whole width, `rowBytes` apart. Called from one thread at a
    /// time.
    virtual Result<void> writeRows(const uint8_t* rows, int count, size_t rowBytes) = 0;
};

} // namespace orvane
