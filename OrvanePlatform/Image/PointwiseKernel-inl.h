// How a pixel program is written. One .cpp for an operation:
//
//   #undef HWY_TARGET_INCLUDE
//   #define HWY_TARGET_INCLUDE "Filters/Exposure.cpp"
//   #include <hwy/foreach_target.h>
//   #include "PointwiseKernel-inl.h"
//
//   HWY_BEFORE_NAMESPACE();
//   namespace orvane::HWY_NAMESPACE {
//   namespace {
//   struct Exposure : StraightKernel<1> {
//       struct Record { float gain; };
//       template <class L>
//       static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in,
//       Place<L>) { return {in[0].r * L(p.gain), ..., in[0].a}; }
//   };
//   ORVANE_KERNEL_RUNS(Exposure)
//   } // namespace
//   } // namespace orvane::HWY_NAMESPACE
//   HWY_AFTER_NAMESPACE();
//
//   #if HWY_ONCE
//   namespace orvane {
//   ORVANE_KERNEL(exposureKernel, Exposure, "exposureAdjust");
//   CIImage CIFilter::exposureAdjust(...)
//   { return applyKernel(exposureKernel, Parameters::of(HWY_NAMESPACE::Exposure::Record{...}),
//   {{input}}); }
//   }
//   #endif
//
// The loop over a row stands here, once. Rows are padded, so there is no tail: every pixel goes
// through the same instructions wherever a tile begins.

#if defined(ORVANE_POINTWISE_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVANE_POINTWISE_KERNEL_INL_H
#undef ORVANE_POINTWISE_KERNEL_INL_H
#else
#define ORVANE_POINTWISE_KERNEL_INL_H
#endif

#include "PixelKernels.h"
#include "Powers-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {

template <class L> struct Pixel {
    L r;
    L g;
    L b;
    L a;

    HWY_INLINE Three<L> rgb() const { return {r, g, b}; }
};

template <class L> HWY_INLINE Pixel<L> pixelOf(const Three<L>& rgb, L a)
{
    return {rgb.r, rgb.g, rgb.b, a};
}

/// A pixel's centre, y up.
template <class L> struct Place {
    L x;
    L y;
};

/// A program over the stored, premultiplied values.
template <int Inputs> struct PremultipliedKernel {
    static constexpr int inputs = Inputs;
    static constexpr bool straight = false;
    static constexpr OpaqueRule rule = OpaqueRule::KeepsAlpha;
    static constexpr Cover cover = Cover::None;
};

/// A program over straight colour: its first input is divided by alpha before and multiplied by the
/// program's own alpha after; a pixel with alpha of 0 or less comes out as zeros.
template <int Inputs> struct StraightKernel {
    static constexpr int inputs = Inputs;
    static constexpr bool straight = true;
    static constexpr OpaqueRule rule = OpaqueRule::KeepsAlpha;
    static constexpr Cover cover = Cover::None;
};

/// Rec. 709-like luma of the built-in operations.
template <class L> HWY_INLINE L luma(L r, L g, L b)
{
    return mulAdd(r, L(0.2125f), mulAdd(g, L(0.7154f), b * L(0.0721f)));
}
/// Luminance as the custom kernels weigh it.
template <class L> HWY_INLINE L luminance(L r, L g, L b)
{
    return mulAdd(r, L(0.2126f), mulAdd(g, L(0.7152f), b * L(0.0722f)));
}

template <class Kernel, class L, bool Opaque>
HWY_INLINE void runPointwise(const void* record, const float* table, const PointwiseRow& row)
{
    using Record = typename Kernel::Record;
    const Record& parameters = *static_cast<const Record*>(record);
    const L zero(0.0f);
    const L one(1.0f);
    const L y(float(row.y) + 0.5f);
    for (int i = 0; i < row.count; i += int(L::count())) {
        Pixel<L> in[Kernel::inputs > 0 ? Kernel::inputs : 1];
        for (int n = 0; n < Kernel::inputs; ++n) {
            in[n].r = L::load(row.inputs[n][0] + i);
            in[n].g = L::load(row.inputs[n][1] + i);
            in[n].b = L::load(row.inputs[n][2] + i);
            in[n].a = Opaque ? one : L::load(row.inputs[n][3] + i);
        }
        const Place<L> place{L::ramp(float(row.x + i) + 0.5f), y};
        Pixel<L> out;
        if constexpr (Kernel::straight && !Opaque) {
            // Below that, 1 / alpha is no number any more.
            const auto visible = in[0].a > L(1e-30f);
            const L alpha = in[0].a;
            const L inverse = one / select(visible, alpha, one);
            in[0].r = select(visible, in[0].r * inverse, zero);
            in[0].g = select(visible, in[0].g * inverse, zero);
            in[0].b = select(visible, in[0].b * inverse, zero);
            out = Kernel::template pixel<L>(parameters, table, in, place);
            out.a = select(visible, out.a, zero);
            out.r = out.r * out.a;
            out.g = out.g * out.a;
            out.b = out.b * out.a;
        } else {
            out = Kernel::template pixel<L>(parameters, table, in, place);
            if constexpr (Kernel::straight && Kernel::rule == OpaqueRule::ChangesAlpha) {
                out.r = out.r * out.a;
                out.g = out.g * out.a;
                out.b = out.b * out.a;
            }
        }
        out.r.store(row.output[0] + i);
        out.g.store(row.output[1] + i);
        out.b.store(row.output[2] + i);
        if constexpr (!Opaque || Kernel::rule == OpaqueRule::ChangesAlpha)
            out.a.store(row.output[3] + i);
    }
}

} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

/// The three compiled forms of a program, for the instruction set being compiled.
#define ORVANE_KERNEL_RUNS(Kernel)                                                                 \
    void run##Kernel##Opaque(const void* record, const float* table, const PointwiseRow& row)      \
    {                                                                                              \
        runPointwise<Kernel, Lanes, true>(record, table, row);                                     \
    }                                                                                              \
    void run##Kernel##General(const void* record, const float* table, const PointwiseRow& row)     \
    {                                                                                              \
        runPointwise<Kernel, Lanes, false>(record, table, row);                                    \
    }                                                                                              \
    [[maybe_unused]] void run##Kernel##Reference(const void* record, const float* table,           \
                                                 const PointwiseRow& row)                          \
    {                                                                                              \
        runPointwise<Kernel, Single, false>(record, table, row);                                   \
    }

/// The program's entry, choosing the instruction set when it first runs; once, in namespace orvane.
/// Further arguments are the last members of PointwiseKernel, where a program has them.
#define ORVANE_KERNEL(variable, Kernel, name, ...)                                                 \
    HWY_EXPORT(run##Kernel##Opaque);                                                               \
    HWY_EXPORT(run##Kernel##General);                                                              \
    static const PointwiseKernel variable                                                          \
    {                                                                                              \
        name, HWY_NAMESPACE::Kernel::inputs, HWY_NAMESPACE::Kernel::rule,                          \
            HWY_NAMESPACE::Kernel::cover,                                                          \
            [](const void* record, const float* table, const PointwiseRow& row) {                  \
                HWY_DYNAMIC_DISPATCH(run##Kernel##Opaque)(record, table, row);                     \
            },                                                                                     \
            [](const void* record, const float* table, const PointwiseRow& row) {                  \
                HWY_DYNAMIC_DISPATCH(run##Kernel##General)(record, table, row);                    \
            },                                                                                     \
            HWY_NAMESPACE::run##Kernel##Reference __VA_OPT__(, ) __VA_ARGS__                       \
    }

#endif
