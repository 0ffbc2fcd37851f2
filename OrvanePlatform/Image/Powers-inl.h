// Powers of a fixed exponent and the sRGB curves, for single floats, vectors, and three channels of
// either at once.
//
// x^(n/d) = x^k x^(-m/d), k = (n + m) / d. A float's bits read as a number are nearly its
// logarithm, so a line over them gives z, x^(-m/d) but for a factor. Then r = x^m z^d, which takes
// multiplications alone, is that factor to the d; it varies by 1.5 (d = 5) to 2.8 (d = 12). A short
// polynomial for r^(-1/d), fitted for the least relative error over every r that occurs, mends z:
// no division, no table, no range to leave. The relative error stays below 3e-6 for all normal x;
// 0 gives 0; x is 0 or more.

#if defined(ORVANE_POWERS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVANE_POWERS_INL_H
#undef ORVANE_POWERS_INL_H
#else
#define ORVANE_POWERS_INL_H
#endif

#include "Lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {

template <class V> HWY_INLINE V guessedRoot(V bits, float slope, float start)
{
    // In steps of 2^8 bits, and 2^23 added: fromBitNumber's form.
    return fromBitNumber(mulAdd(bits, V(-slope / 256.0f), V(start / 256.0f + 8388608.0f)));
}

/// Coefficients from the highest power down.
template <class V, int Count> HWY_INLINE V polynomial(const float (&c)[Count], V x)
{
    V sum = mulAdd(x, V(c[0]), V(c[1]));
    for (int i = 2; i < Count; ++i)
        sum = mulAdd(sum, x, V(c[i]));
    return sum;
}

template <class V> HWY_INLINE V power5Over12(V x)
{
    constexpr float mend[] = {-1.24551633e-07f, 5.56113991e-06f, -0.000107572909f, 0.00118194858f,
                              -0.00814162754f,  0.0369157717f,   -0.118569009f,    1.08242464f};
    const V z = guessedRoot(bitNumber(x), 7.0f / 12, 1687784448.0f);
    const V b = x * z;
    const V a = b * z;
    const V a3 = a * a * a;
    return b * polynomial(mend, a3 * a3 * x);
}

template <class V> HWY_INLINE V power5Over11(V x)
{
    constexpr float mend[] = {0.00592966704f, -0.0535057299f, 0.206003577f, -0.442650348f,
                              0.587642133f,   -0.530292511f,  1.22687292f};
    const V z = guessedRoot(bitNumber(x), 6.0f / 11, 1645993600.0f);
    const V b = x * z;
    const V a = b * z;
    const V a2 = a * a;
    return b * polynomial(mend, a2 * a2 * (a * b));
}

template <class V> HWY_INLINE V power12Over5(V x)
{
    constexpr float mend[] = {-0.107973978f, 0.599798501f, -1.40787494f,
                              1.82462835f,   -1.48495388f, 1.57637584f};
    const V z = guessedRoot(bitNumber(x), 0.6f, 1703569024.0f);
    const V b = x * z;
    const V a = b * z;
    return b * (x * x) * polynomial(mend, a * a * b);
}

template <class V> HWY_INLINE V power1Over5(V x)
{
    constexpr float mend[] = {-0.0932132676f, 0.53377378f,  -1.29027045f,
                              1.72035813f,    -1.43893707f, 1.5682888f};
    const V z = guessedRoot(bitNumber(x), 0.8f, 1916629120.0f);
    const V b = x * z;
    const V b2 = b * b;
    return b * polynomial(mend, b2 * b2 * z);
}

// ---- The same for all four types: single floats ask the C library ----

template <class V> HWY_INLINE V encodingPower(V x)
{
    if constexpr (V::exact)
        return power(x, Single(1.0f / 2.4f));
    else
        return power5Over12(x);
}
template <class V> HWY_INLINE V decodingPower(V x)
{
    if constexpr (V::exact)
        return power(x, Single(2.4f));
    else
        return power12Over5(x);
}
/// x^(1/2.2) for x of 0 or more.
template <class V> HWY_INLINE V power1Over2p2(V x)
{
    if constexpr (V::exact)
        return power(x, Single(1.0f / 2.2f));
    else
        return power5Over11(x);
}
/// x^0.4545 for x of 0 or more.
template <class V> HWY_INLINE V power0p4545(V x)
{
    if constexpr (V::exact) {
        return power(x, Single(0.4545f));
    } else {
        // 5/11 less 4.5455e-5. That little is worth 4e-4 over 0.0001 .. 1, so the bits are
        // logarithm enough for it; 126.957 takes their mean excess off.
        constexpr float rest = 4.54545455e-5f * 0.69314718f;
        return power5Over11(x)
            * mulAdd(bitNumber(x), V(-rest / 8388608.0f), V(1.0f + rest * 126.957f));
    }
}
/// x^2.2 for x of 0 or more.
template <class V> HWY_INLINE V power2p2(V x)
{
    if constexpr (V::exact)
        return power(x, Single(2.2f));
    else
        return x * x * power1Over5(x);
}
/// x^3.2 for x of 0 or more.
template <class V> HWY_INLINE V power3p2(V x)
{
    if constexpr (V::exact)
        return power(x, Single(3.2f));
    else
        return x * x * (x * power1Over5(x));
}

/// The sRGB encoding (IEC 61966-2-1) of x of 0 or more.
template <class V> HWY_INLINE V encodeSrgbPositive(V x)
{
    const V curve = mulAdd(encodingPower(x), V(1.055f), V(-0.055f));
    return select(x <= V(0.0031308f), x * V(12.92f), curve);
}
/// The same, odd-symmetric and continued above 1 by the same expression.
template <class V> HWY_INLINE V encodeSrgb(V x)
{
    return copySign(encodeSrgbPositive(abs(x)), x);
}
template <class V> HWY_INLINE V decodeSrgb(V x)
{
    const V magnitude = abs(x);
    const V curve = decodingPower((magnitude + V(0.055f)) * V(1.0f / 1.055f));
    return copySign(select(magnitude <= V(0.04045f), magnitude * V(1.0f / 12.92f), curve), x);
}

} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
