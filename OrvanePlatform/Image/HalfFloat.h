#pragma once

#include <cstdint>
#include <cstring>

namespace orvane {

/// One IEEE 754 binary16 number as a float; exact.
inline float floatFromHalf(uint16_t half)
{
    const uint32_t sign = uint32_t(half & 0x8000u) << 16;
    const uint32_t exponent = (half >> 10) & 31u;
    const uint32_t fraction = half & 0x3ffu;
    float value;
    if (exponent == 0) {
        value = float(fraction) * 0x1p-24f;
        return sign ? -value : value;
    }
    const uint32_t bits =
        sign | (exponent == 31 ? 0x7f800000u : (exponent + 112) << 23) | (fraction << 13);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace orvane
