// The polynomials that stand in for the C library in the tiled renderer, against that library over
// their whole range, for every instruction set of this machine.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "LanesTests.cpp"
#include <hwy/foreach_target.h>

#include "Powers-inl.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

enum class Curve { Power, Encode, Decode, Over2p2, To0p4545, To2p2, To3p2, Weight };

HWY_INLINE Lanes valueOf(Curve curve, Lanes x, Lanes exponent)
{
    switch (curve) {
    case Curve::Power:
        return power(x, exponent);
    case Curve::Encode:
        return encodeSrgb(Three<Lanes>(Lanes(0.0f), x, Lanes(1.0f))).g;
    case Curve::Decode:
        return decodeSrgb(x);
    case Curve::Over2p2:
        return power1Over2p2(x);
    case Curve::To0p4545:
        return power0p4545(x);
    case Curve::To2p2:
        return power2p2(x);
    case Curve::To3p2:
        return power3p2(x);
    case Curve::Weight:
        return exp2Weight(x);
    }
    return x;
}

/// A curve over a row that is padded to whole vectors.
void evaluate(int curve, const float* in, float* out, int count, float exponent)
{
    for (int i = 0; i < count; i += int(Lanes::count()))
        valueOf(Curve(curve), Lanes::load(in + i), Lanes(exponent)).store(out + i);
}

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include <hwy/targets.h>

#include <gtest/gtest.h>

namespace orvane {

HWY_EXPORT(evaluate);

namespace {

/// Every 997th float of 0 .. 4 by its bits, its negatives, and the corners.
std::vector<float> samples()
{
    std::vector<float> values{0, -0.0f, 1, -1, 0.0031308f, 0.04045f, 1e-37f, 1e-30f, 1e6f, 65504};
    for (uint32_t bits = 0x20000000; bits < 0x40800000; bits += 997 * 16) {
        float x = 0;
        std::memcpy(&x, &bits, sizeof x);
        values.push_back(x);
        values.push_back(-x);
    }
    values.resize((values.size() + 63) / 64 * 64, 0.5f);
    return values;
}

using HWY_NAMESPACE::Curve;

std::vector<float> evaluated(Curve curve, const std::vector<float>& in, float exponent = 0)
{
    std::vector<float> out(in.size());
    HWY_DYNAMIC_DISPATCH(evaluate)
    (int(curve), in.data(), out.data(), int(in.size()), exponent);
    return out;
}

class Lanes : public testing::TestWithParam<int64_t> {
protected:
    void SetUp() override { hwy::SetSupportedTargetsForTest(GetParam()); }
    void TearDown() override { hwy::SetSupportedTargetsForTest(0); }
};

TEST_P(Lanes, PowersStayWithinFiveMillionths)
{
    const std::vector<float> in = samples();
    for (const float exponent : {1 / 2.4f, 2.4f, 0.4545f, 2.2f, 3.2f, 10.0f, 0.1f}) {
        const std::vector<float> out = evaluated(Curve::Power, in, exponent);
        for (size_t i = 0; i < in.size(); ++i) {
            const double exact = in[i] > 0 ? std::pow(double(in[i]), double(exponent)) : 0;
            if (exact > 3e38)
                continue;
            ASSERT_TRUE(std::isfinite(out[i])) << in[i] << " ^ " << exponent;
            if (exact >= 1e-20 && in[i] >= 1e-36f)
                ASSERT_NEAR(out[i] / exact, 1, 5e-6) << in[i] << " ^ " << exponent;
            else
                ASSERT_NEAR(out[i], exact, 2.5e-4) << in[i] << " ^ " << exponent;
        }
    }
}

TEST_P(Lanes, PowersOfFixedExponentsStayWithinThreeMillionths)
{
    struct Fixed {
        Curve curve;
        double exponent;
        double least; ///< below it, 1e-36 at most stands for what is less
    };
    const Fixed rows[] = {{Curve::Over2p2, 1 / 2.2, 1e-36},
                          {Curve::To0p4545, 0.4545, 1e-4},
                          {Curve::To2p2, 2.2, 1e-16},
                          {Curve::To3p2, 3.2, 1e-11}};
    const std::vector<float> in = samples();
    for (const Fixed& row : rows) {
        const std::vector<float> out = evaluated(row.curve, in);
        for (size_t i = 0; i < in.size(); ++i) {
            if (!(in[i] >= 0) || std::signbit(in[i]))
                continue;
            const double exact = std::pow(double(in[i]), row.exponent);
            // Far below what any output shows, a first-order rest of an exponent is less exact.
            const double allowed = in[i] >= row.least ? 3e-6 * exact : 2e-5 * exact + 1e-36;
            ASSERT_NEAR(out[i], exact, allowed) << in[i] << " ^ " << row.exponent;
        }
    }
}

TEST_P(Lanes, WeightsStayWithinThreeMillionths)
{
    std::vector<float> in;
    for (int i = 0; i < 6400; ++i)
        in.push_back(float(i) / -64.0f);
    const std::vector<float> out = evaluated(Curve::Weight, in);
    for (size_t i = 0; i < in.size(); ++i)
        ASSERT_NEAR(out[i] / std::exp2(double(in[i])), 1, 3e-6) << in[i];
    for (const float far : evaluated(Curve::Weight, std::vector<float>(64, -1e30f)))
        ASSERT_LE(far, 1e-30f);
}

TEST_P(Lanes, TheSrgbCurvesStayWithinATinyPartOfALevel)
{
    // An eighth of an 8-bit level is 4.9e-4; 16-bit files ask for much less: half a level
    // is 7.6e-6.
    const std::vector<float> in = samples();
    const std::vector<float> encoded = evaluated(Curve::Encode, in);
    const std::vector<float> decoded = evaluated(Curve::Decode, in);
    for (size_t i = 0; i < in.size(); ++i) {
        const double m = std::abs(double(in[i]));
        const double e = m <= 0.0031308 ? 12.92 * m : 1.055 * std::pow(m, 1 / 2.4) - 0.055;
        const double d = m <= 0.04045 ? m / 12.92 : std::pow((m + 0.055) / 1.055, 2.4);
        ASSERT_NEAR(encoded[i], std::copysign(e, in[i]), 3e-6 * std::max(1.0, e)) << in[i];
        ASSERT_NEAR(decoded[i], std::copysign(d, in[i]), 3e-6 * std::max(1.0, d)) << in[i];
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, Lanes, testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                         [](const auto& target) {
                             return std::string(hwy::TargetName(target.param));
                         });

} // namespace
} // namespace orvane

#endif
