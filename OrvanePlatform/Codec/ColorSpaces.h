#pragma once

#include "Bitmap.h"

#include <array>
#include <functional>
#include <optional>

namespace orvane {

using Matrix3 = std::array<double, 9>; ///< row-major

Matrix3 multiplied(const Matrix3& a, const Matrix3& b);
/// Absent when there is none.
std::optional<Matrix3> inverse(const Matrix3& m);

struct Chromaticity {
    double x = 0;
    double y = 0;
};

/// The colours that red, green, blue and white stand for, in CIE 1931 xy.
struct Primaries {
    Chromaticity red, green, blue, white;
};

constexpr Chromaticity whiteD65{0.3127, 0.3290};
/// Published values: IEC 61966-2-1, Adobe RGB (1998) 4.3.1, SMPTE EG 432-1, ITU-R BT.2020.
constexpr Primaries srgbPrimaries{{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, whiteD65};
constexpr Primaries adobeRgbPrimaries{{0.64, 0.33}, {0.21, 0.71}, {0.15, 0.06}, whiteD65};
constexpr Primaries displayP3Primaries{{0.68, 0.32}, {0.265, 0.69}, {0.15, 0.06}, whiteD65};
constexpr Primaries rec2020Primaries{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, whiteD65};

/// Linear RGB of the primaries to CIE XYZ of the D50 white, Bradford-adapted. Absent when the
/// primaries span no triangle.
std::optional<Matrix3> toXyzD50(const Primaries& primaries);
/// XYZ of the D50 white to linear sRGB.
const Matrix3& srgbFromXyzD50();

/// Encoded 0..1 to linear light.
using TransferFunction = std::function<double(double)>;

double srgbToLinear(double encoded); ///< odd-symmetric beyond 0..1

/// Tables for a bitmap of the type. A curve that is sRGB's to within a sixteenth of an 8-bit level
/// leaves the tables empty, a matrix that is the identity to within the rounding of profiles is
/// left out, so that sRGB under any name takes the fast path.
SampleConversion conversionFrom(const std::array<TransferFunction, 3>& curves,
                                const Matrix3& toLinearSrgb, SampleType type);
/// The same with one curve for the three channels. Absent when the primaries are unusable.
std::optional<SampleConversion> conversionFrom(const TransferFunction& curve,
                                               const Primaries& primaries, SampleType type);

/// Adobe RGB (1998): gamma 2.19921875.
SampleConversion adobeRgbConversion(SampleType type);
/// Samples that are proportional to light, in sRGB's primaries.
SampleConversion linearConversion(SampleType type);

} // namespace orvane
