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
    static HWY_INLINE Lanes ramp(float first)
    {
        // Iota puts the numbers together one by one: 6 cycles a pixel with AVX2.
        alignas(64) static constexpr float steps[] = {0, 1, 2,  3,  4,  5,  6,  7,
                                                      8, 9, 10, 11, 12, 13, 14, 15};
        return hn::Add(hn::Set(FloatTag(), first), hn::Load(FloatTag(), steps));
    }
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
/// The whole numbers of a vector, each 0 to 2^22, as integers. ConvertTo would also mend what lies
/// beyond an integer's range, which takes longer than the conversion.
HWY_INLINE hn::Vec<IntTag> integers(Lanes whole)
{
    const IntTag i;
    return hn::Sub(hn::BitCast(i, (whole + Lanes(8388608.0f)).v), hn::Set(i, 0x4b000000));
}

/// table[index] for whole indices of 0 or more.
HWY_INLINE Lanes lookup(const float* table, Lanes index)
{
    return hn::GatherIndex(FloatTag(), table, integers(index));
}

/// low = table[index], high = table[index + 1]. Both come in one load of eight bytes; processors
/// that gather slowly take 2.5 times as long with two gathers.
HWY_INLINE void lookupPair(const float* table, Lanes index, Lanes& low, Lanes& high)
{
#if HWY_TARGET == HWY_SCALAR
    low = lookup(table, index);
    high = lookup(table + 1, index);
#else
    const hn::FixedTag<float, 2> pair;
    const hn::FixedTag<float, 4> four;
    constexpr size_t n = hn::MaxLanes(FloatTag());
    HWY_ALIGN int32_t at[n];
    HWY_ALIGN float lows[n];
    HWY_ALIGN float highs[n];
    hn::Store(integers(index), IntTag(), at);
    const auto two = [&](size_t i) {
        return hn::Combine(four, hn::LoadU(pair, table + at[i + 1]),
                           hn::LoadU(pair, table + at[i]));
    };
    for (size_t i = 0; i < n; i += 4) {
        const auto first = two(i);
        const auto second = two(i + 2);
        hn::Store(hn::ConcatEven(four, second, first), four, lows + i);
        hn::Store(hn::ConcatOdd(four, second, first), four, highs + i);
    }
    low = hn::Load(FloatTag(), lows);
    high = hn::Load(FloatTag(), highs);
#endif
}

/// log2 of a positive normal number, to 1e-7 + 1 ulp. The mantissa m in [sqrt 1/2, sqrt 2) goes
/// through 2 atanh(t) / ln 2 with t = (m - 1) / (m + 1): an odd polynomial, relative error 7e-10.
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
    Lanes series = mulAdd(t2, Lanes(0.4317379f), Lanes(0.576714337f));
    series = mulAdd(series, t2, Lanes(0.961798847f));
    series = mulAdd(series, t2, Lanes(2.88539004f));
    return mulAdd(series, t, Lanes(hn::ConvertTo(FloatTag(), exponent)));
}

/// fraction * 2^whole, for -126 <= x <= 127.99 with x = whole + f, |f| <= 1/2, and fraction = 2^f.
template <class Fraction> HWY_INLINE Lanes exp2Split(Lanes x, const Fraction& fraction)
{
    // Next to 1.5 * 2^23 floats are whole numbers, and their low bits count them.
    const Lanes shift(12582912.0f);
    const Lanes shifted = x + shift;
    const Lanes series = fraction(x - (shifted - shift));
    const IntTag i;
    const auto exponent = hn::ShiftLeft<23>(hn::BitCast(i, shifted.v));
    return hn::BitCast(FloatTag(), hn::Add(hn::BitCast(i, series.v), exponent));
}

/// 2^x for x held to -125.5 .. 127.49; relative error below 3e-7.
HWY_INLINE Lanes exp2(Lanes x)
{
    return exp2Split(min(max(x, Lanes(-125.5f)), Lanes(127.49f)), [](Lanes f) {
        Lanes series = mulAdd(f, Lanes(0.00132764725f), Lanes(0.00967554096f));
        series = mulAdd(series, f, Lanes(0.0555071309f));
        series = mulAdd(series, f, Lanes(0.240221202f));
        series = mulAdd(series, f, Lanes(0.693146944f));
        return mulAdd(series, f, Lanes(1.0f));
    });
}

/// 2^x for x <= 127, held to -100 and more; relative error below 3e-6. For weights.
HWY_INLINE Lanes exp2Weight(Lanes x)
{
    return exp2Split(max(x, Lanes(-100.0f)), [](Lanes f) {
        Lanes series = mulAdd(f, Lanes(0.00957010221f), Lanes(0.0559178591f));
        series = mulAdd(series, f, Lanes(0.240247443f));
        series = mulAdd(series, f, Lanes(0.693121791f));
        return mulAdd(series, f, Lanes(0.999999285f));
    });
}

/// x^power for any finite x: numbers below 0 count as 0, and 0^power is 0. Relative error below
/// 4e-6 for results of 1e-20 and more.
HWY_INLINE Lanes power(Lanes x, Lanes exponent)
{
    const Lanes tiny(1e-37f);
    const Lanes result = exp2(exponent * log2(max(x, tiny)));
    return select(x > tiny, result, Lanes(0.0f));
}

/// The bits of a float of 0 or more as a number n: log2 x is n / 2^23 - 127, and up to 0.086 more.
HWY_INLINE Lanes bitNumber(Lanes x)
{
    return hn::ConvertTo(FloatTag(), hn::BitCast(IntTag(), x.v));
}
/// The float whose bits are 256 (n - 2^23), n being rounded to a whole number; 2^23 <= n < 2^24.
HWY_INLINE Lanes fromBitNumber(Lanes n)
{
    return hn::BitCast(FloatTag(), hn::ShiftLeft<8>(hn::BitCast(IntTag(), n.v)));
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
inline void lookupPair(const float* table, Single index, Single& low, Single& high)
{
    low = lookup(table, index);
    high = lookup(table + 1, index);
}
inline Single log2(Single x)
{
    return std::log2(x.v);
}
inline Single exp2(Single x)
{
    return std::exp2(x.v);
}
inline Single exp2Weight(Single x)
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

// ---- Three channels at once ----

/// The same step for three channels stands side by side, so that each hides the others' waiting:
/// a chain of 20 steps for one channel after another keeps half of the machine idle.
template <class L> struct Three {
    L r;
    L g;
    L b;

    static constexpr bool exact = L::exact;

    Three() = default;
    HWY_INLINE Three(L red, L green, L blue)
        : r(red)
        , g(green)
        , b(blue)
    {
    }
    explicit HWY_INLINE Three(float all)
        : Three(L(all), L(all), L(all))
    {
    }
};

template <class Mask> struct ThreeMask {
    Mask r;
    Mask g;
    Mask b;
};

template <class L> HWY_INLINE Three<L> operator+(Three<L> a, Three<L> b)
{
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}
template <class L> HWY_INLINE Three<L> operator-(Three<L> a, Three<L> b)
{
    return {a.r - b.r, a.g - b.g, a.b - b.b};
}
template <class L> HWY_INLINE Three<L> operator*(Three<L> a, Three<L> b)
{
    return {a.r * b.r, a.g * b.g, a.b * b.b};
}
template <class L> HWY_INLINE Three<L> operator*(Three<L> a, L b)
{
    return {a.r * b, a.g * b, a.b * b};
}
template <class L> HWY_INLINE auto operator<=(Three<L> a, Three<L> b)
{
    return ThreeMask<decltype(a.r <= b.r)>{a.r <= b.r, a.g <= b.g, a.b <= b.b};
}
template <class L> HWY_INLINE auto operator>(Three<L> a, Three<L> b)
{
    return ThreeMask<decltype(a.r > b.r)>{a.r > b.r, a.g > b.g, a.b > b.b};
}
template <class Mask, class L>
HWY_INLINE Three<L> select(ThreeMask<Mask> m, Three<L> yes, Three<L> no)
{
    return {select(m.r, yes.r, no.r), select(m.g, yes.g, no.g), select(m.b, yes.b, no.b)};
}
template <class L> HWY_INLINE Three<L> min(Three<L> a, Three<L> b)
{
    return {min(a.r, b.r), min(a.g, b.g), min(a.b, b.b)};
}
template <class L> HWY_INLINE Three<L> max(Three<L> a, Three<L> b)
{
    return {max(a.r, b.r), max(a.g, b.g), max(a.b, b.b)};
}
template <class L> HWY_INLINE Three<L> abs(Three<L> a)
{
    return {abs(a.r), abs(a.g), abs(a.b)};
}
template <class L> HWY_INLINE Three<L> floor(Three<L> a)
{
    return {floor(a.r), floor(a.g), floor(a.b)};
}
template <class L> HWY_INLINE Three<L> copySign(Three<L> magnitude, Three<L> sign)
{
    return {copySign(magnitude.r, sign.r), copySign(magnitude.g, sign.g),
            copySign(magnitude.b, sign.b)};
}
template <class L> HWY_INLINE Three<L> mulAdd(Three<L> a, Three<L> b, Three<L> c)
{
    return {mulAdd(a.r, b.r, c.r), mulAdd(a.g, b.g, c.g), mulAdd(a.b, b.b, c.b)};
}
template <class L> HWY_INLINE Three<L> bitNumber(Three<L> x)
{
    return {bitNumber(x.r), bitNumber(x.g), bitNumber(x.b)};
}
template <class L> HWY_INLINE Three<L> fromBitNumber(Three<L> n)
{
    return {fromBitNumber(n.r), fromBitNumber(n.g), fromBitNumber(n.b)};
}
template <class L> HWY_INLINE Three<L> power(Three<L> x, L exponent)
{
    return {power(x.r, exponent), power(x.g, exponent), power(x.b, exponent)};
}

} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
