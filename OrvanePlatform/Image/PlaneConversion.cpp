#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "PlaneConversion.cpp"
#include <hwy/foreach_target.h>

#include "CompactFloat-inl.h"
#include "PlaneConversion.h"
#include "Powers-inl.h"

#include <algorithm>
#include <cmath>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

constexpr int samplesOfLine = 32;

/// A line at a time between the conversions: a burst of requests would fill the places that the
/// processor has for those under way, and have the conversion wait for them.
HWY_INLINE void fetchAlong(const uint8_t* next, int i)
{
    if (i % samplesOfLine == 0)
        __builtin_prefetch(next + i * 2);
}

void compactFromFloatsRun(const float* from, uint16_t* to, int count, const uint8_t* next)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        fetchAlong(next, i);
        storeCompact(Lanes::load(from + i), to + i);
    }
}

void floatsFromCompactRun(const uint16_t* from, float* to, int count, const uint8_t* next)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        fetchAlong(next, i);
        loadCompact(from + i).store(to + i);
    }
}

/// 0..1 with NaN as 0.
HWY_INLINE Lanes unit(Lanes x)
{
    return select(x > Lanes(0.0f), min(x, Lanes(1.0f)), Lanes(0.0f));
}

// How a picture with alpha becomes bytes. Over black, the straight, clipped colour is multiplied by
// alpha again before encoding; premultiplied bytes multiply the rounded alpha in after it.
enum class AlphaUse { OverBlack, Straight, Premultiplied };

/// Encoded samples as whole floats.
struct Encoded {
    Lanes r;
    Lanes g;
    Lanes b;
    Lanes a;
};

HWY_INLINE Three<Lanes> colour(const float* const planes[4], int i)
{
    return {Lanes::load(planes[0] + i), Lanes::load(planes[1] + i), Lanes::load(planes[2] + i)};
}

/// round(e * scale) of the encoded, clipped colour.
HWY_INLINE Three<Lanes> encoded(Three<Lanes> straight, Lanes scale)
{
    using V = Three<Lanes>;
    const V steps(scale, scale, scale);
    return floor(mulAdd(encodeSrgbPositive(straight), steps, V(0.5f)));
}

HWY_INLINE Three<Lanes> unit(Three<Lanes> x)
{
    return {unit(x.r), unit(x.g), unit(x.b)};
}

template <AlphaUse Use>
HWY_INLINE Encoded encodedPixels(const float* const planes[4], int i, float steps)
{
    const Lanes top(steps);
    if (!planes[3]) {
        const Three<Lanes> opaque = encoded(unit(colour(planes, i)), top);
        return {opaque.r, opaque.g, opaque.b, top};
    }
    const Lanes one(1.0f);
    const Lanes stored = Lanes::load(planes[3] + i);
    const auto visible = stored > Lanes(1e-30f);
    const Lanes alpha = unit(stored);
    const Lanes inverse = select(visible, one / select(visible, stored, one), Lanes(0.0f));
    Three<Lanes> straight = unit(colour(planes, i) * inverse);
    if (Use == AlphaUse::OverBlack)
        straight = straight * alpha;
    const Lanes wholeAlpha = floor(mulAdd(alpha, top, Lanes(0.5f)));
    const Three<Lanes> c = encoded(straight, Use == AlphaUse::Premultiplied ? wholeAlpha : top);
    return {c.r, c.g, c.b, wholeAlpha};
}

using ByteTag = hn::Rebind<uint8_t, FloatTag>;
using WordTag = hn::Rebind<uint16_t, FloatTag>;

HWY_INLINE hn::Vec<ByteTag> bytes(Lanes whole)
{
    return hn::DemoteTo(ByteTag(), integers(whole));
}
HWY_INLINE hn::Vec<WordTag> words(Lanes whole)
{
    return hn::DemoteTo(WordTag(), integers(whole));
}

// Each writes whole vectors: `to` has room for rowPadding pixels more.

void rgb8Run(const float* const planes[4], int count, uint8_t* to)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Encoded e = encodedPixels<AlphaUse::OverBlack>(planes, i, 255);
        hn::StoreInterleaved3(bytes(e.r), bytes(e.g), bytes(e.b), ByteTag(), to + i * 3);
    }
}
void rgb16Run(const float* const planes[4], int count, uint8_t* to)
{
    auto* samples = static_cast<uint16_t*>(static_cast<void*>(to));
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Encoded e = encodedPixels<AlphaUse::OverBlack>(planes, i, 65535);
        hn::StoreInterleaved3(words(e.r), words(e.g), words(e.b), WordTag(), samples + i * 3);
    }
}
void rgba8Run(const float* const planes[4], int count, uint8_t* to)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Encoded e = encodedPixels<AlphaUse::Straight>(planes, i, 255);
        hn::StoreInterleaved4(bytes(e.r), bytes(e.g), bytes(e.b), bytes(e.a), ByteTag(),
                              to + i * 4);
    }
}
void rgba16Run(const float* const planes[4], int count, uint8_t* to)
{
    auto* samples = static_cast<uint16_t*>(static_cast<void*>(to));
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Encoded e = encodedPixels<AlphaUse::Straight>(planes, i, 65535);
        hn::StoreInterleaved4(words(e.r), words(e.g), words(e.b), words(e.a), WordTag(),
                              samples + i * 4);
    }
}
void rgba8PremultipliedRun(const float* const planes[4], int count, uint8_t* to)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Encoded e = encodedPixels<AlphaUse::Premultiplied>(planes, i, 255);
        hn::StoreInterleaved4(bytes(e.r), bytes(e.g), bytes(e.b), bytes(e.a), ByteTag(),
                              to + i * 4);
    }
}
void bgrx8Run(const float* const planes[4], int count, uint8_t* to)
{
    const auto opaque = hn::Set(ByteTag(), 255);
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Encoded e = encodedPixels<AlphaUse::OverBlack>(planes, i, 255);
        hn::StoreInterleaved4(bytes(e.b), bytes(e.g), bytes(e.r), opaque, ByteTag(), to + i * 4);
    }
}
void bgra8PremultipliedRun(const float* const planes[4], int count, uint8_t* to)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Encoded e = encodedPixels<AlphaUse::Premultiplied>(planes, i, 255);
        hn::StoreInterleaved4(bytes(e.b), bytes(e.g), bytes(e.r), bytes(e.a), ByteTag(),
                              to + i * 4);
    }
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

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace orvane {

HWY_EXPORT(compactFromFloatsRun);
HWY_EXPORT(floatsFromCompactRun);
HWY_EXPORT(rgb8Run);
HWY_EXPORT(rgb16Run);
HWY_EXPORT(rgba8Run);
HWY_EXPORT(rgba16Run);
HWY_EXPORT(rgba8PremultipliedRun);
HWY_EXPORT(bgrx8Run);
HWY_EXPORT(bgra8PremultipliedRun);
HWY_EXPORT(matrixRun);
HWY_EXPORT(premultiplyRun);

void compactFromFloats(const float* from, uint16_t* to, int count, const void* next)
{
    HWY_DYNAMIC_DISPATCH(compactFromFloatsRun)(from, to, count, static_cast<const uint8_t*>(next));
}

void floatsFromCompact(const uint16_t* from, float* to, int count, const void* next)
{
    HWY_DYNAMIC_DISPATCH(floatsFromCompactRun)(from, to, count, static_cast<const uint8_t*>(next));
}

void applyMatrix(const float* m, float* const rgb[3], int count)
{
    HWY_DYNAMIC_DISPATCH(matrixRun)(m, rgb, count);
}

void premultiply(float* const rgb[3], const float* alpha, int count)
{
    HWY_DYNAMIC_DISPATCH(premultiplyRun)(rgb, alpha, count);
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

void floatPixels(const float* const planes[4], int count, uint8_t* to)
{
    auto* floats = static_cast<float*>(static_cast<void*>(to));
    for (int i = 0; i < count; ++i) {
        for (int c = 0; c < 4; ++c)
            floats[i * 4 + c] = planes[c] ? planes[c][i] : 1.0f;
    }
}

void narrowRun(const float* const planes[4], int count, PixelFormat format, uint8_t* to)
{
    switch (format) {
    case PixelFormat::RGB8:
        return HWY_DYNAMIC_DISPATCH(rgb8Run)(planes, count, to);
    case PixelFormat::RGB16:
        return HWY_DYNAMIC_DISPATCH(rgb16Run)(planes, count, to);
    case PixelFormat::RGBA8:
        return HWY_DYNAMIC_DISPATCH(rgba8Run)(planes, count, to);
    case PixelFormat::RGBA16:
        return HWY_DYNAMIC_DISPATCH(rgba16Run)(planes, count, to);
    case PixelFormat::RGBA8Premultiplied:
        return HWY_DYNAMIC_DISPATCH(rgba8PremultipliedRun)(planes, count, to);
    case PixelFormat::BGRX8:
        return HWY_DYNAMIC_DISPATCH(bgrx8Run)(planes, count, to);
    case PixelFormat::BGRA8Premultiplied:
        return HWY_DYNAMIC_DISPATCH(bgra8PremultipliedRun)(planes, count, to);
    case PixelFormat::RGBAFloat:
        return floatPixels(planes, count, to);
    }
}

} // namespace

void narrowRow(const float* const planes[4], int count, PixelFormat format, uint8_t* to)
{
    const int whole = count / rowPadding * rowPadding;
    narrowRun(planes, whole, format, to);
    if (whole == count)
        return;
    // The last vector goes to a row of our own: what follows the pixels in the target is another
    // tile's.
    alignas(64) uint8_t row[rowPadding * 16];
    const float* const rest[4] = {planes[0] + whole, planes[1] + whole, planes[2] + whole,
                                  planes[3] ? planes[3] + whole : nullptr};
    const auto pixelBytes = size_t(bytesPerPixel(format));
    narrowRun(rest, count - whole, format, row);
    std::memcpy(to + size_t(whole) * pixelBytes, row, size_t(count - whole) * pixelBytes);
}

} // namespace orvane

#endif
