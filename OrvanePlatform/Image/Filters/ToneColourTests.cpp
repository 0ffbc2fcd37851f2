// The operations on tone and colour against their published numbers, and against what holds for
// every operation that works pixel by pixel.

#include "Filters/CIFilter.h"
#include "Filters/FilterTesting.h"
#include "Node.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace FilterTesting;

using Operation = std::function<CIImage(const CIImage&)>;
using Floats = std::vector<float>;

Operation exposure(double ev)
{
    return [=](const CIImage& i) { return CIFilter::exposureAdjust(i, ev); };
}
Operation white(double kelvin, double tint)
{
    return [=](const CIImage& i) {
        return CIFilter::temperatureAndTint(i, {6500, 0}, {kelvin, tint});
    };
}
Operation tones(double h, double s)
{
    return [=](const CIImage& i) { return CIFilter::highlightShadowAdjust(i, h, s); };
}
Operation controls(double saturation, double brightness, double contrast)
{
    return [=](const CIImage& i) {
        return CIFilter::colorControls(i, {saturation, brightness, contrast});
    };
}
Operation vibrance(double amount)
{
    return [=](const CIImage& i) { return CIFilter::vibrance(i, amount); };
}
Operation scaleAndBias(double scale, double bias)
{
    return [=](const CIImage& i) {
        return CIFilter::colorMatrix(i,
                                     {.red = {scale, 0, 0, 0},
                                      .green = {0, scale, 0, 0},
                                      .blue = {0, 0, scale, 0},
                                      .bias = {bias, bias, bias, 0}});
    };
}
/// Mixes all four channels, alpha' = 0.25 r + 0.5 a + 0.125.
CIImage mixAll(const CIImage& i)
{
    return CIFilter::colorMatrix(i,
                                 {.red = {0.5, 0.25, -0.5, 0.125},
                                  .green = {0.25, 0, 1, 0},
                                  .blue = {0, 0.5, 0, -0.25},
                                  .alpha = {0.25, 0, 0, 0.5},
                                  .bias = {0, 0.5, 0.25, 0.125}});
}
Operation clamped(double low, double high)
{
    return [=](const CIImage& i) { return CIFilter::colorClamp(i, low, high); };
}
Operation gammaed(double power)
{
    return [=](const CIImage& i) { return CIFilter::gammaAdjust(i, power); };
}
/// Levels: black 20, white 230, gamma 1.5, out 10..240.
CIImage levels(const CIImage& i)
{
    const CIImage range = scaleAndBias(255.0 / 210, -20.0 / 210)(i);
    return scaleAndBias(230.0 / 255, 10.0 / 255)(gammaed(1 / 1.5)(clamped(0, 1)(range)));
}
Operation curves(const Floats& triples, double low = 0, double high = 1)
{
    return [=](const CIImage& i) { return CIFilter::colorCurves(i, triples, low, high).value(); };
}
Floats curveTable(size_t entries, const std::function<double(double)>& curve)
{
    Floats table;
    for (size_t i = 0; i < entries; ++i)
        table.insert(table.end(), 3, float(curve(double(i) / double(entries - 1))));
    return table;
}
using NodeColour = std::function<std::array<double, 3>(double, double, double)>;
Operation cube(int side, const NodeColour& colour)
{
    Floats table;
    const double top = side - 1;
    for (int b = 0; b < side; ++b) {
        for (int g = 0; g < side; ++g) {
            for (int r = 0; r < side; ++r) {
                const auto node = colour(r / top, g / top, b / top);
                table.insert(table.end(), {float(node[0]), float(node[1]), float(node[2]), 1.0f});
            }
        }
    }
    return
        [=](const CIImage& i) { return CIFilter::colorCubeWithColorSpace(i, side, table).value(); };
}
/// Trilinear weights give a product of its coordinates exactly.
std::array<double, 3> products(double r, double g, double b)
{
    return {r * g * b, g * b, 2 * r * b - 0.5};
}
Operation ramp(const CIColor& color0, const CIColor& color1)
{
    return [=](const CIImage& i) { return CIFilter::falseColor(i, color0, color1); };
}

double decoded(double x)
{
    const double m = std::abs(x);
    return std::copysign(m <= 0.04045 ? m / 12.92 : std::pow((m + 0.055) / 1.055, 2.4), x);
}
double encoded(double x)
{
    const double m = std::abs(x);
    return std::copysign(m <= 0.0031308 ? m * 12.92 : 1.055 * std::pow(m, 1 / 2.4) - 0.055, x);
}

const Floats inverted = curveTable(256, [](double x) { return 1 - x; });
const Floats squared = curveTable(256, [](double x) { return x * x; });
const NodeColour same = [](double r, double g, double b) { return std::array{r, g, b}; };
const NodeColour swapped = [](double r, double g, double b) { return std::array{b, g, r}; };

struct Vector {
    std::string name;
    Operation operation;
    Floats in; ///< premultiplied r, g, b, a; or one number for an opaque grey; or r, g, b
    Floats out;
    /// Decimals that were published: half of the last one is added to the tolerance.
    int decimals = 6;
};
void PrintTo(const Vector& v, std::ostream* os)
{
    *os << v.name;
}

Floats fourChannels(const Floats& colour)
{
    if (colour.size() == 1)
        return {colour[0], colour[0], colour[0], 1};
    if (colour.size() == 3)
        return {colour[0], colour[1], colour[2], 1};
    return colour;
}

class PublishedNumbers : public testing::TestWithParam<Vector> { };

TEST_P(PublishedNumbers, ComeOutOfBothEvaluators)
{
    const Vector& v = GetParam();
    const Floats in = fourChannels(v.in);
    const Floats expected = fourChannels(v.out);
    std::vector<CIImage> inputs{pixelsImage(1, 1, in)};
    if (in[3] == 1)
        inputs.push_back(opaqueImage(1, 1, {in[0], in[1], in[2]}));
    // Powers are good to 4e-6 over their whole range and to a quarter of that near 1; everything
    // else is a few roundings of 6e-8.
    const double tolerance = 0.5 * std::pow(10, -v.decimals) + 2e-6;
    for (const CIImage& input : inputs) {
        const CIImage image = v.operation(input);
        const PixelRect pixel{0, 0, 1, 1};
        const Floats plain = reference(image, pixel);
        const Floats fast = tiled(image, pixel);
        for (size_t c = 0; c < 4; ++c) {
            const double scaled = tolerance * std::max(1.0, std::abs(double(expected[c])));
            EXPECT_NEAR(plain.at(c), expected[c], scaled) << "reference, channel " << c;
            EXPECT_NEAR(fast.at(c), expected[c], scaled) << "tiled, channel " << c;
        }
    }
}

const Vector vectors[] = {
    {"exposure up", exposure(1.1), {0.2f, 0.3f, 0.6f}, {0.428709f, 0.643064f, 1.286128f}},
    {"exposure down", exposure(-4), {1}, {0.0625f}},
    {"exposure keeps negatives", exposure(1), {-0.25f}, {-0.5f}},

    {"3500 K", white(3500, 0), {1}, {1.516463f, 0.907468f, 0.390425f}},
    {"9500 K", white(9500, 0), {1}, {0.845956f, 1.010937f, 1.342703f}},
    {"5750 K", white(5750, 0), {1}, {1.070702f, 0.991402f, 0.877260f}},
    {"tint 150", white(6500, 150), {1}, {0.678522f, 1.123728f, 0.740913f}},
    {"tint -150", white(6500, -150), {1}, {1.353409f, 0.863983f, 1.284821f}},
    {"3500 K of red", white(3500, 0), {1, 0, 0}, {1.183571f, -0.014418f, -0.014613f}},
    {"3500 K of green", white(3500, 0), {0, 1, 0}, {0.297681f, 0.912445f, -0.047449f}},
    {"3500 K of blue", white(3500, 0), {0, 0, 1}, {0.035211f, 0.009441f, 0.452488f}},

    {"highlights 0.5 of grey", tones(0.5, 0), {0.18f}, {0.173977f}},
    {"highlights 0.5", tones(0.5, 0), {0.1f, 0.5f, 0.9f}, {0.088924f, 0.444618f, 0.800312f}},
    {"highlights 0 of white", tones(0, 0), {1}, {0.5f}},
    {"highlights 0 of black", tones(0, 0), {0.02f}, {0.019952f}},
    {"highlights 0 above white", tones(0, 0), {2, 1, 0.5f}, {1, 0.5f, 0.25f}},
    {"highlights 1.5 of grey", tones(1.5, 0), {0.18f}, {0.202788f}},
    {"highlights 1.5 of white", tones(1.5, 0), {1}, {1}},
    {"shadows 0.5 of grey", tones(1, 0.5), {0.18f}, {0.220096f}},
    {"shadows 0.5 of black", tones(1, 0.5), {0.02f}, {0.032935f}},
    {"shadows 1 of black", tones(1, 1), {0.02f}, {0.054235f}},
    {"shadows 1 of white", tones(1, 1), {1}, {1}},
    {"shadows -1", tones(1, -1), {0.18f}, {0.120391f}},
    {"both", tones(0.7, 0.6), {0.1f, 0.5f, 0.9f}, {0.100591f, 0.502953f, 0.905316f}},
    {"amounts are clamped", tones(-3, 0), {1}, {0.5f}},

    {"saturation 1.5", controls(1.5, 0, 1), {0.2f, 0.3f, 0.6f}, {0.14981f, 0.29981f, 0.74981f}, 5},
    {"saturation 0", controls(0, 0, 1), {0.2f, 0.3f, 0.6f}, {0.30038f}, 5},
    {"brightness", controls(1, -0.05, 1), {0.2f, 0.3f, 0.6f}, {0.15f, 0.25f, 0.55f}},
    {"brightness of half alpha",
     controls(1, -0.3, 1),
     {0.025f, 0.15f, 0.4f, 0.5f},
     {-0.125f, 0, 0.25f, 0.5f}},
    {"contrast before brightness", controls(1, 0.1, 2), {0.75f}, {1.1f}},

    {"vibrance 0.5", vibrance(0.5), {0.2f, 0.3f, 0.6f}, {0.16954f, 0.29988f, 0.69092f}, 5},
    {"vibrance -0.5", vibrance(-0.5), {0.2f, 0.3f, 0.6f}, {0.23046f, 0.30012f, 0.50908f}, 5},
    {"vibrance of skin",
     vibrance(0.5),
     {0.745f, 0.413f, 0.279f},
     {0.79017f, 0.40286f, 0.24653f},
     5},
    // k = 1 + 8 * 0.607 would drive red below 0: it is held at Y / (Y - m) = 2.99243.
    {"vibrance at its bound", vibrance(8), {0.2f, 0.3f, 0.6f}, {0, 0.29924f, 1.19697f}, 5},
    {"vibrance never inverts", vibrance(-2), {0.5f, 0.4f, 0.45f}, {0.424855f}},
    {"vibrance of red", vibrance(1), {1, 0, 0}, {1, 0, 0}},
    {"vibrance of grey", vibrance(1), {0.37f}, {0.37f}},
    {"vibrance below black", vibrance(1), {0.5f, -0.1f, 0.2f}, {0.5f, -0.1f, 0.2f}},

    {"lift of black", scaleAndBias(1 - 0.0627451, 0.0627451), {0}, {0.062745f}},
    {"lift of grey", scaleAndBias(1 - 0.0627451, 0.0627451), {0.18f}, {0.231451f}},
    {"lift of white", scaleAndBias(1 - 0.0627451, 0.0627451), {1}, {1}},
    {"lift of half alpha",
     scaleAndBias(1 - 0.0627451, 0.0627451),
     {0, 0, 0, 0.5f},
     {0.031373f, 0.031373f, 0.031373f, 0.5f}},
    // Straight (0.4, 0.2, 0.8, 0.5) -> (-0.0875, 1.4, 0.225, 0.475), times the new alpha.
    {"all sixteen entries",
     mixAll,
     {0.2f, 0.1f, 0.4f, 0.5f},
     {-0.0415625f, 0.665f, 0.106875f, 0.475f}},

    {"clamp", clamped(0, 1), {-0.2f, 0.5f, 1.7f}, {0, 0.5f, 1}},
    {"clamp of opaque alpha", clamped(0, 0.5), {1, 0.2f, 0}, {0.25f, 0.1f, 0, 0.5f}},
    {"clamp of half alpha", clamped(0.75, 1), {0, 0.5f, 0.4f, 0.5f}, {0.5625f, 0.75f, 0.6f, 0.75f}},
    {"levels of black", levels, {0}, {0.039216f}},
    {"levels of grey", levels, {0.18f}, {0.262697f}},
    {"levels of middle", levels, {0.5f}, {0.616399f}},
    {"levels of white", levels, {1}, {0.941176f}},

    {"gamma 1/1.5", gammaed(1 / 1.5), {0.18f}, {0.318798f}},
    {"gamma 10", gammaed(10), {0.5f, -0.05f, 1.2f}, {0.000976563f, 0, 6.191736f}},

    {"inverted curve", curves(inverted), {0.18f, 1.5f, -0.1f}, {0.251569f, 0, 1}},
    {"squared curve", curves(squared), {0.18f}, {0.037252f}},

    {"cube of two, swapped", cube(2, swapped), {0.2f, 0.3f, 0.6f}, {0.6f, 0.3f, 0.2f}},
    {"cube clamps its input", cube(2, swapped), {1.5f, -0.1f, 0.5f}, {0.5f, 0, 1}},
    {"identity cube", cube(33, same), {0.2f, 0.3f, 0.6f}, {0.2f, 0.3f, 0.6f}},
    {"cube of four with products",
     cube(4, products),
     {float(decoded(0.5)), float(decoded(0.7)), float(decoded(0.2))},
     {float(decoded(0.07)), float(decoded(0.14)), float(decoded(-0.3))}},

    {"red to blue", ramp({1, 0, 0}, {0, 0, 1}), {0.2f, 0.3f, 0.6f}, {0.69962f, 0, 0.30038f}, 5},
    {"two soft colours",
     ramp({0.099, 0.22, 0.341}, {0.89, 0.78, 0.67}),
     {0.2f, 0.3f, 0.6f},
     {0.23753f, 0.19912f, 0.18870f},
     5},
    {"ramp from clear", ramp({1, 1, 1, 0}, {1, 1, 1, 1}), {4}, {1, 1, 1, 1}},
    {"ramp of half alpha",
     ramp({1, 1, 1, 0}, {1, 1, 1, 1}),
     {0.125f, 0.125f, 0.125f, 0.5f},
     {0.125f, 0.125f, 0.125f, 0.125f}},
};
INSTANTIATE_TEST_SUITE_P(ToneColour, PublishedNumbers, testing::ValuesIn(vectors));

struct Pointwise {
    std::string name;
    Operation operation;
    bool keepsAlpha = true;
};
const Pointwise pointwise[] = {
    {"exposure", exposure(1.3)},
    {"white", white(4200, 35)},
    {"highlights down", tones(0.2, 0.7)},
    {"highlights up", tones(1.6, -0.4)},
    {"controls", controls(1.4, 0.05, 0.8)},
    {"vibrance up", vibrance(0.8)},
    {"vibrance down", vibrance(-0.8)},
    {"matrix", scaleAndBias(0.7, 0.2)},
    {"matrix with alpha", mixAll, false},
    {"clamp", clamped(0.1, 1)},
    {"clamp without one", clamped(0.1, 0.8), false},
    {"gamma", gammaed(0.7)},
    {"gamma 10", gammaed(10)},
    {"curves", curves(curveTable(9, [](double x) { return 1.2 * x * x - 0.1; }), -0.2, 1.3)},
    {"cube", cube(17, products)},
    {"ramp", ramp({0.1, 0.7, 0.3}, {1, 0.2, 0.5})},
    {"clear ramp", ramp({0.1, 0.7, 0.3, 0.2}, {1, 0.2, 0.5, 0.9}), false},
};

/// Straight colours of -0.5..3 under every kind of alpha.
Floats randomPixels(size_t count, uint32_t seed)
{
    Floats samples = randomFloats(count * 4, -0.5f, 3.0f, seed);
    const Floats alphas = randomFloats(count, 0.05f, 1.0f, seed + 1);
    for (size_t i = 0; i < count; ++i) {
        const float alpha = i % 5 == 0 ? 0.0f : i % 5 == 1 ? 1.0f : i % 5 == 2 ? 0.5f : alphas[i];
        for (size_t c = 0; c < 3; ++c)
            samples[i * 4 + c] *= alpha;
        samples[i * 4 + 3] = alpha;
    }
    return samples;
}

TEST(PointwiseOperations, TiledEqualsReferenceForEveryInstructionSetAndWidth)
{
    // Powers stay within 4e-6 of the C library's, 10 is the steepest power here; both are far below
    // an eighth of an 8-bit level, which is 4.9e-4.
    constexpr double tolerance = 2e-5;
    constexpr int height = 3;
    constexpr int vectorWidth = 16;
    for (const int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        for (int width = 1; width <= 2 * vectorWidth + 1; ++width) {
            const auto count = size_t(width * height);
            const CIImage general = pixelsImage(width, height, randomPixels(count, 7));
            const CIImage opaque = opaqueImage(width, height, randomFloats(count * 3, -0.5f, 3, 8));
            const PixelRect rect{0, 0, width, height};
            for (const Pointwise& p : pointwise) {
                SCOPED_TRACE(p.name + ", width " + std::to_string(width) + ", "
                             + hwy::TargetName(target));
                for (const CIImage& input : {general, opaque}) {
                    const CIImage image = p.operation(input);
                    ASSERT_LT(largestDifference(tiled(image, rect), reference(image, rect)),
                              tolerance);
                }
            }
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(PointwiseOperations, FollowAlpha)
{
    const Floats colours = randomFloats(21 * 3, -0.5f, 3.0f);
    Floats half;
    Floats clear;
    for (size_t i = 0; i < colours.size(); i += 3) {
        half.insert(half.end(), {colours[i] / 2, colours[i + 1] / 2, colours[i + 2] / 2, 0.5f});
        clear.insert(clear.end(), 4, 0.0f);
    }
    const PixelRect rect{0, 0, 7, 3};
    for (const Pointwise& p : pointwise) {
        SCOPED_TRACE(p.name);
        for (const auto& draw : {tiled, reference}) {
            EXPECT_EQ(draw(p.operation(pixelsImage(7, 3, clear)), rect), clear);
            const CIImage opaque = p.operation(opaqueImage(7, 3, colours));
            EXPECT_EQ(opaque.isOpaque(), p.keepsAlpha);
            if (!p.keepsAlpha)
                continue;
            // Division by 0.5 and the product with it are exact, so the bits must agree.
            Floats expected = draw(opaque, rect);
            for (float& sample : expected)
                sample *= 0.5f;
            EXPECT_EQ(draw(p.operation(pixelsImage(7, 3, half)), rect), expected);
        }
    }
}

TEST(PointwiseOperations, MapFiniteToFinite)
{
    const float corners[] = {-1, 0, 1, 4, 1e6f};
    Floats opaque;
    Floats thin;
    for (int i = 0; i < 125; ++i) {
        for (const int channel : {i / 25, i / 5 % 5, i % 5}) {
            opaque.push_back(corners[channel]);
            thin.push_back(corners[channel]);
        }
        thin.push_back(0.01f);
    }
    const PixelRect rect{0, 0, 125, 1};
    std::vector<Pointwise> all(std::begin(pointwise), std::end(pointwise));
    all.push_back({"negative gamma", gammaed(-9)});
    all.push_back({"candle light", white(1000, 0)});
    for (const Pointwise& p : all) {
        for (const CIImage& input : {opaqueImage(125, 1, opaque), pixelsImage(125, 1, thin)}) {
            for (const auto& draw : {tiled, reference}) {
                for (const float sample : draw(p.operation(input), rect))
                    ASSERT_TRUE(std::isfinite(sample)) << p.name;
            }
        }
    }
}

TEST(PointwiseOperations, TablesAreNotLeftByWhatIsNotANumber)
{
    // 1e30 * 2^100 is infinite, and infinity times a saturation of 0 is not a number.
    const CIImage broken = controls(0, 0, 1)(exposure(100)(opaqueImage(3, 1, Floats(9, 1e30f))));
    const PixelRect rect{0, 0, 3, 1};
    for (const auto& draw : {tiled, reference}) {
        ASSERT_TRUE(std::isnan(draw(broken, rect).front()));
        EXPECT_EQ(draw(curves(inverted)(broken), rect), Floats(12, 1.0f));
        const Floats black{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
        EXPECT_EQ(draw(cube(2, same)(broken), rect), black);
        EXPECT_EQ(draw(clamped(0, 1)(broken), rect), black);
    }
}

TEST(ToneColour, NeutralSettingsAndThoseThatAreNoNumbersReturnTheInputItself)
{
    const double none = std::nan("");
    const Floats identity = curveTable(256, [](double x) { return x; });
    const Floats wide = curveTable(33, [](double x) { return 2 * x - 0.5; });
    const std::vector<Pointwise> neutral{
        {"exposure", exposure(0)},
        {"white", white(6500, 0)},
        {"white below the range",
         [](const CIImage& i) {
             return CIFilter::temperatureAndTint(i, {500, 0}, {1000, 0});
         }},
        {"white of no number", white(none, 0)},
        {"white without end", white(HUGE_VAL, 0)},
        {"tint of no number", white(6500, none)},
        {"tones", tones(1, 0)},
        {"controls", controls(1, 0, 1)},
        {"vibrance", vibrance(0)},
        {"matrix", scaleAndBias(1, 0)},
        {"gamma", gammaed(1)},
        {"curves", curves(identity)},
        {"curves over a domain", curves(wide, -0.5, 1.5)},
    };
    const CIImage input = opaqueImage(1, 1, {0.1f, 0.2f, 0.3f});
    for (const Pointwise& p : neutral)
        EXPECT_TRUE(p.operation(input).isSame(input)) << p.name;
    EXPECT_FALSE(curves(identity, -0.5, 1.5)(input).isSame(input));
}

TEST(ToneColour, TablesOfAWrongSizeGiveNothing)
{
    const CIImage input = opaqueImage(1, 1, {0.1f, 0.2f, 0.3f});
    const Floats some(4 * 65 * 65 * 65, 0.5f);
    const std::span<const float> all(some);
    EXPECT_FALSE(CIFilter::colorCurves(input, all.first(5)));
    EXPECT_FALSE(CIFilter::colorCurves(input, all.first(6), 1, 1));
    EXPECT_FALSE(CIFilter::colorCurves(input, all.first(6), 0, std::nan("")));
    EXPECT_FALSE(CIFilter::colorCubeWithColorSpace(input, 1, all.first(4)));
    EXPECT_FALSE(CIFilter::colorCubeWithColorSpace(input, 65, all));
    EXPECT_FALSE(CIFilter::colorCubeWithColorSpace(input, 4, all.first(255)));
    EXPECT_TRUE(CIFilter::colorCubeWithColorSpace(input, 4, all.first(256)));
}

TEST(ColorCurves, FollowTheLinesBetweenTheEntriesAsWritten)
{
    // Few and many entries, steep lines, values beyond 0..1, a domain of its own. The tolerance is
    // that of the encoding, 3e-6, times the steepest slope here, 10 an encoded unit.
    constexpr double low = -0.2;
    constexpr double high = 1.1;
    for (const size_t entries : {2u, 8u, 5000u}) {
        Floats table = randomFloats(entries * 3, -0.2f, 1.3f);
        for (size_t i = 0; entries > 1000 && i < table.size(); ++i)
            table[i] = float(i) / float(table.size()) + 0.0005f * table[i];
        const Floats values = randomFloats(300 * 3, -0.5f, 3.0f, 3);
        const CIImage image = curves(table, low, high)(opaqueImage(300, 1, values));
        const Floats drawn = tiled(image, {0, 0, 300, 1});
        for (size_t i = 0; i < values.size(); ++i) {
            const double x = (encoded(double(values[i])) - low) / (high - low);
            const double position = std::clamp(x, 0.0, 1.0) * double(entries - 1);
            const auto line = std::min(size_t(position), entries - 2);
            const double a = table[line * 3 + i % 3];
            const double b = table[line * 3 + 3 + i % 3];
            EXPECT_NEAR(drawn[i / 3 * 4 + i % 3], decoded(a + (b - a) * (position - double(line))),
                        3e-5);
        }
    }
}

TEST(Vibrance, ABoostNeverTakesAnInGamutChannelBelowZero)
{
    // Not even by a rounding: later stages ask whether a picture has values below 0.
    const CIImage image =
        CIFilter::vibrance(opaqueImage(64, 64, randomFloats(64 * 64 * 3, 0, 1, 5)), 3);
    for (const auto& pixels : {tiled(image, {0, 0, 64, 64}), reference(image, {0, 0, 64, 64})})
        EXPECT_GE(*std::min_element(pixels.begin(), pixels.end()), 0.0f);
}

} // namespace
} // namespace orvane
