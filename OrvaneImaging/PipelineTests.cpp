#include "Pipeline.h"

#include "Stages.h"
#include "TestImages.h"

namespace orvane {
namespace {

using namespace test;
using AdjustMap = Adjustments::AdjustMap;

/// What runs besides the curves, which look at every record themselves.
std::vector<std::string> running(const Adjustments& a)
{
    std::vector<std::string> names;
    for (const Stages::Stage& stage : Stages::all()) {
        if (stage.runs(a) && std::string(stage.name) != "curves")
            names.push_back(stage.name);
    }
    return names;
}

Adjustments with(const AdjustMap& map)
{
    return Adjustments(map);
}

Color rendered(const AdjustMap& map, Color color)
{
    return through([&](const CIImage& image) { return Pipeline::render(image, with(map)); }, color);
}

TEST(Pipeline, ReturnsTheImageForADefaultRecord)
{
    const CIImage image = grey(4, 4, 0.5f);
    EXPECT_TRUE(Pipeline::render(image, Adjustments()).isSame(image));
    EXPECT_TRUE(Pipeline::render(image, with({{"unknown", 3}})).isSame(image));
}

TEST(Pipeline, RunsTheStagesThatTheRecordAsksFor)
{
    const struct {
        AdjustMap map;
        std::vector<std::string> expected;
    } cases[] = {
        {{{"lensDistortion", 5}}, {"lens"}},
        {{{"lensFringe", -5}}, {"lens"}},
        {{{"perspectiveV", -5}}, {"perspective"}},
        {{{"perspectiveH", 5}}, {"perspective"}},
        {{{"temperature", -5}}, {"white balance"}},
        {{{"tint", 5}}, {"white balance"}},
        {{{"highlights", -5}}, {"highlights and shadows"}},
        {{{"shadows", 5}}, {"highlights and shadows"}},
        {{{"whites", -5}}, {"whites and blacks"}},
        {{{"blacks", 5}}, {"whites and blacks"}},
        {{{"dehaze", -5}, {"clarity", -5}, {"texture", -5}}, {"texture", "clarity", "dehaze"}},
        {{{"noiseReduction", 5}}, {"noise reduction"}},
        {{{"colorNoiseReduction", 5}}, {"noise reduction"}},
        {{{"levelsBlackIn", 1}}, {"levels"}},
        {{{"levelsWhiteIn", 254}}, {"levels"}},
        {{{"levelsBlackOut", 1}}, {"levels"}},
        {{{"levelsWhiteOut", 254}}, {"levels"}},
        {{{"levelsGamma", 99}}, {"levels"}},
        {{{"hueRed", 5}}, {"colour mixer"}},
        {{{"satBlue", -5}}, {"colour mixer"}},
        {{{"lumMagenta", 5}}, {"colour mixer"}},
        {{{"vignette", -5}}, {"vignette"}},
        {{{"shadowTint", 5}}, {"split tone"}},
        {{{"highlightTint", -5}}, {"split tone"}},
        // Settings of a stage that is off, and negative amounts of one-sided sliders.
        {{{"sharpenRadius", 3},
          {"sharpenThreshold", 9},
          {"vignetteMidpoint", 9},
          {"tiltWidth", 9},
          {"tiltCenter", 9},
          {"duotoneHue", 9}},
         {}},
        {{{"sharpening", -5},
          {"noiseReduction", -5},
          {"bloom", -5},
          {"halation", -5},
          {"fade", -5},
          {"grain", -5},
          {"duotone", -5},
          {"tiltShift", -5}},
         {}},
        {{{"grain", 5}, {"exposure", 5}, {"bloom", 5}, {"contrast", 5}, {"sharpening", 5}},
         {"exposure", "contrast", "sharpening", "bloom", "grain"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(running(with(c.map)), c.expected) << c.map.begin()->first;

    Adjustments table;
    table.lut = LUT::fromRGB(2, std::vector<float>(24));
    EXPECT_EQ(running(table), std::vector<std::string>{"colour table"});
    table.lutAmount = 0;
    EXPECT_TRUE(running(table).empty());
}

/// Everything at once, as far from neutral as the sliders go.
Adjustments everything()
{
    Adjustments a;
    for (double Adjustments::*field : {&Adjustments::exposure,       &Adjustments::contrast,
                                       &Adjustments::shadows,        &Adjustments::whites,
                                       &Adjustments::temperature,    &Adjustments::vibrance,
                                       &Adjustments::saturation,     &Adjustments::perspectiveV,
                                       &Adjustments::perspectiveH,   &Adjustments::lensDistortion,
                                       &Adjustments::lensFringe,     &Adjustments::texture,
                                       &Adjustments::clarity,        &Adjustments::dehaze,
                                       &Adjustments::sharpening,     &Adjustments::sharpenThreshold,
                                       &Adjustments::noiseReduction, &Adjustments::shadowTint,
                                       &Adjustments::vignette,       &Adjustments::fade,
                                       &Adjustments::grain,          &Adjustments::bloom,
                                       &Adjustments::halation,       &Adjustments::tiltShift,
                                       &Adjustments::duotone})
        a.*field = 80;
    a.levelsGamma = 5;
    a.mixerHue[3] = 100;
    a.curve["r"] = {{0, 30}, {255, 200}};
    a.lut = LUT::fromRGB(2, std::vector<float>(24, 0.5f));
    a.lutAmount = 40;
    a.healSpots = {{0.1, 0.2, 0.1}};
    a.lights = {Light{.radius = 0.3, .brightness = 50}};
    return a;
}

TEST(Pipeline, KeepsTheExtentStageByStageAndInTheEnd)
{
    const Adjustments a = everything();
    ASSERT_EQ(running(a).size() + 1, Stages::all().size());
    const CIImage images[] = {
        coordinates(40, 24),
        coordinates(40, 24).transformed(CGAffineTransform::translation(-7, 11)),
        grey(1, 1, 0.5f),
        CIImage::withColor({0.2, 0.4, 0.6, 1}),
    };
    for (const CIImage& image : images) {
        for (const Stages::Stage& stage : Stages::all()) {
            SCOPED_TRACE(stage.name);
            expectExtent(stage.draw(image, a), image.extent());
        }
        expectExtent(Pipeline::render(image, a), image.extent());
        for (const float value : pixel(Pipeline::render(image, a), 0, 0))
            EXPECT_TRUE(std::isfinite(value));
    }
}

// Otherwise alpha would be computed, stored and encoded for every photograph.
TEST(Pipeline, KeepsAnOpaquePictureOpaque)
{
    const CIImage image = coordinates(40, 24);
    for (const Stages::Stage& stage : Stages::all())
        EXPECT_TRUE(stage.draw(image, everything()).isOpaque()) << stage.name;
}

// How close the tiles come to the plain evaluator is looked at in AccuracyTests.cpp.
TEST(Pipeline, DrawsTheSameBitsInWhateverTiles)
{
    const CIImage graded = Pipeline::render(coordinates(70, 45), everything());
    const auto drawn = [&](const CIContext::Options& options) {
        return pixels(graded, 70, 45, CIContext(options));
    };
    const std::vector<Color> expected = drawn({.threads = 1});
    EXPECT_EQ(drawn({.threads = 3, .tileWidth = 32, .tileHeight = 9, .shuffleSeed = 7}), expected);
    EXPECT_EQ(drawn({.threads = 2, .tileWidth = 13, .tileHeight = 45}), expected);
}

TEST(Pipeline, LeavesAnInfiniteImageAloneWhereAFrameIsNeeded)
{
    const CIImage endless = CIImage::withColor({0.2, 0.4, 0.6, 1});
    const Adjustments a = everything();
    for (const Stages::Draw stage : {Stages::lens, Stages::perspective, Stages::heal,
                                     Stages::relight, Stages::tiltShift, Stages::vignette})
        EXPECT_TRUE(stage(endless, a).isSame(endless));
}

TEST(Pipeline, GivesPublishedNumbersForSingleStages)
{
    const struct {
        const char* what;
        AdjustMap map;
        Color in;
        Color expected;
    } cases[] = {
        {"exposure",
         {{"exposure", 100}},
         {0.2f, 0.3f, 0.6f, 1},
         {0.428709f, 0.643064f, 1.286128f, 1}},
        {"warmer", {{"temperature", 100}}, {1, 1, 1, 1}, {1.516463f, 0.907468f, 0.390425f, 1}},
        {"greener", {{"tint", 100}}, {1, 1, 1, 1}, {0.678522f, 1.123728f, 0.740913f, 1}},
        {"recovered", {{"highlights", -100}}, {1, 1, 1, 1}, {0.5f, 0.5f, 0.5f, 1}},
        {"lifted",
         {{"shadows", 100}},
         {0.02f, 0.02f, 0.02f, 1},
         {0.054235f, 0.054235f, 0.054235f, 1}},
        {"saturated",
         {{"saturation", 50}},
         {0.2f, 0.3f, 0.6f, 1},
         {0.14981f, 0.29981f, 0.74981f, 1}},
        {"vibrant", {{"vibrance", 50}}, {0.2f, 0.3f, 0.6f, 1}, {0.16954f, 0.29988f, 0.69092f, 1}},
        {"hazeless", {{"dehaze", 100}}, {0.2f, 0.3f, 0.6f, 1}, {0.15f, 0.25f, 0.55f, 1}},
        {"hazier", {{"dehaze", -100}}, {0.2f, 0.3f, 0.6f, 1}, {0.2f, 0.3f, 0.6f, 1}},
        {"faded", {{"fade", 40}}, {0, 0.18f, 1, 1}, {0.062745f, 0.231451f, 1, 1}},
        {"duotone", {{"duotone", 100}}, {0.2f, 0.3f, 0.6f, 1}, {0.23753f, 0.19912f, 0.18870f, 1}},
        {"bloom", {{"bloom", 22}}, {0.18f, 0.18f, 0.18f, 1}, {0.212472f, 0.212472f, 0.212472f, 1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        expectNear(rendered(c.map, c.in), c.expected, 1e-4f);
    }
    // The glow of halation fades towards the frame, so its strength is looked at in the middle.
    const CIImage wide = constant(61, 61, {1, 0.5f, 0.5f, 1});
    expectNear(pixel(Pipeline::render(wide, with({{"halation", 100}})), 30, 30),
               {1, 0.605f, 0.555f, 1}, 1e-3f);
}

TEST(Pipeline, CutsAndBendsWithLevels)
{
    const AdjustMap full = {{"levelsBlackIn", 20},
                            {"levelsWhiteIn", 230},
                            {"levelsGamma", 150},
                            {"levelsBlackOut", 10},
                            {"levelsWhiteOut", 240}};
    expectNear(rendered(full, {0, 0.18f, 0.5f, 1}), {0.039216f, 0.262697f, 0.616399f, 1});
    expectNear(rendered(full, {1, 3, -1, 1}), {0.941176f, 0.941176f, 0.039216f, 1});
    // Input points that meet or cross: a slope of 255. The gamma is held at a power of 10.
    const AdjustMap crossed = {{"levelsBlackIn", 100}, {"levelsWhiteIn", 90}};
    expectNear(rendered(crossed, {0.3921f, 0.4f, 0.394117f, 1}), {0, 1, 0.4998f, 1}, 2e-3f);
    for (const double gamma : {9.9, 1.0, -50.0})
        expectNear(rendered({{"levelsGamma", gamma}}, {0.5f, 1.2f, -0.1f, 1}),
                   {0.000977f, 1, 0, 1});
    // A gamma of exactly 100 still cuts.
    expectNear(rendered({{"levelsWhiteOut", 127.5}}, {0.5f, 1.2f, -0.1f, 1}), {0.25f, 0.5f, 0, 1});
}

TEST(Pipeline, MixesTheColourTableByItsAmount)
{
    Adjustments a;
    // Red and blue change places.
    a.lut = LUT::fromRGB(2, std::vector<float>{0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1, 1,
                                               1, 0, 0, 1, 0, 1, 1, 1, 0, 1, 1, 1});
    const auto at = [&](double amount) {
        a.lutAmount = amount;
        return through([&](const CIImage& image) { return Pipeline::render(image, a); },
                       {0.2f, 0.3f, 0.6f, 1});
    };
    expectNear(at(100), {0.6f, 0.3f, 0.2f, 1});
    expectNear(at(Adjustments().lutAmount), {0.6f, 0.3f, 0.2f, 1}); // whole when nothing is said
    expectNear(at(140), {0.6f, 0.3f, 0.2f, 1});
    expectNear(at(25), {0.3f, 0.3f, 0.5f, 1});
    expectNear(at(0), {0.2f, 0.3f, 0.6f, 1}, 0);
}

TEST(Pipeline, DarkensTheCornersForANegativeVignette)
{
    const CIImage image = grey(60, 40, 0.5f);
    const auto corner = [&](double amount) {
        return pixel(Pipeline::render(image, with({{"vignette", amount}})), 0, 0)[0];
    };
    EXPECT_LT(corner(-50), 0.49f);
    EXPECT_GT(corner(50), 0.51f);
    // A midpoint of 50 makes the radius 3/4 of the width, 450 pixels; this corner is at t = 0.8.
    const CIImage large = grey(600, 400, 1);
    EXPECT_NEAR(pixel(Pipeline::render(large, with({{"vignette", -50}})), 0, 0)[0], 0.676415f,
                1e-4f);
}

TEST(Pipeline, KeepsTheTiltShiftBandSharp)
{
    const CIImage stripes = picture(40, 100, [](int x, int) {
        const float value = x % 2 ? 1.0f : 0.0f;
        return Color{value, value, value, 1};
    });
    // The band's middle is 20 rows below the top; it is sharp for 10 rows each way, and wholly
    // blurred from 20 rows on.
    const CIImage image = Pipeline::render(
        stripes, with({{"tiltShift", 100}, {"tiltCenter", 20}, {"tiltWidth", 20}}));
    for (const int y : {71, 80, 89})
        expectNear(pixel(image, 21, y), {1, 1, 1, 1}, 1e-4f);
    for (const int y : {5, 59})
        EXPECT_NEAR(pixel(image, 21, y)[0], 0.5f, 0.02f) << y;
}

TEST(Pipeline, TiltsThePictureForPerspective)
{
    // The top edge is pulled in: what was at the top left corner moves inwards, and in the wedge
    // beside it the picture from before shows instead of nothing.
    const CIImage image = picture(100, 80, [](int x, int) {
        return Color{x < 2 ? 1.0f : 0.0f, 0, 0, 1};
    });
    const CIImage tilted = Pipeline::render(image, with({{"perspectiveV", 50}}));
    EXPECT_NEAR(pixel(tilted, 12, 79)[0], 1, 0.3f);
    expectNear(pixel(tilted, 0, 79), {1, 0, 0, 1}, 1e-3f);
    EXPECT_NEAR(pixel(tilted, 20, 79)[0], 0, 1e-3f);
    for (const int y : {0, 40, 79})
        EXPECT_NEAR(pixel(tilted, 99, y)[3], 1, 1e-5f);
}

TEST(Pipeline, ConvertsHslToRgb)
{
    const struct {
        double h, s, l;
        CIColor expected;
    } cases[] = {
        {210, 0.55, 0.22, {0.099, 0.22, 0.341, 1}}, // the two colours of the default duotone
        {30, 0.5, 0.78, {0.89, 0.78, 0.67, 1}},
        {0, 1, 0.5, {1, 0, 0, 1}},
        {60, 1, 0.5, {1, 1, 0, 1}},
        {120, 1, 0.5, {0, 1, 0, 1}},
        {180, 1, 0.25, {0, 0.5, 0.5, 1}},
        {240, 0.5, 0.5, {0.25, 0.25, 0.75, 1}},
        {300, 1, 0.5, {1, 0, 1, 1}},
        {330, 1, 0.5, {1, 0, 0.5, 1}},
        {77, 0, 0.4, {0.4, 0.4, 0.4, 1}},
    };
    for (const auto& c : cases) {
        const CIColor color = Pipeline::hslToRgb(c.h, c.s, c.l);
        EXPECT_NEAR(color.red, c.expected.red, 1e-12) << c.h;
        EXPECT_NEAR(color.green, c.expected.green, 1e-12) << c.h;
        EXPECT_NEAR(color.blue, c.expected.blue, 1e-12) << c.h;
    }
}

} // namespace
} // namespace orvane
