// noiseReduction: smoothing among neighbours of like lightness, sharpening across edges. On the
// stored values p of a 5x5 window, with E = enc(clamp(luma(straight p), 0, 1)) and t the noise
// level:
//
//   g = exp(-(i^2 + j^2) / 4.5);  q = exp(-(E_ij - E_0)^2 / (2 t^2))
//   smooth = sum(g q p) / sum(g q);  plain = sum(g p) / sum(g);  plainE = sum(g E) / sum(g)
//   out = mix(smooth, p + ks (p - plain), smoothstep(t, t + 0.05, |E_0 - plainE|))
//   ks = sharpness min(1, t / 0.02)
//
// Colour noise goes with the smoothing, because lightness alone decides the weight. A channel that
// is nowhere below 0 in the window stays so. The weighted mean is taken of differences to p, which
// keeps a flat area to the bit.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/NoiseReduction.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

#include <vector>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

constexpr int noiseBorder = 2;
constexpr float log2e = 1.442695041f;
/// exp(-k^2 / 4.5) for k = -2 .. 2, and their sum squared.
constexpr float gaussian[] = {0.411112291f, 0.800737403f, 1.0f, 0.800737403f, 0.411112291f};
constexpr float gaussianSum = 3.423699388f * 3.423699388f;

struct NoiseRecord {
    float level;
    float rangeExponent; ///< -log2(e) / (2 level^2)
    float strength;
};

template <class L, bool Opaque> struct NoiseReduction {
    const NoiseRecord& record;
    const WindowBlock& block;
    /// E of the block and its border; one row of the columns' sums of it. Both begin at x = -2.
    float* lightness;
    float* columns;
    std::ptrdiff_t stride;

    static constexpr int channels = Opaque ? 3 : 4;

    HWY_INLINE L stored(int channel, int x, int y) const
    {
        return L::load(block.input[channel] + y * block.inputStride + x);
    }
    HWY_INLINE const float* lightnessRow(int y) const
    {
        return lightness + (y + noiseBorder) * stride + noiseBorder;
    }

    void fillLightness() const
    {
        const L zero(0.0f);
        const L one(1.0f);
        for (int y = -noiseBorder; y < block.height + noiseBorder; ++y) {
            float* to = lightness + (y + noiseBorder) * stride + noiseBorder;
            for (int x = -noiseBorder; x < block.width + noiseBorder; x += int(L::count())) {
                L y709 = luma(stored(0, x, y), stored(1, x, y), stored(2, x, y));
                if constexpr (!Opaque) {
                    const L alpha = stored(3, x, y);
                    const auto visible = alpha > zero;
                    y709 = select(visible, y709 / select(visible, alpha, one), zero);
                }
                encodeSrgb(clamp(y709, zero, one)).store(to + x);
            }
        }
    }

    void fillColumns(int y) const
    {
        for (int x = 0; x < block.width + 2 * noiseBorder; x += int(L::count())) {
            L sum(0.0f);
            for (int j = -noiseBorder; j <= noiseBorder; ++j)
                sum = mulAdd(L::load(lightnessRow(y + j) - noiseBorder + x),
                             L(gaussian[j + noiseBorder]), sum);
            sum.store(columns + x);
        }
    }

    /// out = smooth, from differences to the middle pixel.
    HWY_INLINE void smooth(int x, int y, L middle, const L* p, L* out) const
    {
        const L exponent(record.rangeExponent);
        L weights(1.0f);
        L sums[channels];
        for (L& sum : sums)
            sum = L(0.0f);
        for (int j = -noiseBorder; j <= noiseBorder; ++j) {
            for (int i = -noiseBorder; i <= noiseBorder; ++i) {
                if (i == 0 && j == 0)
                    continue;
                const L difference = L::load(lightnessRow(y + j) + x + i) - middle;
                const L weight = exp2(mulAdd(difference * difference, exponent,
                                             L(-log2e / 4.5f * float(i * i + j * j))));
                weights = weights + weight;
                for (int c = 0; c < channels; ++c)
                    sums[c] = mulAdd(stored(c, x + i, y + j) - p[c], weight, sums[c]);
            }
        }
        const L inverse = L(1.0f) / weights;
        for (int c = 0; c < channels; ++c)
            out[c] = mulAdd(sums[c], inverse, p[c]);
    }

    /// One channel mixed towards the sharpened pixel, by `edge`.
    HWY_INLINE L sharpened(int channel, int x, int y, L p, L smoothed, L edge) const
    {
        const L zero(0.0f);
        L sum(0.0f);
        L least = p;
        for (int j = -noiseBorder; j <= noiseBorder; ++j) {
            for (int i = -noiseBorder; i <= noiseBorder; ++i) {
                const L value = stored(channel, x + i, y + j);
                sum = mulAdd(value, L(gaussian[i + noiseBorder] * gaussian[j + noiseBorder]), sum);
                least = min(least, value);
            }
        }
        const L plain = sum * L(1 / gaussianSum);
        const L mixed = mix(smoothed, mulAdd(p - plain, L(record.strength), p), edge);
        return select(least >= zero, max(mixed, zero), mixed);
    }

    void run() const
    {
        const L zero(0.0f);
        const L level(record.level);
        fillLightness();
        for (int y = 0; y < block.height; ++y) {
            fillColumns(y);
            for (int x = 0; x < block.width; x += int(L::count())) {
                const L middle = L::load(lightnessRow(y) + x);
                L p[channels];
                for (int c = 0; c < channels; ++c)
                    p[c] = stored(c, x, y);
                L out[channels];
                smooth(x, y, middle, p, out);
                L plain(0.0f);
                for (int i = 0; i <= 2 * noiseBorder; ++i)
                    plain = mulAdd(L::load(columns + x + i), L(gaussian[i]), plain);
                const L edge =
                    smoothstep(level, level + L(0.05f), abs(middle - plain * L(1 / gaussianSum)));
                // Edges are few; elsewhere their mean would be weighted by 0.
                if (anyTrue(edge > zero)) {
                    for (int c = 0; c < channels; ++c)
                        out[c] = sharpened(c, x, y, p[c], out[c], edge);
                }
                for (int c = 0; c < channels; ++c)
                    out[c].store(block.output[c] + y * block.outputStride + x);
            }
        }
    }
};

template <class L> HWY_INLINE void runNoiseReduction(const void* record, const WindowBlock& block)
{
    // Kept by each thread: a block's scratch is as large as the tiles.
    thread_local std::vector<float> scratch;
    const int paddedWidth = block.width + 2 * noiseBorder + rowPadding;
    const auto stride = std::ptrdiff_t((paddedWidth + 15) / 16 * 16);
    const size_t needed = size_t(stride) * size_t(block.height + 2 * noiseBorder + 1);
    if (scratch.size() < needed)
        scratch.resize(needed);
    const auto& parameters = *static_cast<const NoiseRecord*>(record);
    float* columns = scratch.data();
    float* lightness = columns + stride;
    if (block.input[3])
        NoiseReduction<L, false>{parameters, block, lightness, columns, stride}.run();
    else
        NoiseReduction<L, true>{parameters, block, lightness, columns, stride}.run();
}

void runNoiseReductionTiled(const void* record, const WindowBlock& block)
{
    runNoiseReduction<Lanes>(record, block);
}

[[maybe_unused]] void runNoiseReductionReference(const void* record, const WindowBlock& block)
{
    runNoiseReduction<Single>(record, block);
}

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane {

HWY_EXPORT(runNoiseReductionTiled);

static const WindowKernel noiseReductionKernel{
    "noiseReduction",
    [](const void* record, const WindowBlock& block) {
        HWY_DYNAMIC_DISPATCH(runNoiseReductionTiled)(record, block);
    },
    HWY_NAMESPACE::runNoiseReductionReference,
};

CIImage CIFilter::noiseReduction(const CIImage& input, double noiseLevel, double sharpness)
{
    const auto level = float(noiseLevel);
    if (!(level > 0) || !std::isfinite(level) || input.isEmpty())
        return input;
    const double exponent = -0.5 * std::numbers::log2e / (double(level) * double(level));
    const HWY_NAMESPACE::NoiseRecord record{
        level,
        // Beyond this any difference at all has no weight, and none stays none.
        float(std::max(exponent, -1e30)),
        float((std::isfinite(sharpness) ? sharpness : 0.0) * std::min(1.0, double(level) / 0.02)),
    };
    const NodePtr& node = input.node();
    return CIImage(makeNode(
        WindowNode{&noiseReductionKernel, Parameters::of(record), HWY_NAMESPACE::noiseBorder},
        {node}, node->extent, node->opaque));
}

} // namespace orvane

#endif
