#include "RowSums.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "RowSums.cpp"
#include <hwy/foreach_target.h>

#include "CompactFloat-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// `Blocks` vectors at a time share each weight's load; their sums do not wait for each other.
template <int Blocks>
HWY_INLINE void convolveBlocks(const float* in, std::ptrdiff_t step, float* out,
                               const float* weights, int reach)
{
    const std::ptrdiff_t n = std::ptrdiff_t(Lanes::count());
    Lanes a(0.0f);
    Lanes b(0.0f);
    Lanes c(0.0f);
    Lanes d(0.0f);
    const float* low = in - reach * step;
    const float* high = in + reach * step;
    for (int k = reach; k > 0; --k, low += step, high -= step) {
        const Lanes weight(weights[k]);
        a = mulAdd(Lanes::load(low) + Lanes::load(high), weight, a);
        if constexpr (Blocks > 1)
            b = mulAdd(Lanes::load(low + n) + Lanes::load(high + n), weight, b);
        if constexpr (Blocks > 2)
            c = mulAdd(Lanes::load(low + 2 * n) + Lanes::load(high + 2 * n), weight, c);
        if constexpr (Blocks > 3)
            d = mulAdd(Lanes::load(low + 3 * n) + Lanes::load(high + 3 * n), weight, d);
    }
    const Lanes middle(weights[0]);
    mulAdd(Lanes::load(in), middle, a).store(out);
    if constexpr (Blocks > 1)
        mulAdd(Lanes::load(in + n), middle, b).store(out + n);
    if constexpr (Blocks > 2)
        mulAdd(Lanes::load(in + 2 * n), middle, c).store(out + 2 * n);
    if constexpr (Blocks > 3)
        mulAdd(Lanes::load(in + 3 * n), middle, d).store(out + 3 * n);
}

HWY_INLINE void convolveRow(const float* in, std::ptrdiff_t step, float* out, int count,
                            const float* weights, int reach)
{
    const int n = int(Lanes::count());
    int i = 0;
    for (; i + 3 * n < count; i += 4 * n)
        convolveBlocks<4>(in + i, step, out + i, weights, reach);
    for (; i + n < count; i += 2 * n)
        convolveBlocks<2>(in + i, step, out + i, weights, reach);
    if (i < count)
        convolveBlocks<1>(in + i, step, out + i, weights, reach);
}

void convolveAcrossRun(const float* in, float* out, int count, const float* weights, int reach)
{
    convolveRow(in, 1, out, count, weights, reach);
}

// Column by column of a few vectors: the rows above and below a pixel then stay in the first-level
// cache while the next row is summed, which for whole rows of a tile they would not.
void convolveDownRun(const RowBlock& in, const RowBlock& out, int count, int rows,
                     const float* weights, int reach)
{
    const int strip = 4 * int(Lanes::count());
    for (int x = 0; x < count; x += strip) {
        for (int y = 0; y < rows; ++y)
            convolveRow(in.first + y * in.stride + x, in.stride, out.first + y * out.stride + x,
                        std::min(strip, count - x), weights, reach);
    }
}

HWY_INLINE Lanes halved(Lanes a, Lanes b, Lanes c, Lanes d)
{
    return mulAdd(b + c, Lanes(0.375f), (a + d) * Lanes(0.125f));
}

HWY_INLINE Lanes samples(const float* from)
{
    return Lanes::load(from);
}
HWY_INLINE Lanes samples(const uint16_t* from)
{
    return loadCompact(from);
}

void halveDownRun(const std::array<const float*, 4>& rows, float* out, int count)
{
    for (int i = 0; i < count; i += int(Lanes::count()))
        halved(samples(rows[0] + i), samples(rows[1] + i), samples(rows[2] + i),
               samples(rows[3] + i))
            .store(out + i);
}

/// Two rows at once: the two that both are made of are turned into floats but once.
template <class Sample>
HWY_INLINE void halveRowPairDown(const std::array<const Sample*, 6>& rows,
                                 const std::array<const Sample*, 4>& next, float* low, float* high,
                                 int count)
{
    constexpr int line = int(64 / sizeof(Sample));
    for (int i = 0; i < count; i += int(Lanes::count())) {
        if (i % line == 0) {
            for (const Sample* row : next)
                __builtin_prefetch(row + i);
        }
        const Lanes middle = samples(rows[2] + i);
        const Lanes above = samples(rows[3] + i);
        halved(samples(rows[0] + i), samples(rows[1] + i), middle, above).store(low + i);
        halved(middle, above, samples(rows[4] + i), samples(rows[5] + i)).store(high + i);
    }
}

void halveFloatPairDownRun(const std::array<const float*, 6>& rows,
                           const std::array<const float*, 4>& next, float* low, float* high,
                           int count)
{
    halveRowPairDown(rows, next, low, high, count);
}

void halveCompactPairDownRun(const std::array<const uint16_t*, 6>& rows,
                             const std::array<const uint16_t*, 4>& next, float* low, float* high,
                             int count)
{
    halveRowPairDown(rows, next, low, high, count);
}

void halveAcrossRun(const float* in, float* out, int count)
{
    const FloatTag tag;
    for (int i = 0; i < count; i += int(Lanes::count())) {
        FloatVector a;
        FloatVector b;
        FloatVector c;
        FloatVector d;
        hn::LoadInterleaved2(tag, in + 2 * i, a, b);
        hn::LoadInterleaved2(tag, in + 2 * i + 2, c, d);
        halved(a, b, c, d).store(out + i);
    }
}

HWY_INLINE Lanes doubled(Lanes near, Lanes far)
{
    return mulAdd(near, Lanes(0.75f), far * Lanes(0.25f));
}

HWY_INLINE Lanes doubledWide(Lanes near, Lanes far, Lanes farther)
{
    return mulAdd(near, Lanes(0.625f), mulAdd(far, Lanes(0.3125f), farther * Lanes(0.0625f)));
}

void blendRowsRun(const FourRows<const float*>& rows, const FourRows<float>& weights, float* out,
                  int count)
{
    const Lanes low(weights.below);
    const Lanes high(weights.above);
    const Lanes outer(weights.outer);
    const bool four = weights.outer != 0;
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Lanes middle = Lanes::load(rows.middle + i);
        Lanes sum = mulAdd(Lanes::load(rows.above + i) - middle, high, middle);
        if (four)
            sum = mulAdd(Lanes::load(rows.outer + i) - middle, outer, sum);
        mulAdd(Lanes::load(rows.below + i) - middle, low, sum).store(out + i);
    }
}

/// a0 b0 a1 b1 ...
HWY_INLINE void storeAlternating(Lanes a, Lanes b, float* out)
{
#if HWY_TARGET == HWY_AVX3
    // Two shuffles, where the general form takes six.
    alignas(64) static constexpr int32_t low[] = {0, 16, 1, 17, 2, 18, 3, 19,
                                                  4, 20, 5, 21, 6, 22, 7, 23};
    const __m512i first = _mm512_load_si512(low);
    const __m512i second = _mm512_add_epi32(first, _mm512_set1_epi32(8));
    _mm512_storeu_ps(out, _mm512_permutex2var_ps(a.v.raw, first, b.v.raw));
    _mm512_storeu_ps(out + 16, _mm512_permutex2var_ps(a.v.raw, second, b.v.raw));
#else
    hn::StoreInterleaved2(a.v, b.v, FloatTag(), out);
#endif
}

void doubleAcrossRun(const float* in, float* out, int count)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Lanes cell = Lanes::load(in + i);
        storeAlternating(doubled(cell, Lanes::load(in + i - 1)),
                         doubled(cell, Lanes::load(in + i + 1)), out + 2 * i);
    }
}

void doubleAcrossWideRun(const float* in, float* out, int count)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Lanes left = Lanes::load(in + i - 1);
        const Lanes cell = Lanes::load(in + i);
        const Lanes right = Lanes::load(in + i + 1);
        storeAlternating(doubledWide(cell, left, right), doubledWide(cell, right, left),
                         out + 2 * i);
    }
}

void reverseAcrossRun(const float* in, float* out, int count)
{
    const int n = int(Lanes::count());
    int i = 0;
    for (; i + n <= count; i += n)
        Lanes(hn::Reverse(FloatTag(), Lanes::load(in - i - n + 1).v)).store(out + i);
    for (; i < count; ++i) // what lies before a row's beginning is not to be read
        out[i] = in[-i];
}

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace orvane {

HWY_EXPORT(convolveAcrossRun);
HWY_EXPORT(convolveDownRun);
HWY_EXPORT(halveDownRun);
HWY_EXPORT(halveFloatPairDownRun);
HWY_EXPORT(halveCompactPairDownRun);
HWY_EXPORT(halveAcrossRun);
HWY_EXPORT(blendRowsRun);
HWY_EXPORT(doubleAcrossRun);
HWY_EXPORT(doubleAcrossWideRun);
HWY_EXPORT(reverseAcrossRun);

void convolveAcross(const float* in, float* out, int count, const float* weights, int reach)
{
    HWY_DYNAMIC_DISPATCH(convolveAcrossRun)(in, out, count, weights, reach);
}

void convolveDown(const RowBlock& in, const RowBlock& out, int count, int rows,
                  const float* weights, int reach)
{
    HWY_DYNAMIC_DISPATCH(convolveDownRun)(in, out, count, rows, weights, reach);
}

void halveDown(const std::array<const float*, 4>& rows, float* out, int count)
{
    HWY_DYNAMIC_DISPATCH(halveDownRun)(rows, out, count);
}

void halvePairDown(const std::array<const float*, 6>& rows, const std::array<const float*, 4>& next,
                   float* low, float* high, int count)
{
    HWY_DYNAMIC_DISPATCH(halveFloatPairDownRun)(rows, next, low, high, count);
}

void halvePairDown(const std::array<const uint16_t*, 6>& rows,
                   const std::array<const uint16_t*, 4>& next, float* low, float* high, int count)
{
    HWY_DYNAMIC_DISPATCH(halveCompactPairDownRun)(rows, next, low, high, count);
}

void halveAcross(const float* in, float* out, int count)
{
    HWY_DYNAMIC_DISPATCH(halveAcrossRun)(in, out, count);
}

void blendRows(const FourRows<const float*>& rows, const FourRows<float>& weights, float* out,
               int count)
{
    HWY_DYNAMIC_DISPATCH(blendRowsRun)(rows, weights, out, count);
}

void doubleAcross(const float* in, float* out, int count)
{
    HWY_DYNAMIC_DISPATCH(doubleAcrossRun)(in, out, count);
}

void doubleAcrossWide(const float* in, float* out, int count)
{
    HWY_DYNAMIC_DISPATCH(doubleAcrossWideRun)(in, out, count);
}

void reverseAcross(const float* in, float* out, int count)
{
    HWY_DYNAMIC_DISPATCH(reverseAcrossRun)(in, out, count);
}

} // namespace orvane

#endif
