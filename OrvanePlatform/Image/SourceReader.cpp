#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "SourceReader.cpp"
#include <hwy/foreach_target.h>

#include "Powers-inl.h"
#include "SourceReader.h"

#include <algorithm>
#include <cstring>

#ifndef ORVANE_SOURCE_READER_TYPES
#define ORVANE_SOURCE_READER_TYPES
namespace orvane {
namespace {

/// Pixels that are taken apart at a time; their samples stay in the first-level cache.
constexpr int sampleRun = 256;

/// The samples of up to sampleRun pixels by channel, as stored.
template <class Sample> struct SamplePlanes {
    alignas(64) Sample of[4][sampleRun];
};

} // namespace
} // namespace orvane
#endif

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

template <int Channels, class Sample>
HWY_INLINE void takeApartGroup(const Sample* from, SamplePlanes<Sample>& to, int i)
{
    const hn::CappedTag<Sample, 16 / sizeof(Sample)> tag;
    hn::Vec<decltype(tag)> a;
    hn::Vec<decltype(tag)> b;
    hn::Vec<decltype(tag)> c;
    hn::Vec<decltype(tag)> d;
    if constexpr (Channels == 1)
        a = hn::LoadU(tag, from);
    if constexpr (Channels == 2)
        hn::LoadInterleaved2(tag, from, a, b);
    if constexpr (Channels == 3)
        hn::LoadInterleaved3(tag, from, a, b, c);
    if constexpr (Channels == 4)
        hn::LoadInterleaved4(tag, from, a, b, c, d);
    hn::StoreU(a, tag, to.of[0] + i);
    if constexpr (Channels > 1)
        hn::StoreU(b, tag, to.of[1] + i);
    if constexpr (Channels > 2)
        hn::StoreU(c, tag, to.of[2] + i);
    if constexpr (Channels > 3)
        hn::StoreU(d, tag, to.of[3] + i);
}

/// Reads exactly count pixels: the bitmap may end there.
template <int Channels, class Sample>
HWY_INLINE void takeApart(const Sample* from, int count, SamplePlanes<Sample>& to)
{
    const int group = int(hn::Lanes(hn::CappedTag<Sample, 16 / sizeof(Sample)>()));
    int i = 0;
    for (; i + group <= count; i += group)
        takeApartGroup<Channels>(from + i * Channels, to, i);
    if (i < count) {
        Sample last[16 / sizeof(Sample) * Channels] = {};
        std::memcpy(last, from + i * Channels, size_t((count - i) * Channels) * sizeof(Sample));
        takeApartGroup<Channels>(last, to, i);
    }
}

template <class Sample>
void takeApartAny(const Sample* from, int channels, int count, SamplePlanes<Sample>& to)
{
    switch (channels) {
    case 1:
        return takeApart<1>(from, count, to);
    case 2:
        return takeApart<2>(from, count, to);
    case 3:
        return takeApart<3>(from, count, to);
    default:
        return takeApart<4>(from, count, to);
    }
}

void takeApartBytes(const uint8_t* from, int channels, int count, SamplePlanes<uint8_t>& to)
{
    takeApartAny(from, channels, count, to);
}
void takeApartWords(const uint16_t* from, int channels, int count, SamplePlanes<uint16_t>& to)
{
    takeApartAny(from, channels, count, to);
}

/// The sRGB decoding (IEC 61966-2-1) of 0..1, to 5e-7, 0 and 1 exact; the closest steps of 16 bits
/// are 1.2e-6 apart. The curve is the polynomial of least error from the end of the straight part
/// to 1.
template <class V> HWY_INLINE V decodedSample(V x)
{
    constexpr float curve[] = {0.103786707f,  -0.556455553f,  1.30672598f,  -1.7880249f,
                               1.62699091f,   -1.13058269f,   0.923252702f, 0.477692902f,
                               0.0357696749f, 0.000844277325f};
    return select(x <= V(0.04045f), x * V(1.0f / 12.92f), polynomial(curve, x));
}

template <class Sample> HWY_INLINE Lanes widened(const Sample* from)
{
    const auto stored = hn::LoadU(hn::Rebind<Sample, FloatTag>(), from);
    return hn::ConvertTo(FloatTag(), hn::PromoteTo(IntTag(), stored));
}

/// What turns stored colour into 0..1: the same factor everywhere, or one over the pixel's alpha.
struct Scale {
    float factor;
    bool divides; ///< premultiplied samples; beyond their alpha they count as equal to it
};

template <class V, class Sample>
HWY_INLINE V unitSamples(V stored, const Scale& scale, const Sample* alpha)
{
    if (!scale.divides)
        return stored * Lanes(scale.factor);
    const Lanes one(1.0f);
    return min(stored * (one / max(widened(alpha), one)), V(1.0f));
}

template <class Sample>
HWY_INLINE void decodeAny(const SamplePlanes<Sample>& from, int channels, bool divides, int count,
                          float* const rgba[4])
{
    const float factor = sizeof(Sample) == 1 ? 1.0f / 255 : 1.0f / 65535;
    const Scale scale{factor, divides};
    const int n = int(Lanes::count());
    const Sample* alpha = from.of[channels - 1];
    if (channels < 3) {
        for (int i = 0; i < count; i += n) {
            const Lanes grey =
                decodedSample(unitSamples(widened(from.of[0] + i), scale, alpha + i));
            for (int c = 0; c < 3; ++c)
                grey.store(rgba[c] + i);
        }
    } else {
        for (int i = 0; i < count; i += n) {
            const Three<Lanes> stored(widened(from.of[0] + i), widened(from.of[1] + i),
                                      widened(from.of[2] + i));
            const Three<Lanes> c = decodedSample(unitSamples(stored, scale, alpha + i));
            c.r.store(rgba[0] + i);
            c.g.store(rgba[1] + i);
            c.b.store(rgba[2] + i);
        }
    }
    if (rgba[3]) {
        for (int i = 0; i < count; i += n)
            (widened(alpha + i) * Lanes(factor)).store(rgba[3] + i);
    }
}

void decodeBytes(const SamplePlanes<uint8_t>& from, int channels, bool divides, int count,
                 float* const rgba[4])
{
    decodeAny(from, channels, divides, count, rgba);
}
void decodeWords(const SamplePlanes<uint16_t>& from, int channels, bool divides, int count,
                 float* const rgba[4])
{
    decodeAny(from, channels, divides, count, rgba);
}

/// Four lanes take 15 cycles for a pixel of three bytes, tables 6; eight take 6, sixteen 3.
bool beatsTables()
{
    return Lanes::count() >= 8;
}

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Bitmap.h"
#include "HalfFloat.h"
#include "PlaneConversion.h"

#include <cmath>

namespace orvane {

HWY_EXPORT(takeApartBytes);
HWY_EXPORT(takeApartWords);
HWY_EXPORT(decodeBytes);
HWY_EXPORT(decodeWords);
HWY_EXPORT(beatsTables);

namespace {

struct RowTarget {
    float* rgb[3];
    float* alpha; ///< null when the bitmap has none
    int count;
};

void takeApart(const uint8_t* from, int channels, int count, SamplePlanes<uint8_t>& to)
{
    HWY_DYNAMIC_DISPATCH(takeApartBytes)(from, channels, count, to);
}
void takeApart(const uint16_t* from, int channels, int count, SamplePlanes<uint16_t>& to)
{
    HWY_DYNAMIC_DISPATCH(takeApartWords)(from, channels, count, to);
}
void decode(const SamplePlanes<uint8_t>& from, int channels, bool divides, int count,
            float* const rgba[4])
{
    HWY_DYNAMIC_DISPATCH(decodeBytes)(from, channels, divides, count, rgba);
}
void decode(const SamplePlanes<uint16_t>& from, int channels, bool divides, int count,
            float* const rgba[4])
{
    HWY_DYNAMIC_DISPATCH(decodeWords)(from, channels, divides, count, rgba);
}

/// One channel through its table.
template <class Sample> void lookUp(const Sample* from, const float* table, int count, float* to)
{
    for (int i = 0; i < count; ++i)
        to[i] = table[from[i]];
}

/// Premultiplied samples: the colour is divided by alpha as stored, then goes through the table,
/// between whose entries it may fall.
template <class Sample>
void lookUpDivided(const Sample* from, const Sample* alpha, const float* table, int count,
                   float* to)
{
    constexpr int top = sizeof(Sample) == 1 ? 255 : 65535;
    for (int i = 0; i < count; ++i) {
        const float position =
            alpha[i] > 0 ? std::min(1.0f, float(from[i]) / float(alpha[i])) * float(top) : 0;
        const int below = std::min(int(position), top - 1);
        to[i] = table[below] + (table[below + 1] - table[below]) * (position - float(below));
    }
}

/// A run through the tables, of the bitmap's own profile where it has them.
template <class Sample>
void decodeByTables(const SamplePlanes<Sample>& from, const Bitmap& bitmap, bool divides, int count,
                    float* const rgba[4])
{
    const int channels = bitmap.channels();
    const Sample* alpha = from.of[channels - 1];
    const int colours = channels < 3 ? 1 : 3;
    for (int c = 0; c < colours; ++c) {
        const auto& own = bitmap.conversion.curves[size_t(c)];
        const float* table = own ? own->data() : srgbDecodingTable(bitmap.type())->data();
        if (divides)
            lookUpDivided(from.of[c], alpha, table, count, rgba[c]);
        else
            lookUp(from.of[c], table, count, rgba[c]);
    }
    for (int c = colours; c < 3; ++c)
        std::copy_n(rgba[0], count, rgba[c]);
    if (rgba[3]) {
        constexpr float top = sizeof(Sample) == 1 ? 255.0f : 65535.0f;
        for (int i = 0; i < count; ++i)
            rgba[3][i] = float(alpha[i]) * (1 / top);
    }
}

template <class Sample>
void widenWhole(const Bitmap& bitmap, const uint8_t* row, int x, const RowTarget& to)
{
    const int channels = bitmap.channels();
    const auto* from =
        static_cast<const Sample*>(static_cast<const void*>(row)) + size_t(x) * size_t(channels);
    const auto& curves = bitmap.conversion.curves;
    const bool divides = bitmap.hasAlpha() && bitmap.alpha() == AlphaKind::Premultiplied;
    const bool byTables =
        curves[0] || curves[1] || curves[2] || (!divides && !HWY_DYNAMIC_DISPATCH(beatsTables)());
    SamplePlanes<Sample> samples;
    for (int i = 0; i < to.count; i += sampleRun) {
        const int count = std::min(sampleRun, to.count - i);
        float* const rgba[4] = {to.rgb[0] + i, to.rgb[1] + i, to.rgb[2] + i,
                                to.alpha ? to.alpha + i : nullptr};
        takeApart(from + size_t(i) * size_t(channels), channels, count, samples);
        if (byTables)
            decodeByTables(samples, bitmap, divides, count, rgba);
        else
            decode(samples, channels, divides, count, rgba);
    }
}

/// Half and float samples are linear sRGB already.
template <class Load> void widenLinear(const Bitmap& bitmap, Load&& load, const RowTarget& to)
{
    const int channels = bitmap.channels();
    const bool multiplied = bitmap.alpha() == AlphaKind::Premultiplied;
    for (int i = 0; i < to.count; ++i) {
        const float alpha = bitmap.hasAlpha() ? load(i * channels + channels - 1) : 1.0f;
        for (int c = 0; c < 3; ++c) {
            float v = load(i * channels + (channels < 3 ? 0 : c));
            if (multiplied)
                v = alpha > 0 ? v / alpha : 0.0f;
            to.rgb[c][i] = std::isfinite(v) ? v : 0.0f;
        }
        if (to.alpha)
            to.alpha[i] = std::isfinite(alpha) ? alpha : 0.0f;
    }
}

void widenRow(const Bitmap& bitmap, const uint8_t* row, int x, const RowTarget& to)
{
    const size_t offset = size_t(x) * size_t(bitmap.channels());
    switch (bitmap.type()) {
    case SampleType::U8:
        return widenWhole<uint8_t>(bitmap, row, x, to);
    case SampleType::U16:
        return widenWhole<uint16_t>(bitmap, row, x, to);
    case SampleType::F16: {
        const auto* halves = static_cast<const uint16_t*>(static_cast<const void*>(row)) + offset;
        return widenLinear(
            bitmap, [halves](int i) { return floatFromHalf(halves[i]); }, to);
    }
    case SampleType::F32: {
        const auto* floats = static_cast<const float*>(static_cast<const void*>(row)) + offset;
        return widenLinear(
            bitmap, [floats](int i) { return floats[i]; }, to);
    }
    }
}

} // namespace

TilePlanes readSource(const Bitmap& bitmap, const PixelRect& rect, TileArena& arena)
{
    const TilePlanes planes = arena.planes(rect, !bitmap.hasAlpha());
    for (int y = rect.y0; y < rect.y1; ++y)
        readSourceRow(bitmap, y, planes);
    return planes;
}

void readSourceRow(const Bitmap& bitmap, int y, const TilePlanes& planes)
{
    const RowTarget to{{planes.row(0, y), planes.row(1, y), planes.row(2, y)},
                       planes.opaque() ? nullptr : planes.row(3, y),
                       planes.rect.width()};
    widenRow(bitmap, bitmap.row(bitmap.height() - 1 - y), planes.rect.x0, to);
    const bool whole = bitmap.type() == SampleType::U8 || bitmap.type() == SampleType::U16;
    if (whole && bitmap.conversion.matrix)
        applyMatrix(bitmap.conversion.matrix->data(), to.rgb, to.count);
    if (to.alpha)
        premultiply(to.rgb, to.alpha, to.count);
}

} // namespace orvane

#endif
