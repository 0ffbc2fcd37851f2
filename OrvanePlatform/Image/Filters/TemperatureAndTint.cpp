// temperatureAndTint: rgb' = M rgb, one 3x3 matrix, so it acts on the premultiplied values.
//
//   M = A^-1 diag(target / neutral) A,  A = B N
//   N: linear sRGB to XYZ;  B: XYZ to the cone space of the Bradford adaptation
//
// A white point (kelvin, tint) is found in CIE 1960 uv: Robertson's isotherms (Wyszecki and Stiles,
// "Color Science", table 1(3.11)) give the point of the Planckian locus at the reciprocal
// temperature and the isotherm's direction there; tint moves along it. Every white has Y = 1, which
// keeps the luminance of greys.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/TemperatureAndTint.cpp"
#include <hwy/foreach_target.h>

#include "PointwiseKernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

struct Adaptation : PremultipliedKernel<1> {
    struct Record {
        float m[9]; ///< rows
    };
    template <class L> static HWY_INLINE L row(const float* m, const Pixel<L>& in)
    {
        return mulAdd(in.r, L(m[0]), mulAdd(in.g, L(m[1]), in.b * L(m[2])));
    }
    template <class L>
    static HWY_INLINE Pixel<L> pixel(const Record& p, const float*, const Pixel<L>* in, Place<L>)
    {
        return {row(p.m, in[0]), row(p.m + 3, in[0]), row(p.m + 6, in[0]), in[0].a};
    }
};
ORVANE_KERNEL_RUNS(Adaptation)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace orvane {

ORVANE_KERNEL(adaptationKernel, Adaptation, "temperatureAndTint");

namespace {

/// Distance in uv of one unit of tint; negative, so that a positive tint is greener. Twice as large
/// a value makes a white balance picked on a light grey overshoot.
constexpr double kTintScale = -1.0 / 6000.0;
constexpr double lowestKelvin = 1000;

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<Vector3, 3>;

struct Isotherm {
    double mired;
    double u;
    double v;
    double slope;
};
constexpr Isotherm isotherms[] = {
    {0, 0.18006, 0.26352, -0.24341},   {10, 0.18066, 0.26589, -0.25479},
    {20, 0.18133, 0.26846, -0.26876},  {30, 0.18208, 0.27119, -0.28539},
    {40, 0.18293, 0.27407, -0.30470},  {50, 0.18388, 0.27709, -0.32675},
    {60, 0.18494, 0.28021, -0.35156},  {70, 0.18611, 0.28342, -0.37915},
    {80, 0.18740, 0.28668, -0.40955},  {90, 0.18880, 0.28997, -0.44278},
    {100, 0.19032, 0.29326, -0.47888}, {125, 0.19462, 0.30141, -0.58204},
    {150, 0.19962, 0.30921, -0.70471}, {175, 0.20525, 0.31647, -0.84901},
    {200, 0.21142, 0.32312, -1.0182},  {225, 0.21807, 0.32909, -1.2168},
    {250, 0.22511, 0.33439, -1.4512},  {275, 0.23247, 0.33904, -1.7298},
    {300, 0.24010, 0.34308, -2.0637},  {325, 0.24792, 0.34655, -2.4681},
    {350, 0.25591, 0.34951, -2.9641},  {375, 0.26400, 0.35200, -3.5814},
    {400, 0.27218, 0.35407, -4.3633},  {425, 0.28039, 0.35577, -5.3762},
    {450, 0.28863, 0.35714, -6.7262},  {475, 0.29685, 0.35823, -8.5955},
    {500, 0.30505, 0.35907, -11.324},  {525, 0.31320, 0.35968, -15.628},
    {550, 0.32129, 0.36011, -23.325},  {575, 0.32931, 0.36038, -40.770},
    {600, 0.33724, 0.36051, -116.45},
};

Vector3 product(const Matrix3& m, const Vector3& v)
{
    Vector3 result{};
    for (size_t i = 0; i < 3; ++i)
        result[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
    return result;
}

Matrix3 product(const Matrix3& a, const Matrix3& b)
{
    Matrix3 result{};
    for (size_t i = 0; i < 3; ++i) {
        for (size_t j = 0; j < 3; ++j)
            result[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    }
    return result;
}

Matrix3 inverse(const Matrix3& m)
{
    Matrix3 cofactors{};
    for (size_t i = 0; i < 3; ++i) {
        const Vector3& p = m[(i + 1) % 3];
        const Vector3& q = m[(i + 2) % 3];
        for (size_t j = 0; j < 3; ++j)
            cofactors[j][i] = p[(j + 1) % 3] * q[(j + 2) % 3] - p[(j + 2) % 3] * q[(j + 1) % 3];
    }
    const double determinant =
        m[0][0] * cofactors[0][0] + m[0][1] * cofactors[1][0] + m[0][2] * cofactors[2][0];
    for (Vector3& row : cofactors) {
        for (double& entry : row)
            entry /= determinant;
    }
    return cofactors;
}

/// XYZ of a chromaticity at Y = 1.
Vector3 xyzOf(double x, double y)
{
    return {x / y, 1, (1 - x - y) / y};
}

/// The Bradford adaptation's cone responses.
constexpr Matrix3 conesFromXyz{
    {{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};

/// Of linear sRGB.
Matrix3 conesFromRgb()
{
    const Vector3 primaries[] = {xyzOf(0.64, 0.33), xyzOf(0.30, 0.60), xyzOf(0.15, 0.06)};
    Matrix3 xyzFromRgb{};
    for (size_t i = 0; i < 3; ++i) {
        for (size_t j = 0; j < 3; ++j)
            xyzFromRgb[i][j] = primaries[j][i];
    }
    const Vector3 amounts = product(inverse(xyzFromRgb), xyzOf(0.3127, 0.3290));
    for (Vector3& row : xyzFromRgb) {
        for (size_t j = 0; j < 3; ++j)
            row[j] *= amounts[j];
    }
    return product(conesFromXyz, xyzFromRgb);
}

Vector3 xyzOf(const CIFilter::WhitePoint& white)
{
    const double mired = 1e6 / white.kelvin;
    size_t i = 0;
    while (i + 2 < std::size(isotherms) && isotherms[i + 1].mired <= mired)
        ++i;
    const Isotherm& a = isotherms[i];
    const Isotherm& b = isotherms[i + 1];
    const double f = (b.mired - mired) / (b.mired - a.mired);
    const double la = std::hypot(1, a.slope);
    const double lb = std::hypot(1, b.slope);
    const double du = f / la + (1 - f) / lb;
    const double dv = f * a.slope / la + (1 - f) * b.slope / lb;
    const double distance = white.tint * kTintScale / std::hypot(du, dv);
    const double u = a.u * f + b.u * (1 - f) + du * distance;
    const double v = a.v * f + b.v * (1 - f) + dv * distance;
    const double scale = u - 4 * v + 2;
    return xyzOf(1.5 * u / scale, v / scale);
}

CIFilter::WhitePoint held(const CIFilter::WhitePoint& white)
{
    return {std::max(double(float(white.kelvin)), lowestKelvin), double(float(white.tint))};
}

} // namespace

CIImage CIFilter::temperatureAndTint(const CIImage& input, WhitePoint neutral, WhitePoint target)
{
    const WhitePoint seen = held(neutral);
    const WhitePoint wanted = held(target);
    const bool finite = std::isfinite(seen.kelvin) && std::isfinite(wanted.kelvin);
    if (!finite || (seen.kelvin == wanted.kelvin && seen.tint == wanted.tint))
        return input;
    static const Matrix3 toCones = conesFromRgb();
    static const Matrix3 fromCones = inverse(toCones);
    const Vector3 from = product(conesFromXyz, xyzOf(seen));
    const Vector3 to = product(conesFromXyz, xyzOf(wanted));
    Matrix3 scaled = toCones;
    for (size_t i = 0; i < 3; ++i) {
        for (double& entry : scaled[i])
            entry *= to[i] / from[i];
    }
    const Matrix3 matrix = product(fromCones, scaled);
    HWY_NAMESPACE::Adaptation::Record record{};
    for (size_t i = 0; i < 9; ++i) {
        record.m[i] = float(matrix[i / 3][i % 3]);
        if (!std::isfinite(record.m[i]))
            return input;
    }
    return applyKernel(adaptationKernel, Parameters::of(record), {{input}});
}

} // namespace orvane

#endif
