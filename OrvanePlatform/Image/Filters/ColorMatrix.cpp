// colorMatrix: on the straight four-vector, out_i = dot(row_i, (r, g, b, a)) + bias_i, then
// premultiplied by the new alpha. Pixels that were transparent stay so, bias or not.
//
// With the usual last row (0, 0, 0, 1) alpha does not change; that form is a kernel of its own, so
// that opaque pictures stay opaque. So is a factor and an addend for each channel: on the stored
// values it is factor c + addend a, and nothing need be divided by alpha.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/ColorMatrix.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct MatrixRecord {
    float m[4][5]; ///< rows over r, g, b, a, 1
};

template <class L> HWY_INLINE L matrixRow(const float* m, const Pixel<L>& in)
{
    const L constant = mulAdd(in.a, L(m[3]), L(m[4]));
    return mulAdd(in.r, L(m[0]), mulAdd(in.g, L(m[1]), mulAdd(in.b, L(m[2]), constant)));
}

struct ColourRows : StraightKernel<1> {
    using Record = MatrixRecord;
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        return {matrixRow(p.m[0], in[0]), matrixRow(p.m[1], in[0]), matrixRow(p.m[2], in[0]),
                in[0].a};
    }
};
ORVANE_KERNEL_RUNS(ColourRows)

struct Scales : PremultipliedKernel<1> {
    struct Record {
        float factors[3];
        float addends[3];
    };
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        const L zero(0.0f);
        const auto visible = in->a > L(1e-30f);
        const auto scaled = [&](L c, int i) HWY_ATTR {
            return select(visible, mulAdd(c, L(p.factors[i]), in->a * L(p.addends[i])), zero);
        };
        return {scaled(in->r, 0), scaled(in->g, 1), scaled(in->b, 2), select(visible, in->a, zero)};
    }
};
ORVANE_KERNEL_RUNS(Scales)

struct AllRows : StraightKernel<1> {
    static constexpr OpaqueRule rule = OpaqueRule::ChangesAlpha;
    using Record = MatrixRecord;
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        return {matrixRow(p.m[0], in[0]), matrixRow(p.m[1], in[0]), matrixRow(p.m[2], in[0]),
                matrixRow(p.m[3], in[0])};
    }
};
ORVANE_KERNEL_RUNS(AllRows)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>

namespace orvane {

ORVANE_KERNEL(colourRowsKernel, ColourRows, "colorMatrix");
ORVANE_KERNEL(scalesKernel, Scales, "colorMatrix by channel");
ORVANE_KERNEL(allRowsKernel, AllRows, "colorMatrix with alpha");

CIImage CIFilter::colorMatrix(const CIImage& input, const ColorMatrix& matrix)
{
    const std::array<double, 4>* rows[] = {&matrix.red, &matrix.green, &matrix.blue, &matrix.alpha};
    HWY_NAMESPACE::MatrixRecord record{};
    bool sameColour = true;
    bool sameAlpha = true;
    bool byChannel = true;
    for (size_t i = 0; i < 4; ++i) {
        std::copy(rows[i]->begin(), rows[i]->end(), record.m[i]);
        record.m[i][4] = float(matrix.bias[i]);
        for (size_t j = 0; j < 5; ++j) {
            if (!std::isfinite(record.m[i][j]))
                return input;
            const bool same = record.m[i][j] == (i == j ? 1.0f : 0.0f);
            (i == 3 ? sameAlpha : sameColour) &= same;
            byChannel &= i == 3 || i == j || j == 4 || record.m[i][j] == 0;
        }
    }
    if (sameColour && sameAlpha)
        return input;
    if (sameAlpha && byChannel) {
        HWY_NAMESPACE::Scales::Record scales;
        for (size_t i = 0; i < 3; ++i) {
            scales.factors[i] = record.m[i][i];
            scales.addends[i] = record.m[i][4];
        }
        return applyKernel(scalesKernel, Parameters::of(scales), {{input}});
    }
    return applyKernel(sameAlpha ? colourRowsKernel : allRowsKernel, Parameters::of(record),
                       {{input}});
}

} // namespace orvane

#endif
