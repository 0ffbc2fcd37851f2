#include "ColorSpaces.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr std::array<double, 3> d50 = {0.9642, 1.0, 0.8249}; // as ICC.1 rounds it

constexpr Matrix3 identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

// The cone responses of the Bradford adaptation, ICC.1:2010 annex E.
constexpr Matrix3 bradford = {0.8951, 0.2664, -0.1614, -0.7502, 1.7135,
                              0.0367, 0.0389, -0.0685, 1.0296};

std::array<double, 3> applied(const Matrix3& m, const std::array<double, 3>& v)
{
    return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
            m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

std::array<double, 3> xyz(const Chromaticity& c)
{
    return {c.x / c.y, 1.0, (1.0 - c.x - c.y) / c.y};
}

bool isUsable(const Matrix3& m)
{
    return std::all_of(m.begin(), m.end(),
                       [](double v) { return std::isfinite(v) && std::abs(v) < 100; });
}

double srgbFromLinear(double linear)
{
    const double x = std::abs(linear);
    const double encoded = x <= 0.0031308 ? x * 12.92 : 1.055 * std::pow(x, 1 / 2.4) - 0.055;
    return std::copysign(encoded, linear);
}

bool isSrgbCurve(const TransferFunction& curve)
{
    constexpr double tolerance = 1.0 / (16 * 255);
    for (int i = 0; i <= 255; ++i) {
        const double encoded = i / 255.0;
        if (!(std::abs(srgbFromLinear(curve(encoded)) - encoded) <= tolerance))
            return false;
    }
    return true;
}

bool sameCurve(const TransferFunction& a, const TransferFunction& b)
{
    for (int i = 0; i <= 1023; ++i)
        if (a(i / 1023.0) != b(i / 1023.0))
            return false;
    return true;
}

SampleConversion::Table tableOf(const TransferFunction& curve, SampleType type)
{
    const size_t entries = type == SampleType::U8 ? 256 : 65536;
    auto table = std::make_shared<std::vector<float>>(entries);
    for (size_t i = 0; i < entries; ++i) {
        const double value = curve(double(i) / double(entries - 1));
        (*table)[i] = std::isfinite(value) ? float(std::clamp(value, -1.0e4, 1.0e4)) : 0.0f;
    }
    return table;
}

} // namespace

Matrix3 multiplied(const Matrix3& a, const Matrix3& b)
{
    Matrix3 product{};
    for (size_t row = 0; row < 3; ++row)
        for (size_t column = 0; column < 3; ++column)
            for (size_t k = 0; k < 3; ++k)
                product[row * 3 + column] += a[row * 3 + k] * b[k * 3 + column];
    return product;
}

std::optional<Matrix3> inverse(const Matrix3& m)
{
    const double c0 = m[4] * m[8] - m[5] * m[7];
    const double c1 = m[5] * m[6] - m[3] * m[8];
    const double c2 = m[3] * m[7] - m[4] * m[6];
    const double determinant = m[0] * c0 + m[1] * c1 + m[2] * c2;
    if (!(std::abs(determinant) > 1e-9))
        return std::nullopt;
    const double s = 1 / determinant;
    return Matrix3{c0 * s, (m[2] * m[7] - m[1] * m[8]) * s, (m[1] * m[5] - m[2] * m[4]) * s,
                   c1 * s, (m[0] * m[8] - m[2] * m[6]) * s, (m[2] * m[3] - m[0] * m[5]) * s,
                   c2 * s, (m[1] * m[6] - m[0] * m[7]) * s, (m[0] * m[4] - m[1] * m[3]) * s};
}

std::optional<Matrix3> toXyzD50(const Primaries& p)
{
    for (const Chromaticity& c : {p.red, p.green, p.blue, p.white})
        if (!(c.y > 1e-4))
            return std::nullopt;
    const auto r = xyz(p.red);
    const auto g = xyz(p.green);
    const auto b = xyz(p.blue);
    const auto white = xyz(p.white);
    const Matrix3 columns = {r[0], g[0], b[0], r[1], g[1], b[1], r[2], g[2], b[2]};
    const auto unscaled = inverse(columns);
    if (!unscaled)
        return std::nullopt;
    const auto scale = applied(*unscaled, white);
    const Matrix3 native = multiplied(columns, {scale[0], 0, 0, 0, scale[1], 0, 0, 0, scale[2]});

    const auto from = applied(bradford, white);
    const auto to = applied(bradford, d50);
    const Matrix3 cones = {to[0] / from[0], 0, 0, 0, to[1] / from[1], 0, 0, 0, to[2] / from[2]};
    const Matrix3 adaptation = multiplied(*inverse(bradford), multiplied(cones, bradford));
    const Matrix3 result = multiplied(adaptation, native);
    if (!isUsable(result))
        return std::nullopt;
    return result;
}

const Matrix3& srgbFromXyzD50()
{
    static const Matrix3 matrix = *inverse(*toXyzD50(srgbPrimaries));
    return matrix;
}

double srgbToLinear(double encoded)
{
    const double x = std::abs(encoded);
    const double linear = x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
    return std::copysign(linear, encoded);
}

SampleConversion conversionFrom(const std::array<TransferFunction, 3>& curves,
                                const Matrix3& toLinearSrgb, SampleType type)
{
    // Profiles round their colorants to four digits, and the makers' sRGB differ by as much.
    constexpr double matrixTolerance = 1e-3;
    SampleConversion conversion;
    bool isIdentity = true;
    for (size_t i = 0; i < 9; ++i)
        isIdentity = isIdentity && std::abs(toLinearSrgb[i] - identity[i]) <= matrixTolerance;
    if (!isIdentity) {
        conversion.matrix.emplace();
        for (size_t i = 0; i < 9; ++i)
            (*conversion.matrix)[i] = float(toLinearSrgb[i]);
    }
    if (std::all_of(curves.begin(), curves.end(), isSrgbCurve))
        return conversion;
    conversion.curves[0] = tableOf(curves[0], type);
    for (size_t c : {size_t(1), size_t(2)})
        conversion.curves[c] =
            sameCurve(curves[c], curves[0]) ? conversion.curves[0] : tableOf(curves[c], type);
    return conversion;
}

std::optional<SampleConversion> conversionFrom(const TransferFunction& curve,
                                               const Primaries& primaries, SampleType type)
{
    const auto toXyz = toXyzD50(primaries);
    if (!toXyz)
        return std::nullopt;
    return conversionFrom({curve, curve, curve}, multiplied(srgbFromXyzD50(), *toXyz), type);
}

SampleConversion adobeRgbConversion(SampleType type)
{
    const auto curve = [](double v) { return std::pow(v, 2.19921875); };
    return *conversionFrom(curve, adobeRgbPrimaries, type);
}

SampleConversion linearConversion(SampleType type)
{
    return *conversionFrom([](double v) { return v; }, srgbPrimaries, type);
}

} // namespace orvane
