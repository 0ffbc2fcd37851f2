// The polynomials that stand in for the C library in the tiled renderer, against that library over
// their whole range, for every instruction set of this machine.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "LanesTests.cpp"
#include <hwy/foreach_target.h>

#include "Lanes-inl.h"

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

/// A curve over a row that is padded to whole vectors: 'p'ower, 'e'ncode or 'd'ecode.
void evaluate(char curve, const float* in, float* out, int count, float exponent)
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        const Lanes x = Lanes::load(in + i);
        const Lanes y = curve == 'p' ? power(x, Lanes(exponent))
            : curve == 'e'           ? encodeSrgb(x)
                                     : decodeSrgb(x);
        y.store(out + i);
    }
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

std::vector<float> evaluated(char curve, const std::vector<float>& in, float exponent)
{
    std::vector<float> out(in.size());
    HWY_DYNAMIC_DISPATCH(evaluate)
    (curve, in.data(), out.data(), int(in.size()), exponent);
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
        const std::vector<float> out = evaluated('p', in, exponent);
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

TEST_P(Lanes, TheSrgbCurvesStayWithinATinyPartOfALevel)
{
    // An eighth of an 8-bit level is 4.9e-4; 16-bit files ask for much less: half a level
    // is 7.6e-6.
    const std::vector<float> in = samples();
    const std::vector<float> encoded = evaluated('e', in, 0);
    const std::vector<float> decoded = evaluated('d', in, 0);
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
