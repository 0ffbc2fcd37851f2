#include "ResampleRows.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ResampleRows.cpp"
#include <hwy/foreach_target.h>

#include "Lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// Two vectors of pixels at a time: six or eight sums that do not wait for each other.
template <int Channels>
HWY_INLINE void sumRowsOf(const float* const planes[4], std::ptrdiff_t stride, const float* weights,
                          int rows, float* pixels, int count)
{
    const int n = int(Lanes::count());
    for (int i = 0; i < count; i += 2 * n) {
        // The second vector may lie past the row's padding; then it is the first once more.
        const int second = i + n < count ? n : 0;
        Lanes near[4] = {Lanes(0.0f), Lanes(0.0f), Lanes(0.0f), Lanes(0.0f)};
        Lanes far[4] = {Lanes(0.0f), Lanes(0.0f), Lanes(0.0f), Lanes(0.0f)};
        std::ptrdiff_t at = i;
        for (int k = 0; k < rows; ++k, at += stride) {
            const Lanes weight(weights[k]);
            for (int c = 0; c < Channels; ++c) {
                near[c] = mulAdd(Lanes::load(planes[c] + at), weight, near[c]);
                far[c] = mulAdd(Lanes::load(planes[c] + at + second), weight, far[c]);
            }
        }
        const FloatTag tag;
        hn::StoreInterleaved4(near[0].v, near[1].v, near[2].v, near[3].v, tag, pixels + 4 * i);
        hn::StoreInterleaved4(far[0].v, far[1].v, far[2].v, far[3].v, tag,
                              pixels + 4 * (i + second));
    }
}

void sumRowsRun(const float* const planes[4], std::ptrdiff_t stride, const float* weights, int rows,
                float* pixels, int count)
{
    if (planes[3])
        sumRowsOf<4>(planes, stride, weights, rows, pixels, count);
    else
        sumRowsOf<3>(planes, stride, weights, rows, pixels, count);
}

#if HWY_TARGET == HWY_SCALAR
void sumPixelsRun(const float* pixels, const TapRun& taps, int count, float* to)
{
    const float* weights = taps.weights;
    for (int x = 0; x < count; ++x, weights += taps.width, to += 4) {
        const float* source = pixels + 4 * (taps.first[x] - taps.origin);
        std::fill_n(to, 4, 0.0f);
        for (int k = 0; k < 4 * taps.width; ++k)
            to[k % 4] += source[k] * weights[k / 4];
    }
}
#else
using PixelTag = hn::FixedTag<float, 4>;
/// As many taps at once as a vector holds pixels, but whole groups alone.
using TapTag = hn::CappedTag<float, 4 * tapGroup>;

HWY_INLINE hn::Vec<PixelTag> sumOfPixels(PixelTag, hn::Vec<PixelTag> sum)
{
    return sum;
}
#if HWY_MAX_BYTES > 16
template <class Tag> HWY_INLINE hn::Vec<PixelTag> sumOfPixels(Tag tag, hn::Vec<Tag> sum)
{
    const hn::Half<Tag> half;
    return sumOfPixels(half, hn::Add(hn::LowerHalf(half, sum), hn::UpperHalf(half, sum)));
}
#endif

void sumPixelsRun(const float* pixels, const TapRun& taps, int count, float* to)
{
    const TapTag tag;
    const hn::Repartition<uint8_t, TapTag> bytes;
    // Block p of a vector holds pixel p: its four channels get the p-th of as many weights.
    constexpr int perVector = int(hn::MaxLanes(tag)) / 4;
    alignas(64) uint8_t chosen[size_t(perVector) * 16];
    for (int i = 0; i < perVector * 16; ++i)
        chosen[i] = uint8_t(i / 16 * 4 + i % 4);
    const auto spread = hn::Load(bytes, chosen);
    const float* weights = taps.weights;
    for (int x = 0; x < count; ++x, weights += taps.width) {
        const float* source = pixels + 4 * (taps.first[x] - taps.origin);
        auto sum = hn::Zero(tag);
        for (int k = 0; k < taps.width; k += perVector) {
            const auto four = hn::BitCast(bytes, hn::LoadDup128(tag, weights + k));
            const auto weight = hn::BitCast(tag, hn::TableLookupBytes(four, spread));
            sum = hn::MulAdd(hn::LoadU(tag, source + 4 * k), weight, sum);
        }
        hn::StoreU(sumOfPixels(tag, sum), PixelTag(), to + 4 * x);
    }
}

#endif

void planesRun(const float* pixels, int count, float* const planes[4])
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        Lanes r;
        Lanes g;
        Lanes b;
        Lanes a;
        hn::LoadInterleaved4(FloatTag(), pixels + 4 * i, r.v, g.v, b.v, a.v);
        r.store(planes[0] + i);
        g.store(planes[1] + i);
        b.store(planes[2] + i);
        if (planes[3])
            clamp(a, Lanes(0.0f), Lanes(1.0f)).store(planes[3] + i);
    }
}

void averagePairsRun(const float* low, const float* high, float* to, int count)
{
    const FloatTag tag;
    const int n = int(Lanes::count());
    int i = 0;
    for (; i + n <= count; i += n) {
        Lanes a;
        Lanes b;
        Lanes c;
        Lanes d;
        hn::LoadInterleaved2(tag, low + 2 * i, a.v, b.v);
        hn::LoadInterleaved2(tag, high + 2 * i, c.v, d.v);
        (Lanes(0.25f) * (a + b + c + d)).store(to + i);
    }
    for (; i < count; ++i) // the same sums, rounded alike
        to[i] = 0.25f * (low[2 * i] + low[2 * i + 1] + high[2 * i] + high[2 * i + 1]);
}

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace orvane {

HWY_EXPORT(sumRowsRun);
HWY_EXPORT(sumPixelsRun);
HWY_EXPORT(planesRun);
HWY_EXPORT(averagePairsRun);

void sumRowsToPixels(const float* const planes[4], std::ptrdiff_t stride, const float* weights,
                     int rows, float* pixels, int count)
{
    HWY_DYNAMIC_DISPATCH(sumRowsRun)(planes, stride, weights, rows, pixels, count);
    std::fill_n(pixels + 4 * count, 4 * tapGroup, 0.0f);
}

void sumPixels(const float* pixels, const TapRun& taps, int count, float* to)
{
    HWY_DYNAMIC_DISPATCH(sumPixelsRun)(pixels, taps, count, to);
}

void planesFromPixels(const float* pixels, int count, float* const planes[4])
{
    HWY_DYNAMIC_DISPATCH(planesRun)(pixels, count, planes);
}

void averagePairs(const float* low, const float* high, float* to, int count)
{
    HWY_DYNAMIC_DISPATCH(averagePairsRun)(low, high, to, count);
}

} // namespace orvane

#endif
