// What each slider stands for: the stage's picture against one operation with its numbers written
// out. A number off by a fiftieth shows.
#include "Stages.h"

#include "Filters/CIFilter.h"
#include "Kernels.h"
#include "Pipeline.h"
#include "StageSettings.h"
#include "TestImages.h"

#include <algorithm>
#include <random>

namespace orvane {
namespace {

using namespace test;

/// Coloured squares with noise on them: steps, corners and grain at every scale.
CIImage detailed(int width, int height)
{
    std::mt19937 random(3);
    return picture(width, height, [&](int x, int y) {
        const int square = x / 18 + 2 * (y / 22);
        const auto part = [&](int shift) {
            return 0.08f + 0.3f * float((square + shift) % 3) + float(random() % 1000) / 6000;
        };
        const float red = part(0);
        const float green = part(square % 2);
        return Color{red, green, part(2), 1};
    });
}

std::vector<Color> drawn(const CIImage& image, const CGRect& rect)
{
    static const CIContext context;
    std::vector<Color> colors(size_t(rect.width() * rect.height()));
    context.render(image, colors.data(), size_t(rect.width()) * sizeof(Color), rect,
                   PixelFormat::RGBAFloat);
    return colors;
}

/// Over all channels; infinite where a value is not a number.
float largestDifference(const std::vector<Color>& a, const std::vector<Color>& b)
{
    float largest = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        for (size_t c = 0; c < 4; ++c) {
            const float difference = std::abs(a[i][c] - b.at(i)[c]);
            largest = std::isnan(difference) ? INFINITY : std::max(largest, difference);
        }
    }
    return largest;
}

struct Row {
    Adjustments::AdjustMap sliders;
    CIImage expected;
};

/// Compares along the left edge, where frames, corners and what lies beyond them show too.
void expectRows(const CIImage& image, const std::vector<Row>& rows)
{
    constexpr CGRect left(0, 0, 40, 280);
    const std::vector<Color> before = drawn(image, left);
    for (const Row& row : rows) {
        std::string what;
        for (const auto& [key, value] : row.sliders)
            what += key + " " + std::to_string(value) + " ";
        const auto actual = drawn(Pipeline::render(image, Adjustments(row.sliders)), left);
        EXPECT_LE(largestDifference(actual, drawn(row.expected, left)), 2e-6f) << what;
        EXPECT_GE(largestDifference(actual, before), 5e-3f) << what << "changes nothing";
    }
}

CIImage unsharp(const CIImage& image, double radius, double intensity)
{
    return CIFilter::unsharpMask(image, radius, intensity);
}

CIImage darkened(const CIImage& image, double brightness)
{
    return CIFilter::colorControls(image, {.brightness = brightness});
}

CIImage bloomed(const CIImage& image, double radius, double intensity)
{
    return CIFilter::bloom(image, radius, intensity).cropped(image.extent());
}

/// The three are what the glow keeps of red, green and blue.
CIImage glowing(const CIImage& image, double radius, double red, double green, double blue)
{
    const CIImage glow = CIFilter::colorMatrix(
        image, {.red = {red, 0, 0, 0}, .green = {0, green, 0, 0}, .blue = {0, 0, blue, 0}});
    return CIFilter::screenBlendMode(CIFilter::gaussianBlur(glow, radius).cropped(image.extent()),
                                     image);
}

// Radii are parts of the shorter side down to a least one, and of 400 where there is no side.
TEST(Stages, TakeRadiiFromTheShorterSide)
{
    const CIImage tall = detailed(600, 660);
    expectRows(tall,
               {{{{"texture", 50}}, unsharp(tall, 1.5, 0.45)},
                {{{"clarity", 60}}, unsharp(tall, 4, 0.3)},
                {{{"dehaze", 50}}, darkened(unsharp(tall, 15, 0.35), -0.025)},
                {{{"bloom", 70}}, bloomed(tall, 10.8, 0.7)},
                {{{"halation", 50}}, glowing(tall, 15, 0.5, 0.21, 0.11)}});
    const CIImage wide = detailed(320, 280);
    expectRows(wide,
               {{{{"texture", -80}}, unsharp(wide, 1, -0.72)},
                {{{"clarity", -50}}, unsharp(wide, 2, -0.25)},
                {{{"dehaze", -100}}, unsharp(wide, 7, -0.7)},
                {{{"bloom", 100}}, bloomed(wide, 5.04, 1)},
                {{{"halation", 100}}, glowing(wide, 7, 1, 0.42, 0.22)}});
    const CIImage small = detailed(48, 36);
    expectRows(small,
               {{{{"texture", 100}}, unsharp(small, 1, 0.9)},
                {{{"clarity", 100}}, unsharp(small, 2, 0.5)},
                {{{"dehaze", 100}}, darkened(unsharp(small, 6, 0.7), -0.05)},
                {{{"bloom", 40}}, bloomed(small, 2, 0.4)},
                {{{"halation", 80}}, glowing(small, 6, 0.8, 0.336, 0.176)}});
    const CIImage endless = wide.clampedToExtent();
    expectRows(endless,
               {{{{"texture", 50}}, unsharp(endless, 1, 0.45)},
                {{{"clarity", 60}}, unsharp(endless, 8.0 / 3, 0.3)},
                {{{"dehaze", 50}}, darkened(unsharp(endless, 10, 0.35), -0.025)},
                {{{"bloom", 70}}, bloomed(endless, 7.2, 0.7)},
                {{{"halation", 50}}, glowing(endless, 10, 0.5, 0.21, 0.11)}});
}

TEST(Stages, SharpenAndSmoothByTheirSliders)
{
    const CIImage image = detailed(90, 120);
    // The blur that measures detail fades at the frame, so that all is sharpened there.
    const CIImage blurred = CIFilter::gaussianBlur(image, 2).cropped({0, 0, 90, 120});
    expectRows(image,
               {{{{"sharpening", 80}}, unsharp(image, 1, 0.8)},
                {{{"sharpening", 45}, {"sharpenRadius", 2.5}, {"sharpenThreshold", -9}},
                 unsharp(image, 2.5, 0.45)},
                {{{"sharpening", 60}, {"sharpenRadius", 2}, {"sharpenThreshold", 50}},
                 Kernels::maskedSharpen(image, unsharp(image, 2, 0.6), blurred, 0.05)},
                {{{"noiseReduction", 60}, {"colorNoiseReduction", 20}},
                 CIFilter::noiseReduction(image, 0.06, 0.4)},
                {{{"noiseReduction", 10}, {"colorNoiseReduction", 90}},
                 CIFilter::noiseReduction(image, 0.09, 0.4)}});
}

TEST(Stages, HandSlidersToTheirOperations)
{
    const CIImage image = detailed(60, 80);
    const CIColor brown{0.341, 0.2603333, 0.099, 1}; // a hue of 40
    const CIColor paleBlue{0.67, 0.7433333, 0.89, 1}; // 220
    const CIColor purple{0.341, 0.099, 0.341, 1}; // 300
    const CIColor paleGreen{0.67, 0.89, 0.67, 1}; // 120
    const auto toned = [&](const CIColor& dark, const CIColor& light, double share) {
        return CIFilter::dissolveTransition(image, CIFilter::falseColor(image, dark, light), share);
    };
    const auto darkCorners = [&](double radius, double intensity) {
        return CIFilter::vignetteEffect(image, {30, 40}, radius, intensity, 0.5);
    };
    expectRows(
        image,
        {{{{"lensDistortion", -40}, {"lensFringe", 70}}, Kernels::lens(image, -0.4, 0.7)},
         {{{"highlights", -40}, {"shadows", 30}}, CIFilter::highlightShadowAdjust(image, 0.6, 0.3)},
         {{{"whites", 40}, {"blacks", -30}}, Kernels::whitesBlacks(image, 0.4, -0.3)},
         {{{"contrast", 50}}, Kernels::contrast(image, 2.9543726)},
         {{{"contrast", -50}}, Kernels::contrast(image, 0.3350582)},
         {{{"hueRed", 60}, {"satGreen", -50}, {"lumBlue", 80}, {"lumYellow", -40}},
          Kernels::colorMixer(image, {0.6}, {0, 0, 0, -0.5}, {0, 0, -0.4, 0, 0, 0.8})},
         {{{"duotone", 70}, {"duotoneHue", 40}}, toned(brown, paleBlue, 0.7)},
         {{{"duotone", 100}, {"duotoneHue", 300}}, toned(purple, paleGreen, 1)},
         {{{"vignette", -60}}, darkCorners(60, 0.6)},
         {{{"vignette", 40}, {"vignetteMidpoint", 0}}, darkCorners(40, -0.4)},
         {{{"vignette", -100}, {"vignetteMidpoint", 100}}, darkCorners(80, 1)},
         {{{"shadowTint", 70}, {"highlightTint", -40}}, Kernels::splitTone(image, 0.7, -0.4)},
         {{{"grain", 60}}, Kernels::grain(image, 0.06117647)}});
}

TEST(Stages, MoveTheCornersForPerspective)
{
    const CIImage image = detailed(80, 60);
    const auto turned = [&](const CIFilter::Corners& corners) {
        return CIFilter::perspectiveTransform(image, corners)
            .compositedOver(image.clampedToExtent())
            .cropped({0, 0, 80, 60});
    };
    // From the top left corner clockwise.
    expectRows(image,
               {{{{"perspectiveV", 50}}, turned({{10, 60}, {70, 60}, {90, 0}, {-10, 0}})},
                {{{"perspectiveH", 40}}, turned({{0, 54}, {80, 66}, {80, -6}, {0, 6}})},
                {{{"perspectiveV", -25}, {"perspectiveH", -80}},
                 turned({{-5, 72}, {85, 48}, {75, 12}, {5, -12}})}});
}

/// Black within `half` rows of the middle, white from twice that on.
CIImage band(const CIImage& image, double middle, double half)
{
    const CGRect extent = image.extent();
    return picture(int(extent.width()), int(extent.height()), [=](int, int y) {
        const float value = float(std::clamp((std::abs(y + 0.5 - middle) - half) / half, 0.0, 1.0));
        return Color{value, value, value, 1};
    });
}

TEST(Stages, BlurOutsideTheTiltShiftBand)
{
    const CIImage wide = detailed(320, 280);
    const CIImage small = detailed(48, 36);
    const auto shifted = [](const CIImage& image, double radius, double middle, double half) {
        return CIFilter::maskedVariableBlur(image, band(image, middle, half), radius)
            .cropped(image.extent());
    };
    expectRows(
        wide,
        {{{{"tiltShift", 60}, {"tiltCenter", 30}, {"tiltWidth", 40}}, shifted(wide, 3.36, 196, 56)},
         {{{"tiltShift", 100}}, shifted(wide, 5.6, 140, 42)}});
    expectRows(
        small,
        {{{{"tiltShift", 100}, {"tiltCenter", 75}, {"tiltWidth", 0}}, shifted(small, 2, 9, 1)}});
}

// A move by whole cells of the coarse grids that large blurs are drawn on.
TEST(Stages, DrawTheSameWhereverThePictureLies)
{
    const CIImage image = detailed(96, 64);
    const CGRect frame(0, 0, 96, 64);
    const CGRect elsewhere(-192, 128, 96, 64);
    const CIImage moved = image.transformed(CGAffineTransform::translation(-192, 128));
    for (const StageSetting& setting : allStageSettings()) {
        if (setting.stage == std::string("grain")) // by position
            continue;
        for (const Adjustments& a : {setting.weak, setting.strong}) {
            const auto here = drawn(Pipeline::render(image, a), frame);
            const auto there = drawn(Pipeline::render(moved, a), elsewhere);
            EXPECT_LE(largestDifference(there, here), 1e-5f) << setting.stage;
        }
    }
}

} // namespace
} // namespace orvane
