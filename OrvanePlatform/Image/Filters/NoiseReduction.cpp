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
// is nowhere below 0 in the window stays so. A flat area stays to the bit.
//
// A weight g q belongs to a pair of pixels, so each is computed once and read from both sides.

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
/// Columns worked on at a time: the weights of a strip's last three rows stay in the first-level
/// cache.
constexpr int stripWidth = 128;
constexpr int stripRow = stripWidth + 2 * noiseBorder + rowPadding;
/// A mean that differs from the pixel by less, relatively, differs by its sums' roundings: 25 of
/// 2^-24 in each of two.
constexpr float sameMean = 4e-6f;

struct NoiseRecord {
    float level;
    float rangeExponent; ///< -log2(e) / (2 level^2)
    float strength;
};

/// From a pixel to the neighbours that come after it: one of each pair of opposites.
struct Neighbour {
    int right;
    int up;
};
constexpr Neighbour later[] = {{1, 0}, {2, 0},  {-2, 1}, {-1, 1}, {0, 1}, {1, 1},
                               {2, 1}, {-2, 2}, {-1, 2}, {0, 2},  {1, 2}, {2, 2}};
constexpr int pairs = 12;

/// A strip's rows, all beginning at its column -2. Of the weights, rows are kept for 3 rows of the
/// picture; a pair's weight is stored under the pixel that comes first.
struct NoiseScratch {
    float weights[pairs][3][stripRow];
    float edges[stripRow];
    float columns[stripRow];
    float sums[4][stripRow];
    float least[4][stripRow];
};

template <class L, bool Opaque> struct NoiseReduction {
    const NoiseRecord& record;
    const WindowBlock& block;
    /// E of the block and its border, from (-2, -2) on; two columns more to each side may be read.
    float* lightness;
    std::ptrdiff_t stride;
    NoiseScratch& scratch;

    static constexpr int channels = Opaque ? 3 : 4;
    static constexpr int n = noiseBorder;

    HWY_INLINE L stored(int channel, int x, int y) const
    {
        return L::load(block.input[channel] + y * block.inputStride + x);
    }
    HWY_INLINE float* lightnessRow(int y) const { return lightness + (y + n) * stride + n; }
    /// The weights of a pair, by the first pixel's column within the strip.
    HWY_INLINE float* weightRow(int pair, int y) const
    {
        return scratch.weights[pair][(y + n) % 3] + n;
    }

    void fillLightness() const
    {
        const L zero(0.0f);
        const L one(1.0f);
        for (int y = -n; y < block.height + n; ++y) {
            float* to = lightnessRow(y);
            for (int x = -n; x < block.width + n; x += int(L::count())) {
                L y709 = luma(stored(0, x, y), stored(1, x, y), stored(2, x, y));
                if constexpr (!Opaque) {
                    const L alpha = stored(3, x, y);
                    const auto visible = alpha > zero;
                    y709 = select(visible, y709 / select(visible, alpha, one), zero);
                }
                encodeSrgbPositive(clamp(y709, zero, one)).store(to + x);
            }
        }
    }

    /// g q of every pair whose first pixel is in row y.
    void fillWeights(int left, int width, int y) const
    {
        const L exponent(record.rangeExponent);
        const float* from = lightnessRow(y) + left;
        for (int pair = 0; pair < pairs; ++pair) {
            const auto [right, up] = later[pair];
            if (y + up < 0)
                continue;
            const float* other = lightnessRow(y + up) + left + right;
            float* to = weightRow(pair, y);
            const L far(-log2e / 4.5f * float(right * right + up * up));
            for (int x = -n; x < width + n; x += int(L::count())) {
                const L difference = L::load(other + x) - L::load(from + x);
                exp2Weight(mulAdd(difference * difference, exponent, far)).store(to + x);
            }
        }
    }

    /// How much of an edge each pixel of a row is, into scratch.edges; whether any is.
    bool fillEdges(int left, int width, int y) const
    {
        const float* middle = lightnessRow(y) + left;
        for (int x = -n; x < width + n; x += int(L::count())) {
            L sum(0.0f);
            for (int j = -n; j <= n; ++j)
                sum = mulAdd(L::load(middle + j * stride + x), L(gaussian[j + n]), sum);
            sum.store(scratch.columns + n + x);
        }
        const L level(record.level);
        L most(0.0f);
        for (int x = 0; x < width; x += int(L::count())) {
            L plain(0.0f);
            for (int i = 0; i <= 2 * n; ++i)
                plain = mulAdd(L::load(scratch.columns + x + i), L(gaussian[i]), plain);
            const L away = abs(L::load(middle + x) - plain * L(1 / gaussianSum));
            const L edge = smoothstep(level, level + L(0.05f), away);
            edge.store(scratch.edges + x);
            most = max(most, edge);
        }
        return anyTrue(most > L(0.0f));
    }

    /// Row y smoothed. In the window every neighbour has its row of weights and its distance.
    void smoothRow(int left, int width, int y) const
    {
        const float* weightRows[2 * pairs];
        std::ptrdiff_t distances[2 * pairs];
        for (int pair = 0; pair < pairs; ++pair) {
            const auto [right, up] = later[pair];
            weightRows[2 * pair] = weightRow(pair, y);
            weightRows[2 * pair + 1] = weightRow(pair, y - up) - right;
            distances[2 * pair] = up * block.inputStride + right;
            distances[2 * pair + 1] = -distances[2 * pair];
        }
        const float* rows[channels];
        for (int c = 0; c < channels; ++c)
            rows[c] = block.input[c] + y * block.inputStride + left;
        constexpr int blocks = 2;
        const int lanes = int(L::count());
        for (int x = 0; x < width; x += blocks * lanes) {
            // The second vector may lie past the padding; then it is the first once more.
            const int places[blocks] = {x, x + lanes < width ? x + lanes : x};
            L weights[blocks];
            L sums[blocks][channels];
            for (int b = 0; b < blocks; ++b) {
                weights[b] = L(1.0f);
                for (int c = 0; c < channels; ++c)
                    sums[b][c] = L::load(rows[c] + places[b]);
            }
            for (int k = 0; k < 2 * pairs; ++k) {
                for (int b = 0; b < blocks; ++b) {
                    const L weight = L::load(weightRows[k] + places[b]);
                    weights[b] = weights[b] + weight;
                    for (int c = 0; c < channels; ++c)
                        sums[b][c] =
                            mulAdd(L::load(rows[c] + places[b] + distances[k]), weight, sums[b][c]);
                }
            }
            for (int b = 0; b < blocks; ++b)
                storeMeans(weights[b], sums[b], left + places[b], y);
        }
    }
    HWY_INLINE void storeMeans(L weights, const L* sums, int x, int y) const
    {
        const L inverse = L(1.0f) / weights;
        for (int c = 0; c < channels; ++c) {
            const L p = stored(c, x, y);
            const L difference = (sums[c] - weights * p) * inverse;
            const auto differs = abs(difference) > abs(p) * L(sameMean);
            select(differs, p + difference, p).store(output(c, x, y));
        }
    }
    HWY_INLINE float* output(int channel, int x, int y) const
    {
        return block.output[channel] + y * block.outputStride + x;
    }

    /// Mixes a smoothed row towards the sharpened one by scratch.edges.
    void sharpenRow(int left, int width, int y) const
    {
        const L zero(0.0f);
        for (int c = 0; c < channels; ++c) {
            float* sums = scratch.sums[c];
            float* least = scratch.least[c];
            for (int x = -n; x < width + n; x += int(L::count())) {
                L sum(0.0f);
                L lowest = stored(c, left + x, y);
                for (int j = -n; j <= n; ++j) {
                    const L value = stored(c, left + x, y + j);
                    sum = mulAdd(value, L(gaussian[j + n]), sum);
                    lowest = min(lowest, value);
                }
                sum.store(sums + n + x);
                lowest.store(least + n + x);
            }
            for (int x = 0; x < width; x += int(L::count())) {
                const L edge = L::load(scratch.edges + x);
                if (!anyTrue(edge > zero))
                    continue;
                L sum(0.0f);
                L lowest = L::load(least + x);
                for (int i = 0; i <= 2 * n; ++i) {
                    sum = mulAdd(L::load(sums + x + i), L(gaussian[i]), sum);
                    lowest = min(lowest, L::load(least + x + i));
                }
                const L p = stored(c, left + x, y);
                const L sharp = mulAdd(p - sum * L(1 / gaussianSum), L(record.strength), p);
                const L smoothed = L::load(output(c, left + x, y));
                const L mixed = mix(smoothed, sharp, edge);
                const L held = select(lowest >= zero, max(mixed, zero), mixed);
                select(edge > zero, held, smoothed).store(output(c, left + x, y));
            }
        }
    }

    void run() const
    {
        fillLightness();
        for (int left = 0; left < block.width; left += stripWidth) {
            const int width = block.width - left < stripWidth ? block.width - left : stripWidth;
            for (int y = -n; y < 0; ++y)
                fillWeights(left, width, y);
            for (int y = 0; y < block.height; ++y) {
                fillWeights(left, width, y);
                smoothRow(left, width, y);
                if (fillEdges(left, width, y))
                    sharpenRow(left, width, y);
            }
        }
    }
};

template <class L> HWY_INLINE void runNoiseReduction(const void* record, const WindowBlock& block)
{
    // Kept by each thread: a block's scratch is as large as the tiles.
    thread_local std::vector<float> lightness;
    thread_local NoiseScratch scratch;
    const int paddedWidth = block.width + 4 * noiseBorder + rowPadding;
    const auto stride = std::ptrdiff_t((paddedWidth + 15) / 16 * 16);
    const size_t needed = size_t(stride) * size_t(block.height + 2 * noiseBorder) + 2 * rowPadding;
    if (lightness.size() < needed)
        lightness.resize(needed);
    const auto& parameters = *static_cast<const NoiseRecord*>(record);
    float* first = lightness.data() + rowPadding;
    if (block.input[3])
        NoiseReduction<L, false>{parameters, block, first, stride, scratch}.run();
    else
        NoiseReduction<L, true>{parameters, block, first, stride, scratch}.run();
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
