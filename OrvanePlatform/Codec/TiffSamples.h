#pragma once

#include "Bitmap.h"

#include <cstdint>
#include <vector>

namespace orvane {

/// How a TIFF file stores a pixel, and what becomes of its samples.
struct TiffLayout {
    int width = 0;
    int height = 0;
    int bits = 8; ///< of each sample: 1..16, 32; 16, 32, 64 for floats
    bool isFloat = false;
    int samples = 1; ///< a pixel, in the file
    bool isPlanar = false; ///< one plane for each sample
    bool isInverted = false; ///< 0 is white
    int lab = 0; ///< 0, or the photometric value of a Lab picture: 8 signed, 9 offset
    int colors = 1; ///< 1 grey, 3 RGB or Lab, 4 CMYK
    int alphaSample = -1; ///< which of the file's samples is alpha
    /// Palette of 3 * 2^bits 16-bit values: reds, greens, blues. Empty otherwise.
    std::vector<uint16_t> palette;

    int outputChannels() const { return (palette.empty() ? colors : 3) + (alphaSample >= 0); }
    SampleType outputType() const;
    /// Rows lie in the file just as they do in the bitmap.
    bool isPlainCopy() const;
    /// Bytes of `pixels` pixels in the file, in one plane when there are several.
    size_t rowBytes(int pixels) const;
};

/// One stretch of a row into the bitmap. `plane` is the sample that a planar file's bytes hold.
void placeTiffSamples(const TiffLayout& layout, const uint8_t* source, Bitmap& bitmap, int x, int y,
                      int count, int plane);

} // namespace orvane
