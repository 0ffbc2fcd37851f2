#pragma once

#include "RowSink.h"
#include "TilePlanes.h"

#include <cstdint>

namespace orvane {

/// count floats from and to the 16 bits of CompactFloat-inl.h, to nearest. Buffers are read and
/// written up to rowPadding elements past the end. `next`: as many compact floats that will be read
/// or written soon and may still be far away in memory.
void compactFromFloats(const float* from, uint16_t* to, int count, const void* next);
void floatsFromCompact(const uint16_t* from, float* to, int count, const void* next);

/// The working values of `count` pixels as an output row: encoded, clipped and rounded to nearest
/// as the format asks; NaN becomes 0. planes[3] may be null. Writes exactly count pixels.
void narrowRow(const float* const planes[4], int count, PixelFormat format, uint8_t* to);

/// rgb' = m rgb on three rows, m row-major.
void applyMatrix(const float* m, float* const rgb[3], int count);
/// rgb' = rgb * a.
void premultiply(float* const rgb[3], const float* alpha, int count);

} // namespace orvane
