// The tiles' fast ways (polynomials for powers, reduced grids for large blurs, 16-bit floats
// between passes) must stay invisible in an 8-bit picture: within a quarter of a level of the plain
// evaluator, stage by stage.
#include "LevelDifferences.h"
#include "Pipeline.h"
#include "StageSettings.h"
#include "Stages.h"
#include "TestImages.h"

#include <cstdlib>
#include <random>

namespace orvane {
namespace {

using namespace test;

constexpr int width = 200;
constexpr int height = 150;

/// What photographs are made of and what blurs and powers find hardest, as 8-bit sRGB:
///
///     sky, a smooth ramp         | noise over mid-grey
///     near-black 0..12 in steps  | black and white bars, 1 to 16 wide
///     saturated patches          | near-black beside white
CIImage photograph(bool opaque)
{
    const int channels = opaque ? 3 : 4;
    auto bitmap = std::make_shared<Bitmap>(width, height, channels, SampleType::U8,
                                           opaque ? AlphaKind::None : AlphaKind::Straight);
    std::mt19937 random(5);
    const auto levels = [&](int x, int row) -> std::array<int, 3> {
        const bool right = x >= width / 2;
        const int column = x % (width / 2);
        const int line = row % (height / 3);
        if (row < height / 3) {
            if (!right)
                return {90 + line, 130 + line / 2 + column / 4, 255 - column / 3};
            const int noise = int(random() % 90);
            return {80 + noise, 75 + int(random() % 90), 60 + noise / 2};
        }
        if (row < 2 * height / 3) {
            if (!right)
                return {column / 10, line / 5, (column / 10 + line / 5) / 2};
            const int bar = 1 << std::min(column / 24, 4);
            const int value = column / bar % 2 ? 255 : 0;
            return {value, value, value};
        }
        if (!right) {
            const int patch = column / 20;
            const int shade = 255 - 3 * line;
            return {patch & 1 ? shade : 0, patch & 2 ? shade : 0, patch == 3 ? 20 : shade / 2};
        }
        const int dark = 2 + column % 3;
        const bool disc = std::hypot(column - 50, line - 25) < 15;
        return disc ? std::array{255, 255, 255} : std::array{dark, dark, dark + 1};
    };
    for (int row = 0; row < height; ++row) {
        for (int x = 0; x < width; ++x) {
            uint8_t* pixel = bitmap->row(row) + x * channels;
            const std::array<int, 3> rgb = levels(x, row);
            for (size_t c = 0; c < 3; ++c)
                pixel[c] = uint8_t(rgb[c]);
            if (!opaque) // a soft-edged disc on nothing
                pixel[3] = uint8_t(
                    std::clamp(2.5 * (90 - std::hypot(x - 100, (row - 75) * 1.2)), 0.0, 255.0));
        }
    }
    return CIImage::withBitmap(std::move(bitmap));
}

std::string described(const LevelDifferences& found)
{
    char text[160];
    std::snprintf(text, sizeof text, "%.4f of a level at (%d, %d) channel %d: %.7g for %.7g",
                  found.largest, found.x, found.y, found.channel, double(found.value),
                  double(found.expected));
    return text;
}

struct Subject {
    CIImage image;
    StoredFormat format;
};

TEST(Accuracy, EveryStageStaysWithinAQuarterOfALevel)
{
    // The turned one has soft edges to nothing, and its pixels are an intermediate themselves.
    const Subject plain{photograph(true), StoredFormat::Float};
    const Subject turned{photograph(false).transformed(CGAffineTransform::rotation(0.03)),
                         StoredFormat::Compact};
    const std::vector<StageSetting> settings = allStageSettings();
    ASSERT_EQ(settings.size(), Stages::all().size());
    for (size_t i = 0; i < settings.size(); ++i) {
        const std::string stage = settings[i].stage;
        ASSERT_EQ(stage, Stages::all()[i].name);
        const struct {
            const char* name;
            const Adjustments& adjustments;
            const Subject& subject;
        } cases[] = {
            {", weak, turned: ", settings[i].weak, turned},
            {", strong, turned: ", settings[i].strong, turned},
            {", strong: ", settings[i].strong, plain},
        };
        for (const auto& c : cases) {
            ASSERT_TRUE(Stages::all()[i].runs(c.adjustments)) << stage;
            const CIImage drawn = Pipeline::render(c.subject.image, c.adjustments);
            const PixelRect rect = roundedRect(c.subject.image.extent());
            const auto found = levelDifferences(drawnInTiles(drawn, rect, c.subject.format),
                                                drawReference(drawn, rect));
            const std::string what = stage + c.name + described(found);
            if (std::getenv("ORVANE_PRINT_ACCURACY"))
                std::printf("%s\n", what.c_str());
            EXPECT_LE(found.largest, 0.25) << what;
            EXPECT_LE(found.mean, 0.03) << what;
        }
    }
}

/// A rich edit, every stage at an ordinary strength.
Adjustments ordinaryEdit(bool withMixer)
{
    Adjustments::AdjustMap map = {
        {"exposure", 20},
        {"contrast", 15},
        {"highlights", -30},
        {"shadows", 25},
        {"whites", 8},
        {"blacks", -10},
        {"temperature", 12},
        {"tint", -6},
        {"vibrance", 20},
        {"saturation", 5},
        {"perspectiveV", 8},
        {"perspectiveH", -5},
        {"lensDistortion", -12},
        {"lensFringe", 6},
        {"texture", 20},
        {"clarity", 25},
        {"dehaze", 15},
        {"sharpening", 50},
        {"sharpenRadius", 1.2},
        {"sharpenThreshold", 20},
        {"noiseReduction", 25},
        {"colorNoiseReduction", 30},
        {"levelsBlackIn", 4},
        {"levelsWhiteIn", 250},
        {"levelsGamma", 105},
        {"levelsBlackOut", 3},
        {"levelsWhiteOut", 252},
        {"shadowTint", -14},
        {"highlightTint", 20},
        {"vignette", -20},
        {"fade", 10},
        {"grain", 18},
        {"bloom", 20},
        {"halation", 26},
        {"tiltShift", 40},
        {"duotone", 10},
    };
    if (withMixer)
        map.insert({{"hueRed", 10}, {"satOrange", 14}, {"lumBlue", -20}, {"satGreen", -18}});
    Adjustments a(map);
    a.curve = stageSettings::withCurves(8).curve;
    a.lights = stageSettings::withLights(25).lights;
    a.healSpots = stageSettings::withSpots(0.02).healSpots;
    a.lut = stageSettings::colourTable();
    a.lutAmount = 20;
    return a;
}

// Errors of early stages grow in later ones: contrast, levels and sharpening steepen, and a level
// near black is 12 times as narrow as one near white.
TEST(Accuracy, AWholeEditStaysClose)
{
    const CIImage image = photograph(true);
    const PixelRect rect = roundedRect(image.extent());
    for (const bool withMixer : {false, true}) {
        const CIImage drawn = Pipeline::render(image, ordinaryEdit(withMixer));
        const FloatImage expected = drawReference(drawn, rect);
        for (const StoredFormat format : {StoredFormat::Compact, StoredFormat::Float}) {
            const auto found = levelDifferences(drawnInTiles(drawn, rect, format), expected);
            if (std::getenv("ORVANE_PRINT_ACCURACY"))
                std::printf("whole%s, mean %.4f, 99 %% %.4f, %s\n", withMixer ? ", mixer" : "",
                            found.mean, found.percentile99, described(found).c_str());
            EXPECT_LE(found.mean, 0.03) << described(found);
            EXPECT_LE(found.percentile99, 0.25) << described(found);
            // The mixer grades a pixel or, below a difference of 0.02 between its channels, leaves
            // it: the smallest error may carry a pixel over that edge, wherever it lands then.
            EXPECT_LE(found.largest, withMixer ? 255 : 0.25) << described(found);
        }
    }
}

} // namespace
} // namespace orvane
