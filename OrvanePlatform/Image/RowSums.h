#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orvane {

// Weighted sums of whole rows of floats, in the instruction set of the machine. Rows are read and
// written up to rowPadding elements past what is asked for, those that double or halve up to twice
// that. A sum's terms come in one order whatever the row's length, so a pixel's value never
// depends on where its tile begins.

/// out[x] = sum of weights[|k|] in[x + k] for |k| <= reach. `in` and `out` must differ.
void convolveAcross(const float* in, float* out, int count, const float* weights, int reach);
/// Rows of floats, `stride` apart.
struct RowBlock {
    float* first = nullptr;
    std::ptrdiff_t stride = 0;
};
/// `rows` rows of out[x] = sum of weights[|k|] of the rows k strides away; `in` begins at the row
/// that the first of `out` lies over.
void convolveDown(const RowBlock& in, const RowBlock& out, int count, int rows,
                  const float* weights, int reach);
/// out = (1 3 3 1) / 8 of four rows.
void halveDown(const std::array<const float*, 4>& rows, float* out, int count);
/// The same of the lower four of six rows, floats or compact ones, into `low`, and of the upper
/// four into `high`. `next`: rows that will be read soon.
void halvePairDown(const std::array<const float*, 6>& rows, const std::array<const float*, 4>& next,
                   float* low, float* high, int count);
void halvePairDown(const std::array<const uint16_t*, 6>& rows,
                   const std::array<const uint16_t*, 4>& next, float* low, float* high, int count);
/// out[i] = (1 3 3 1) / 8 of in[2 i] .. in[2 i + 3].
void halveAcross(const float* in, float* out, int count);
/// A row, its two neighbours above one another, and one row beyond these; or a weight of each.
template <class T> struct FourRows {
    T below;
    T middle;
    T above;
    T outer;
};
/// out = the middle row, less what the weights of the others take from it; its own weight is not
/// read. Rows that are alike stay so to the bit.
void blendRows(const FourRows<const float*>& rows, const FourRows<float>& weights, float* out,
               int count);
/// out[2 i] = 3/4 in[i] + 1/4 in[i - 1], out[2 i + 1] = 3/4 in[i] + 1/4 in[i + 1], for i below
/// count.
void doubleAcross(const float* in, float* out, int count);
/// The same with the filter (1 5 10 10 5 1) / 16: out[2 i] = (5 in[i - 1] + 10 in[i] + in[i + 1])
/// / 16, out[2 i + 1] = (in[i - 1] + 10 in[i] + 5 in[i + 1]) / 16.
void doubleAcrossWide(const float* in, float* out, int count);

/// out[i] = in[-i].
void reverseAcross(const float* in, float* out, int count);

} // namespace orvane
