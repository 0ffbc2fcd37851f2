#include "SourceReader.h"

#include "Bitmap.h"
#include "HalfFloat.h"
#include "PlaneConversion.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

struct RowTarget {
    float* rgb[3];
    float* alpha; ///< null when the bitmap has none
    int count;
};

/// Straight or no alpha: every sample through its table.
template <class Sample, int Channels>
void widenTable(const Sample* from, const float* const tables[3], const RowTarget& to)
{
    constexpr float top = sizeof(Sample) == 1 ? 255.0f : 65535.0f;
    constexpr int colours = Channels < 3 ? 1 : 3;
    for (int c = 0; c < colours; ++c) {
        const float* table = tables[c];
        float* plane = to.rgb[c];
        for (int i = 0; i < to.count; ++i)
            plane[i] = table[from[i * Channels + c]];
    }
    for (int c = colours; c < 3; ++c)
        std::copy_n(to.rgb[0], to.count, to.rgb[c]);
    if constexpr (Channels == 2 || Channels == 4) {
        for (int i = 0; i < to.count; ++i)
            to.alpha[i] = float(from[i * Channels + Channels - 1]) * (1 / top);
    }
}

/// Premultiplied samples: the colour is divided by alpha as stored, then goes through the table,
/// between whose entries it may fall.
template <class Sample, int Channels>
void widenPremultiplied(const Sample* from, const float* const tables[3], const RowTarget& to)
{
    constexpr int top = sizeof(Sample) == 1 ? 255 : 65535;
    for (int i = 0; i < to.count; ++i) {
        const Sample* pixel = from + i * Channels;
        const auto alpha = float(pixel[Channels - 1]);
        to.alpha[i] = alpha * (1 / float(top));
        for (int c = 0; c < 3; ++c) {
            const float* table = tables[Channels < 3 ? 0 : c];
            const auto stored = float(pixel[Channels < 3 ? 0 : c]);
            const float position = alpha > 0 ? std::min(1.0f, stored / alpha) * float(top) : 0;
            const int below = std::min(int(position), top - 1);
            to.rgb[c][i] =
                table[below] + (table[below + 1] - table[below]) * (position - float(below));
        }
    }
}

template <class Sample>
void widenWhole(const Bitmap& bitmap, const uint8_t* row, int x, const RowTarget& to)
{
    const float* tables[3];
    for (size_t c = 0; c < 3; ++c) {
        const auto& own = bitmap.conversion.curves[c];
        tables[c] = own ? own->data() : srgbDecodingTable(bitmap.type())->data();
    }
    const auto* from = static_cast<const Sample*>(static_cast<const void*>(row))
        + size_t(x) * size_t(bitmap.channels());
    const bool multiplied = bitmap.alpha() == AlphaKind::Premultiplied;
    switch (bitmap.channels()) {
    case 1:
        return widenTable<Sample, 1>(from, tables, to);
    case 2:
        return multiplied ? widenPremultiplied<Sample, 2>(from, tables, to)
                          : widenTable<Sample, 2>(from, tables, to);
    case 3:
        return widenTable<Sample, 3>(from, tables, to);
    default:
        return multiplied ? widenPremultiplied<Sample, 4>(from, tables, to)
                          : widenTable<Sample, 4>(from, tables, to);
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
    TilePlanes planes = arena.planes(rect, !bitmap.hasAlpha());
    const bool whole = bitmap.type() == SampleType::U8 || bitmap.type() == SampleType::U16;
    for (int y = rect.y0; y < rect.y1; ++y) {
        const RowTarget to{{planes.row(0, y), planes.row(1, y), planes.row(2, y)},
                           planes.opaque() ? nullptr : planes.row(3, y),
                           rect.width()};
        widenRow(bitmap, bitmap.row(bitmap.height() - 1 - y), rect.x0, to);
        if (whole && bitmap.conversion.matrix)
            applyMatrix(bitmap.conversion.matrix->data(), to.rgb, to.count);
        if (to.alpha)
            premultiply(to.rgb, to.alpha, to.count);
    }
    return planes;
}

} // namespace orvane
