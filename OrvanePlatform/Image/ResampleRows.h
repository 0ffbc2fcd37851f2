#pragma once

#include "TilePlanes.h"

namespace orvane {

// The rows of resamplings with fixed weights, in the instruction set of the machine. Pixels are
// interleaved, four floats each, between the two halves of a Lanczos resampling: so a pixel's
// channels go through each tap together. Terms are summed in one order wherever a tile begins.

/// Whole groups of taps are summed: weights of each output are padded with zeros to a multiple.
inline constexpr int tapGroup = 4;
/// Pixels past the end that the down half may write.
inline constexpr int pixelPadding = 2 * rowPadding;

/// The down half. planes: the first of `rows` rows of each channel, `stride` apart; planes[3] may
/// be null, which counts as 0. `count` pixels go to `pixels`, then tapGroup pixels of zeros.
void sumRowsToPixels(const float* const planes[4], std::ptrdiff_t stride, const float* weights,
                     int rows, float* pixels, int count);

/// The taps of a run of outputs.
struct TapRun {
    const int* first; ///< by output: the pixel of its first tap
    const float* weights; ///< by output: `width` of them
    int width; ///< a multiple of tapGroup
    int origin; ///< the pixel of column 0
};
/// The across half: out[x] = sum of weights[k] of pixel first + k. `to` gets `count` pixels and up
/// to rowPadding more; may not be `pixels`.
void sumPixels(const float* pixels, const TapRun& taps, int count, float* to);

/// Pixels to rows of planes; planes[3] may be null. Alpha is held to 0..1. Up to rowPadding pixels
/// past the end are read and written.
void planesFromPixels(const float* pixels, int count, float* const planes[4]);

/// to[i] = the mean of low[2 i], low[2 i + 1] and the same of high. Nothing past the end is
/// touched.
void averagePairs(const float* low, const float* high, float* to, int count);

} // namespace orvane
