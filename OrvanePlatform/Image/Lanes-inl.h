// Arithmetic that a pixel program is written in: `Lanes`, a vector of floats of the instruction set
// being compiled, and `Single`, one float. Both have the same operations, so a program is one
// template. Single uses the C library where Lanes uses polynomials: that makes the reference an
// independent one.

#if defined(ORVANE_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVANE_LANES_INL_H
#undef ORVANE_LANES_INL_H
#else
#define ORVANE_LANES_INL_H
#endif

#include <hwy/highway.h>

#include <cmath>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using FloatTag = hn::ScalableTag<float>;
using FloatVector = hn::Vec<FloatTag>;
using IntTag = hn::RebindToSigned<FloatTag>;

struct Lanes;

struct LanesMask {
    hn::Mask<FloatTag> m;

    HWY_INLINE LanesMask operator&(LanesMask o) const { return {hn::And(m, o.m)}; }
    HWY_INLINE LanesMask operator|(LanesMask o) const { return {hn::Or(m, o.m)}; }
};

struct Lanes {
    FloatVector v;

    static constexpr bool exact = false;
    static HWY_INLINE size_t count() { return hn::Lanes(FloatTag()); }

    Lanes() = default;
    HWY_INLINE Lanes(FloatVector vector)
        : v(vector)
    {
    }
    HWY_INLINE Lanes(float x)
        : v(hn::Set(FloatTag(), x))
    {
    }
    static HWY_INLINE Lanes load(const float* p) { return hn::LoadU(FloatTag(), p); }
    HWY_INLINE void store(float* p) const { hn::StoreU(v, FloatTag(), p); }
    /// first, first + 1, first + 2, ...
    static HWY_INLINE Lanes ramp(float first) { return hn::Iota(FloatTag(), first); }
};

HWY_INLINE Lanes operator+(Lanes a, Lanes b)
{
    return hn::Add(a.v, b.v);
}
HWY_INLINE Lanes operator-(Lanes a, Lanes b)
{
    return hn::Sub(a.v, b.v);
}
HWY_INLINE Lanes operator*(Lanes a, Lanes b)
{
    return hn::Mul(a.v, b.v);
}
HWY_INLINE Lanes operator/(Lanes a, Lanes b)
{
    return hn::Div(a.v, b.v);
}
HWY_INLINE Lanes operator-(Lanes a)
{
    return hn::Neg(a.v);
}
HWY_INLINE LanesMask operator<(Lanes a, Lanes b)
{
    return {hn::Lt(a.v, b.v)};
}
HWY_INLINE LanesMask operator<=(Lanes a, Lanes b)
{
    return {hn::Le(a.v, b.v)};
}
HWY_INLINE LanesMask operator>(Lanes a, Lanes b)
{
    return {hn::Gt(a.v, b.v)};
}
HWY_INLINE LanesMask operator>=(Lanes a, Lanes b)
{
    return {hn::Ge(a.v, b.v)};
}
HWY_INLINE LanesMask equal(Lanes a, Lanes b)
{
    return {hn::Eq(a.v, b.v)};
}
HWY_INLINE Lanes select(LanesMask m, Lanes yes, Lanes no)
{
    return hn::IfThenElse(m.m, yes.v, no.v);
}
HWY_INLINE Lanes min(Lanes a, Lanes b)
{
    return hn::Min(a.v, b.v);
}
HWY_INLINE Lanes max(Lanes a, Lanes b)
{
    return hn::Max(a.v, b.v);
}
HWY_INLINE Lanes abs(Lanes a)
{
    return hn::Abs(a.v);
}
HWY_INLINE Lanes floor(Lanes a)
{
    return hn::Floor(a.v);
}
HWY_INLINE Lanes sqrt(Lanes a)
{
    return hn::Sqrt(a.v);
}
/// a * b + c, in one rounding where the machine can.
HWY_INLINE Lanes mulAdd(Lanes a, Lanes b, Lanes c)
{
    return hn::MulAdd(a.v, b.v, c.v);
}
HWY_INLINE bool anyTrue(LanesMask m)
{
    return !hn::AllFalse(FloatTag(), m.m);
}
HWY_INLINE Lanes copySign(Lanes magnitude, Lanes sign)
{
    return hn::CopySign(magnitude.v, sign.v);
}
/// table[int(index)] for indices of 0 or more.
HWY_INLINE Lanes lookup(const float* table, Lanes index)
{
    return hn::GatherIndex(FloatTag(), table, hn::ConvertTo(IntTag(), index.v));
}

/// log2 of a positive normal number, to 1e-7 + 1 ulp. The mantissa m in [sqrt 1/2, sqrt 2) goes
/// through 2 atanh((m - 1) / (m + 1)) / ln 2, whose series is cut after the 9th power (error 2e-9).
HWY_INLINE Lanes log2(Lanes x)
{
    const IntTag i;
    const auto bits = hn::BitCast(i, x.v);
    // Adding the distance from sqrt(1/2) to 1 moves the exponent's step to sqrt(1/2).
    const auto shifted = hn::Add(bits, hn::Set(i, 0x3f800000 - 0x3f3504f3));
    const auto exponent = hn::Sub(hn::ShiftRight<23>(shifted), hn::Set(i, 127));
    const Lanes m = hn::BitCast(FloatTag(), hn::Sub(bits, hn::ShiftLeft<23>(exponent)));
    const Lanes t = (m - Lanes(1.0f)) / (m + Lanes(1.0f));
    const Lanes t2 = t * t;
    Lanes series = mulAdd(t2, Lanes(0.320598894f), Lanes(0.412198583f));
    series = mulAdd(series, t2, Lanes(0.577078016f));
    series = mulAdd(series, t2, Lanes(0.961796694f));
    series = mulAdd(series, t2, Lanes(2.885390082f));
    return mulAdd(series, t, Lanes(hn::ConvertTo(FloatTag(), exponent)));
}

/// 2^x for x held to -126 .. 127.99; relative error below 3e-7. Taylor's series about the nearest
/// whole number, cut after the 6th power.
HWY_INLINE Lanes exp2(Lanes x)
{
    const Lanes held = min(max(x, Lanes(-126.0f)), Lanes(127.99f));
    const Lanes whole = floor(held + Lanes(0.5f));
    const Lanes f = held - whole;
    Lanes series = mulAdd(f, Lanes(1.54035304e-4f), Lanes(1.33335581e-3f));
    series = mulAdd(series, f, Lanes(9.61812911e-3f));
    series = mulAdd(series, f, Lanes(5.55041087e-2f));
    series = mulAdd(series, f, Lanes(2.40226507e-1f));
    series = mulAdd(series, f, Lanes(6.93147181e-1f));
    series = mulAdd(series, f, Lanes(1.0f));
    const IntTag i;
    const auto scale = hn::ShiftLeft<23>(hn::Add(hn::ConvertTo(i, whole.v), hn::Set(i, 127)));
    return series * Lanes(hn::BitCast(FloatTag(), scale));
}

/// x^power for any finite x: numbers below 0 count as 0, and 0^power is 0. Relative error below
/// 4e-6 for results of 1e-20 and more.
HWY_INLINE Lanes power(Lanes x, Lanes exponent)
{
    const Lanes tiny(1e-37f);
    const Lanes result = exp2(exponent * log2(max(x, tiny)));
    return select(x > tiny, result, Lanes(0.0f));
}

// ---- The same, one float at a time ----

struct Single {
    float v;

    static constexpr bool exact = true;
    static size_t count() { return 1; }

    Single() = default;
    Single(float x)
        : v(x)
    {
    }
    static Single load(const float* p) { return *p; }
    void store(float* p) const { *p = v; }
    static Single ramp(float first) { return first; }
};

inline Single operator+(Single a, Single b)
{
    return a.v + b.v;
}
inline Single operator-(Single a, Single b)
{
    return a.v - b.v;
}
inline Single operator*(Single a, Single b)
{
    return a.v * b.v;
}
inline Single operator/(Single a, Single b)
{
    return a.v / b.v;
}
inline Single operator-(Single a)
{
    return -a.v;
}
inline bool operator<(Single a, Single b)
{
    return a.v < b.v;
}
inline bool operator<=(Single a, Single b)
{
    return a.v <= b.v;
}
inline bool operator>(Single a, Single b)
{
    return a.v > b.v;
}
inline bool operator>=(Single a, Single b)
{
    return a.v >= b.v;
}
inline bool equal(Single a, Single b)
{
    return a.v == b.v;
}
inline Single select(bool m, Single yes, Single no)
{
    return m ? yes : no;
}
inline Single min(Single a, Single b)
{
    return b.v < a.v ? b : a;
}
inline Single max(Single a, Single b)
{
    return a.v < b.v ? b : a;
}
inline Single abs(Single a)
{
    return std::fabs(a.v);
}
inline Single floor(Single a)
{
    return std::floor(a.v);
}
inline Single sqrt(Single a)
{
    return std::sqrt(a.v);
}
inline Single mulAdd(Single a, Single b, Single c)
{
    return a.v * b.v + c.v;
}
inline bool anyTrue(bool m)
{
    return m;
}
inline Single copySign(Single magnitude, Single sign)
{
    return std::copysign(magnitude.v, sign.v);
}
inline Single lookup(const float* table, Single index)
{
    return table[int(index.v)];
}
inline Single log2(Single x)
{
    return std::log2(x.v);
}
inline Single exp2(Single x)
{
    return std::exp2(x.v);
}
inline Single power(Single x, Single exponent)
{
    return x.v > 0 ? std::pow(x.v, exponent.v) : 0.0f;
}

// ---- Written once for both ----

template <class L> HWY_INLINE L clamp(L x, L low, L high)
{
    return min(max(x, low), high);
}
template <class L> HWY_INLINE L mix(L a, L b, L t)
{
    return mulAdd(b - a, t, a);
}
/// 0 up to e0, 1 from e1 on, 3t^2 - 2t^3 between.
template <class L> HWY_INLINE L smoothstep(L e0, L e1, L x)
{
    const L t = clamp((x - e0) / (e1 - e0), L(0.0f), L(1.0f));
    return t * t * (L(3.0f) - L(2.0f) * t);
}

/// The sRGB encoding (IEC 61966-2-1), odd-symmetric and continued above 1 by the same expression.
template <class L> HWY_INLINE L encodeSrgb(L x)
{
    const L magnitude = abs(x);
    const L curve = mulAdd(power(magnitude, L(1.0f / 2.4f)), L(1.055f), L(-0.055f));
    return copySign(select(magnitude <= L(0.0031308f), magnitude * L(12.92f), curve), x);
}
template <class L> HWY_INLINE L decodeSrgb(L x)
{
    const L magnitude = abs(x);
    const L curve = power((magnitude + L(0.055f)) * L(1.0f / 1.055f), L(2.4f));
    return copySign(select(magnitude <= L(0.04045f), magnitude * L(1.0f / 12.92f), curve), x);
}

} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
