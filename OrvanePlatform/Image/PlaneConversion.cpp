#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "PlaneConversion.cpp"
#include <hwy/foreach_target.h>

#include "Lanes-inl.h"
#include "PlaneConversion.h"

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

using HalfTag = hn::Rebind<hwy::float16_t, FloatTag>;

void halvesFromFloatsRun(const float* from, uint16_t* to, int count)
{
    constexpr float largest = 65504.0f;
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Lanes held = clamp(Lanes::load(from + i), Lanes(-largest), Lanes(largest));
        hn::StoreU(hn::DemoteTo(HalfTag(), held.v), HalfTag(),
                   reinterpret_cast<hwy::float16_t*>(to + i));
    }
}

void floatsFromHalvesRun(const uint16_t* from, float* to, int count)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const auto half = hn::LoadU(HalfTag(), reinterpret_cast<const hwy::float16_t*>(from + i));
        hn::StoreU(hn::PromoteTo(FloatTag(), half), FloatTag(), to + i);
    }
}

/// 0..1 with NaN as 0.
HWY_INLINE Lanes unit(Lanes x)
{
    return select(x > Lanes(0.0f), min(x, Lanes(1.0f)), Lanes(0.0f));
}

// The straight, encoded colour and alpha of `count` pixels times `steps`, as whole floats. Over
// black (ignoreAlpha) the straight colour is multiplied by alpha again, in linear light, before
// encoding; premultiplied output multiplies the rounded alpha in after encoding.
enum class AlphaUse { OverBlack, Straight, Premultiplied };

HWY_INLINE void encodeRun(const float* const planes[4], int count, AlphaUse use, float steps,
                          float* const out[4])
{
    const Lanes top(steps);
    const Lanes half(0.5f);
    for (int i = 0; i < count; i += int(Lanes::count())) {
        Lanes colour[3];
        Lanes alpha(1.0f);
        if (planes[3])
            alpha = unit(Lanes::load(planes[3] + i));
        for (int c = 0; c < 3; ++c) {
            Lanes v = Lanes::load(planes[c] + i);
            if (planes[3]) {
                const auto visible = alpha > Lanes(0.0f);
                const Lanes stored = Lanes::load(planes[3] + i);
                v = select(visible, v / select(visible, stored, Lanes(1.0f)), Lanes(0.0f));
                v = unit(v);
                if (use == AlphaUse::OverBlack)
                    v = v * alpha;
            }
            colour[c] = encodeSrgb(unit(v));
        }
        const Lanes wholeAlpha = floor(alpha * top + half);
        const Lanes scale = use == AlphaUse::Premultiplied ? wholeAlpha : top;
        for (int c = 0; c < 3; ++c)
            floor(mulAdd(colour[c], scale, half)).store(out[c] + i);
        wholeAlpha.store(out[3] + i);
    }
}

void encodeOverBlack(const float* const planes[4], int count, float steps, float* const out[4])
{
    encodeRun(planes, count, AlphaUse::OverBlack, steps, out);
}
void encodeStraight(const float* const planes[4], int count, float steps, float* const out[4])
{
    encodeRun(planes, count, AlphaUse::Straight, steps, out);
}
void encodePremultiplied(const float* const planes[4], int count, float steps, float* const out[4])
{
    encodeRun(planes, count, AlphaUse::Premultiplied, steps, out);
}

void matrixRun(const float* m, float* const rgb[3], int count)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Lanes r = Lanes::load(rgb[0] + i);
        const Lanes g = Lanes::load(rgb[1] + i);
        const Lanes b = Lanes::load(rgb[2] + i);
        for (int c = 0; c < 3; ++c) {
            const Lanes v =
                mulAdd(r, Lanes(m[3 * c]), mulAdd(g, Lanes(m[3 * c + 1]), b * Lanes(m[3 * c + 2])));
            v.store(rgb[c] + i);
        }
    }
}

void premultiplyRun(float* const rgb[3], const float* alpha, int count)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Lanes a = Lanes::load(alpha + i);
        for (int c = 0; c < 3; ++c)
            (Lanes::load(rgb[c] + i) * a).store(rgb[c] + i);
    }
}

// Four vectors at a time share each weight's load; the sums run from the outermost tap inwards, so
// a pixel's value never depends on where its tile begins.
void convolveRun(const float* in, std::ptrdiff_t step, float* out, int count, const float* weights,
                 int reach)
{
    const int n = int(Lanes::count());
    for (int i = 0; i < count; i += 4 * n) {
        const float* p = in + i;
        const int blocks = std::min(4, (count - i + n - 1) / n);
        Lanes sums[4] = {Lanes(0.0f), Lanes(0.0f), Lanes(0.0f), Lanes(0.0f)};
        for (int k = reach; k > 0; --k) {
            const Lanes weight(weights[k]);
            const float* low = p - k * step;
            const float* high = p + k * step;
            for (int b = 0; b < blocks; ++b)
                sums[b] =
                    mulAdd(Lanes::load(low + b * n) + Lanes::load(high + b * n), weight, sums[b]);
        }
        for (int b = 0; b < blocks; ++b)
            mulAdd(Lanes::load(p + b * n), Lanes(weights[0]), sums[b]).store(out + i + b * n);
    }
}

void bilinearRun(const float* plane, const int32_t* offsets, std::ptrdiff_t stride, const float* u,
                 const float* v, int count, float* out)
{
    const FloatTag f;
    const IntTag i32;
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const auto at = hn::LoadU(i32, offsets + i);
        const Lanes lowLeft = hn::GatherIndex(f, plane, at);
        const Lanes lowRight = hn::GatherIndex(f, plane + 1, at);
        const Lanes highLeft = hn::GatherIndex(f, plane + stride, at);
        const Lanes highRight = hn::GatherIndex(f, plane + stride + 1, at);
        // No fused multiply-add: at a picture's edge the plain loop below must give the same bits.
        const Lanes across = Lanes::load(u + i);
        const Lanes bottom = lowLeft + (lowRight - lowLeft) * across;
        const Lanes top = highLeft + (highRight - highLeft) * across;
        (bottom + (top - bottom) * Lanes::load(v + i)).store(out + i);
    }
}

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "HalfFloat.h"

namespace orvane {

HWY_EXPORT(halvesFromFloatsRun);
HWY_EXPORT(floatsFromHalvesRun);
HWY_EXPORT(encodeOverBlack);
HWY_EXPORT(encodeStraight);
HWY_EXPORT(encodePremultiplied);
HWY_EXPORT(matrixRun);
HWY_EXPORT(premultiplyRun);
HWY_EXPORT(convolveRun);
HWY_EXPORT(bilinearRun);

void halvesFromFloats(const float* from, uint16_t* to, int count)
{
    HWY_DYNAMIC_DISPATCH(halvesFromFloatsRun)(from, to, count);
}

void floatsFromHalves(const uint16_t* from, float* to, int count)
{
    HWY_DYNAMIC_DISPATCH(floatsFromHalvesRun)(from, to, count);
}

void applyMatrix(const float* m, float* const rgb[3], int count)
{
    HWY_DYNAMIC_DISPATCH(matrixRun)(m, rgb, count);
}

void premultiply(float* const rgb[3], const float* alpha, int count)
{
    HWY_DYNAMIC_DISPATCH(premultiplyRun)(rgb, alpha, count);
}

void convolveAcross(const float* in, float* out, int count, const float* weights, int reach)
{
    HWY_DYNAMIC_DISPATCH(convolveRun)(in, 1, out, count, weights, reach);
}

void convolveDown(const float* in, std::ptrdiff_t stride, float* out, int count,
                  const float* weights, int reach)
{
    HWY_DYNAMIC_DISPATCH(convolveRun)(in, stride, out, count, weights, reach);
}

void BilinearTaps::set(const double* xs, const double* ys, int length, int width, int height,
                       std::ptrdiff_t planeStride)
{
    count = length;
    stride = planeStride;
    inside = true;
    for (int i = 0; i < length; ++i) {
        const double x = xs[i] - 0.5;
        const double y = ys[i] - 0.5;
        // Written so that what is not a number fails the test.
        const bool reaches = x > -1 && y > -1 && x < width && y < height;
        const int x0 = reaches ? int(x + 1) - 1 : 0;
        const int y0 = reaches ? int(y + 1) - 1 : 0;
        offset[i] = int32_t(y0 * planeStride + x0);
        u[i] = reaches ? float(x - x0) : 0;
        v[i] = reaches ? float(y - y0) : 0;
        const bool left = reaches && x0 >= 0;
        const bool right = reaches && x0 + 1 < width;
        const bool low = y0 >= 0;
        const bool high = y0 + 1 < height;
        present[i] = uint8_t((left && low) | (right && low) << 1 | (left && high) << 2 | (right && high) << 3);
        inside = inside && present[i] == 15;
    }
    std::fill_n(offset + length, rowPadding, 0);
}

void sampleBilinear(const float* plane, const BilinearTaps& taps, float* out)
{
    if (taps.inside) {
        HWY_DYNAMIC_DISPATCH(bilinearRun)
        (plane, taps.offset, taps.stride, taps.u, taps.v, taps.count, out);
        return;
    }
    for (int i = 0; i < taps.count; ++i) {
        const float* p = plane + taps.offset[i];
        const uint8_t present = taps.present[i];
        const float lowLeft = present & 1 ? p[0] : 0;
        const float lowRight = present & 2 ? p[1] : 0;
        const float highLeft = present & 4 ? p[taps.stride] : 0;
        const float highRight = present & 8 ? p[taps.stride + 1] : 0;
        const float bottom = lowLeft + (lowRight - lowLeft) * taps.u[i];
        const float top = highLeft + (highRight - highLeft) * taps.u[i];
        out[i] = bottom + (top - bottom) * taps.v[i];
    }
}

int bytesPerPixel(PixelFormat format)
{
    switch (format) {
    case PixelFormat::RGB8:
        return 3;
    case PixelFormat::RGB16:
        return 6;
    case PixelFormat::RGBA16:
        return 8;
    case PixelFormat::RGBAFloat:
        return 16;
    case PixelFormat::RGBA8:
    case PixelFormat::RGBA8Premultiplied:
    case PixelFormat::BGRX8:
    case PixelFormat::BGRA8Premultiplied:
        return 4;
    }
    return 4;
}

namespace {

constexpr int chunk = 256;

template <class Sample>
void interleave(const float* const planes[4], int count, const int (&order)[4], int channels,
                Sample* to)
{
    for (int c = 0; c < channels; ++c) {
        const float* from = planes[order[c]];
        for (int i = 0; i < count; ++i)
            to[i * channels + c] = Sample(int(from[i]));
    }
}

void narrowChunk(const float* const planes[4], int count, PixelFormat format, uint8_t* to)
{
    alignas(64) float whole[4][chunk + rowPadding];
    float* const rows[4] = {whole[0], whole[1], whole[2], whole[3]};
    const float* const wholeRows[4] = {whole[0], whole[1], whole[2], whole[3]};
    constexpr int rgba[4] = {0, 1, 2, 3};
    constexpr int bgra[4] = {2, 1, 0, 3};
    auto* to16 = static_cast<uint16_t*>(static_cast<void*>(to));
    switch (format) {
    case PixelFormat::RGB8:
        HWY_DYNAMIC_DISPATCH(encodeOverBlack)(planes, count, 255, rows);
        return interleave(wholeRows, count, rgba, 3, to);
    case PixelFormat::RGB16:
        HWY_DYNAMIC_DISPATCH(encodeOverBlack)(planes, count, 65535, rows);
        return interleave(wholeRows, count, rgba, 3, to16);
    case PixelFormat::RGBA8:
        HWY_DYNAMIC_DISPATCH(encodeStraight)(planes, count, 255, rows);
        return interleave(wholeRows, count, rgba, 4, to);
    case PixelFormat::RGBA16:
        HWY_DYNAMIC_DISPATCH(encodeStraight)(planes, count, 65535, rows);
        return interleave(wholeRows, count, rgba, 4, to16);
    case PixelFormat::RGBA8Premultiplied:
        HWY_DYNAMIC_DISPATCH(encodePremultiplied)(planes, count, 255, rows);
        return interleave(wholeRows, count, rgba, 4, to);
    case PixelFormat::BGRX8:
        HWY_DYNAMIC_DISPATCH(encodeOverBlack)(planes, count, 255, rows);
        std::fill_n(whole[3], count, 255.0f);
        return interleave(wholeRows, count, bgra, 4, to);
    case PixelFormat::BGRA8Premultiplied:
        HWY_DYNAMIC_DISPATCH(encodePremultiplied)(planes, count, 255, rows);
        return interleave(wholeRows, count, bgra, 4, to);
    case PixelFormat::RGBAFloat:
        break;
    }
    auto* floats = static_cast<float*>(static_cast<void*>(to));
    for (int i = 0; i < count; ++i) {
        for (int c = 0; c < 4; ++c)
            floats[i * 4 + c] = planes[c] ? planes[c][i] : 1.0f;
    }
}

} // namespace

void narrowRow(const float* const planes[4], int count, PixelFormat format, uint8_t* to)
{
    for (int i = 0; i < count; i += chunk) {
        const float* const part[4] = {planes[0] + i, planes[1] + i, planes[2] + i,
                                      planes[3] ? planes[3] + i : nullptr};
        narrowChunk(part, std::min(chunk, count - i), format, to + i * bytesPerPixel(format));
    }
}

} // namespace orvane

#endif
