// Intermediates in 16 bits: the sign, and 4 + 11 digits of the float |x| + 1/1024.
//
// A half spends 5 digits on an exponent that reaches to 65504. Light in the working space, white
// being 1, needs no more than 64; the digit saved halves the error. The sum takes the place of what
// a half does below its smallest exponent: it is at least 1/1024, so its exponent has 16 values,
// and towards 0 the steps end at 2^-21 by themselves. Both ways are a few whole-number operations.
//
//     |x|          largest error
//     64           all beyond is 63.983
//     1 to 2       2^-12 (of a half: 2^-11)
//     1/2 to 1     2^-13
//     ...
//     to 2^-10     2^-22, eight ten-thousandths of the narrowest level of 8-bit sRGB
//
// Multiples of 1/1024 below 4 stay as they are, 0 with its sign, and so do all numbers that came
// from here. What is no number becomes 64 with its sign.
//
// Included from files that are compiled once for each instruction set, as Lanes-inl.h is.

#if defined(ORVANE_COMPACT_FLOAT_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVANE_COMPACT_FLOAT_INL_H
#undef ORVANE_COMPACT_FLOAT_INL_H
#else
#define ORVANE_COMPACT_FLOAT_INL_H
#endif

#include "Lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {

constexpr float compactOffset = 0x1p-10f;
constexpr int compactOffsetBits = (127 - 10) << 23;
/// Of a float's 23 digits after the point 12 are dropped.
constexpr int compactDropped = 12;

HWY_INLINE void storeCompact(Lanes x, uint16_t* to)
{
    const IntTag i;
    const hn::Rebind<uint16_t, FloatTag> compact;
    const auto sum = hn::BitCast(i, hn::Add(hn::Abs(x.v), hn::Set(FloatTag(), compactOffset)));
    const auto rounded = hn::Add(sum, hn::Set(i, (1 << (compactDropped - 1)) - compactOffsetBits));
    // As whole numbers, infinity and what is no number are larger than any other float.
    const auto digits = hn::Min(hn::ShiftRight<compactDropped>(rounded), hn::Set(i, 0x7fff));
    const auto sign = hn::ShiftRight<16>(hn::BitCast(i, x.v));
    const auto whole = hn::OrAnd(digits, sign, hn::Set(i, 0x8000));
    hn::StoreU(hn::TruncateTo(compact, hn::BitCast(hn::RebindToUnsigned<IntTag>(), whole)), compact,
               to);
}

HWY_INLINE Lanes loadCompact(const uint16_t* from)
{
    const IntTag i;
    const hn::Rebind<int16_t, FloatTag> compact;
    // The sign comes to stand where a float's does.
    const auto whole = hn::PromoteTo(
        i, hn::LoadU(compact, static_cast<const int16_t*>(static_cast<const void*>(from))));
    const auto digits =
        hn::And(hn::ShiftLeft<compactDropped>(whole), hn::Set(i, 0x7fff << compactDropped));
    const auto sum = hn::BitCast(FloatTag(), hn::Add(digits, hn::Set(i, compactOffsetBits)));
    const auto magnitude = hn::Sub(sum, hn::Set(FloatTag(), compactOffset));
    return hn::CopySignToAbs(magnitude, hn::BitCast(FloatTag(), whole));
}

} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
