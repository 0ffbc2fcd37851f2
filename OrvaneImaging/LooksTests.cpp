#include "Looks.h"

#include "TestImages.h"
#include "WhiteBalance.h"

#include <limits>
#include <map>

namespace orvane {
namespace {

using Looks::Stats;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

using Level = std::array<int, 3>;

/// A picture of sRGB bytes, numbered row by row from the top.
CIImage bytes(int width, int height, const std::function<Level(int index)>& level)
{
    auto bitmap = std::make_shared<Bitmap>(width, height, 3, SampleType::U8, AlphaKind::None);
    for (int i = 0; i < width * height; ++i) {
        const Level pixel = level(i);
        for (int c = 0; c < 3; ++c)
            bitmap->row(i / width)[i % width * 3 + c] = uint8_t(pixel[size_t(c)]);
    }
    return CIImage::withBitmap(std::move(bitmap));
}

CIImage flat(int width, int height, Level level)
{
    return bytes(width, height, [=](int) { return level; });
}

TEST(LooksAnalyze, MeasuresPictures)
{
    const CIImage ramp = bytes(10, 10, [](int i) { return Level{i, i, i}; });
    const CIImage split = bytes(10, 4, [](int i) {
        return i < 10 ? Level{} : Level{200, 100, 50};
    });
    const struct {
        const char* what;
        CIImage image;
        double sample;
        Stats expected; // median, black, white, spread, saturation, warmth, green, haze
    } cases[] = {
        {"black", flat(8, 8, {}), 256, {0, 0, 0, 0, 0, 0, 0, 40}},
        {"mid-grey", flat(8, 8, {128, 128, 128}), 256, {128, 128, 128, 0, 0, 0, 0, 144}},
        {"one pixel", flat(1, 1, {255, 255, 255}), 256, {255, 255, 255, 0, 0, 0, 0, 271}},
        {"red", flat(4, 4, {200, 0, 0}), 256, {60, 60, 60, 0, 100, 200 / 2.55, -100 / 2.55, 76}},
        {"each level of 0..99 once", ramp, 256, {49, 4, 94, 90, 0, 0, 0, 0}},
        {"moved off the origin",
         ramp.transformed(CGAffineTransform::translation(-37, 5)),
         10,
         {49, 4, 94, 90, 0, 0, 0, 0}},
        {"a quarter black",
         split,
         256,
         {124, 0, 124, 124, 0.75 * 75, 112.5 / 2.55, (75 - 93.75) / 2.55, 0}},
        {"reduced", flat(512, 256, {10, 20, 30}), 64, {18, 18, 18, 0, 200. / 3, -20 / 2.55, 0, 40}},
        {"reduced to a line", flat(400, 2, {128, 128, 128}), 200, {128, 128, 128, 0, 0, 0, 0, 144}},
        {"empty", CIImage(), 256, {}},
        {"infinite", CIImage::withColor({1, 0, 0, 1}), 256, {}},
        {"too far away to be drawn",
         ramp.transformed(CGAffineTransform::translation(3e8, 0)),
         256,
         {}},
        {"no sample", ramp, 0, {}},
        {"negative sample", ramp, -5, {}},
        {"a sample that is no number", ramp, nan, {}},
        {"an endless sample", ramp, infinity, {49, 4, 94, 90, 0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const Stats s = Looks::analyze(c.image, c.sample);
        EXPECT_EQ(s.medianLuma, c.expected.medianLuma);
        EXPECT_EQ(s.blackPoint, c.expected.blackPoint);
        EXPECT_EQ(s.whitePoint, c.expected.whitePoint);
        EXPECT_EQ(s.contrastSpread, c.expected.contrastSpread);
        EXPECT_NEAR(s.meanSaturation, c.expected.meanSaturation, 1e-9);
        EXPECT_NEAR(s.warmth, c.expected.warmth, 1e-9);
        EXPECT_NEAR(s.greenMagenta, c.expected.greenMagenta, 1e-9);
        EXPECT_EQ(s.haze, c.expected.haze);
    }
}

TEST(LooksAll, MovesOnlySlidersThatTheRenderKnows)
{
    std::vector<std::string> keys;
    for (const Looks::Look& look : Looks::all({})) {
        for (const auto& [key, value] : look.adjustments)
            keys.push_back(key);
    }
    for (const Looks::Lean& lean : Looks::popLeans()) {
        for (const auto& [key, value] : lean.additions)
            keys.push_back(key);
    }
    for (const auto& [key, value] : Looks::pop({}).adjustments)
        keys.push_back(key);
    for (const Looks::Bound& bound : Looks::popBounds)
        keys.push_back(bound.key);
    for (const std::string& key : keys)
        EXPECT_FALSE(Adjustments({{key, 1234.5}}).isIdentity()) << key;
}

/// The looks for the default Stats, to which only colour is a little short.
// clang-format off
std::vector<Looks::Look> usualLooks()
{
    return {
        {"pop", "Make it pop", "A balanced lift — contrast, clarity, a little color.",
         {{"contrast", 12}, {"clarity", 10}, {"vibrance", 20}, {"dehaze", 0}, {"blacks", -4},
          {"whites", 6}}},
        {"warm", "Warmer", "Leans into warm light and opens the shadows.",
         {{"temperature", 22}, {"highlights", -10}, {"shadows", 12}, {"vibrance", 13},
          {"contrast", 8}}},
        {"cool", "Cooler", "Cooler and harder — good for wet streets and blue hour.",
         {{"temperature", -20}, {"contrast", 16}, {"blacks", -14}, {"clarity", 10}}},
        {"mono", "Mono", "Strips color so the shapes carry the frame.",
         {{"saturation", -100}, {"contrast", 18}, {"clarity", 12}}},
        {"film", "Film",
         "Colour negative: cool shadows, warm highlights, grain and a little halation.",
         {{"contrast", 10}, {"highlights", -14}, {"shadows", 10}, {"vibrance", 10},
          {"saturation", -6}, {"shadowTint", -14}, {"highlightTint", 20}, {"satOrange", 14},
          {"satGreen", -18}, {"halation", 26}, {"grain", 18}, {"fade", 10}}},
        {"cinema", "Cinema", "Teal shadows against orange skin — the modern film-grade look.",
         {{"contrast", 14}, {"shadows", 8}, {"blacks", -10}, {"shadowTint", -34},
          {"highlightTint", 30}, {"satOrange", 18}, {"satAqua", 12}, {"satYellow", -14},
          {"halation", 14}, {"vignette", -14}}},
        {"faded", "Faded", "Lifted blacks and muted colour, like a print left in the sun.",
         {{"contrast", -8}, {"highlights", -18}, {"saturation", -18}, {"fade", 34}, {"grain", 12},
          {"highlightTint", 12}, {"satBlue", -12}}},
        {"golden", "Golden", "Warm, glowing light — golden hour even when it wasn't.",
         {{"temperature", 26}, {"exposure", 6}, {"highlights", -20}, {"shadows", 14},
          {"vibrance", 15}, {"highlightTint", 34}, {"satOrange", 20}, {"satYellow", 12},
          {"bloom", 22}, {"halation", 30}}},
        {"miniature", "Miniature",
         "Tilt-shift: a sharp band through the middle turns the scene into a toy model.",
         {{"tiltShift", 80}, {"tiltCenter", 50}, {"tiltWidth", 26}, {"saturation", 22},
          {"vibrance", 16}, {"contrast", 16}, {"clarity", 14}}},
        {"poster", "Poster", "Two colours across the whole tonal range — a print, not a photo.",
         {{"duotone", 85}, {"duotoneHue", 220}, {"contrast", 22}, {"blacks", -12}, {"whites", 8}}},
    };
}
// clang-format on

void expectLooks(const std::vector<Looks::Look>& actual, const std::vector<Looks::Look>& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].id);
        EXPECT_EQ(actual[i].id, expected[i].id);
        EXPECT_EQ(actual[i].name, expected[i].name);
        EXPECT_EQ(actual[i].reason, expected[i].reason);
        EXPECT_EQ(actual[i].adjustments, expected[i].adjustments);
    }
}

TEST(LooksAll, FitsTheRecipesToThePicture)
{
    expectLooks(Looks::all({}), usualLooks());
    expectLooks(Looks::all({.contrastSpread = 300, .meanSaturation = 30, .haze = -9}),
                usualLooks());

    // Needs of 30, 15 and 11, each from half a step below; and needs beyond all ranges: 60, 40, 40.
    const Stats middling{.contrastSpread = 61, .meanSaturation = 25.5, .haze = 10.5};
    const Stats worst{.blackPoint = 17, .contrastSpread = -9, .meanSaturation = -9, .haze = 99};
    const struct {
        size_t look;
        const char* key;
        double middling;
        double worst;
    } rows[] = {
        {0, "contrast", 30, 48}, {0, "clarity", 22, 34},  {0, "vibrance", 24, 44},
        {0, "dehaze", 8, 28},    {0, "blacks", -4, -12},  {1, "vibrance", 16, 28},
        {2, "contrast", 28, 40}, {3, "contrast", 33, 48}, {4, "vibrance", 12, 22},
        {5, "contrast", 23, 32}, {7, "vibrance", 18, 30},
    };
    std::vector<Looks::Look> forMiddling = usualLooks();
    std::vector<Looks::Look> forWorst = usualLooks();
    forWorst[0].reason = "Adds punch — the frame is reading flat.";
    for (const auto& row : rows) {
        forMiddling[row.look].adjustments[row.key] = row.middling;
        forWorst[row.look].adjustments[row.key] = row.worst;
    }
    expectLooks(Looks::all(middling), forMiddling);
    expectLooks(Looks::all(worst), forWorst);
    EXPECT_EQ(Looks::all({.contrastSpread = 62})[0].adjustments.at("contrast"), 29); // 29.4
}

TEST(LooksAll, SaysWhyItLiftsThePicture)
{
    const struct {
        Stats stats;
        const char* reason;
    } cases[] = {
        {{.contrastSpread = 59, .meanSaturation = 0, .haze = 99},
         "Adds punch — the frame is reading flat."},
        {{.contrastSpread = 60, .meanSaturation = 14.9, .haze = 99},
         "Lifts the color a touch and adds bite."},
        {{.contrastSpread = 60, .meanSaturation = 15, .haze = 20.1},
         "Clears the haze and deepens the blacks."},
        {{.haze = 20}, "A balanced lift — contrast, clarity, a little color."},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Looks::all(c.stats).front().reason, c.reason);
}

/// The numbers of a list, then halves without end.
Looks::RandomSource drawing(std::vector<double> numbers)
{
    return [numbers = std::move(numbers), next = size_t(0)]() mutable {
        return next < numbers.size() ? numbers[next++] : 0.5;
    };
}

TEST(LooksPop, DrawsItsJitterInTheOrderOfTheSliders)
{
    const struct {
        const char* key;
        double reach;
    } rows[] = {
        {"exposure", 4}, {"blacks", 3},  {"whites", 3},   {"shadows", 3}, {"highlights", 3},
        {"contrast", 6}, {"clarity", 6}, {"vibrance", 6}, {"dehaze", 2},
    };
    const Looks::Look still = Looks::pop({}, drawing({})); // no jitter, and the middle lean
    EXPECT_EQ(still.id, "pop");
    EXPECT_EQ(still.name, "Make it pop");
    EXPECT_EQ(still.reason, "A balanced lift across the range — punchy color.");
    std::vector<double> draws;
    for (const auto& row : rows) {
        std::vector<double> high = draws;
        high.push_back(1);
        Adjustments::AdjustMap expected = still.adjustments;
        expected[row.key] += row.reach;
        EXPECT_EQ(Looks::pop({}, drawing(high)).adjustments, expected) << row.key;
        draws.push_back(0.5);
    }
}

TEST(LooksPop, AnswersToThePicture)
{
    const struct {
        Stats stats;
        const char* key;
        double expected; // without jitter; the lean adds 12 to vibrance
    } cases[] = {
        {{.medianLuma = 86.25}, "exposure", 12}, // 12.4
        {{.medianLuma = 120.3}, "exposure", 2}, // 1.504
        {{.medianLuma = 0}, "exposure", 30}, // held
        {{.medianLuma = 255}, "exposure", -30},
        {{.blackPoint = 30}, "blacks", 0},
        {{.blackPoint = 31}, "blacks", -5}, // -4.5, away from zero
        {{.blackPoint = 50}, "blacks", -14},
        {{.blackPoint = 200}, "blacks", -25},
        {{.blackPoint = 7.9}, "blacks", 10},
        {{.blackPoint = 8}, "blacks", 0},
        {{.whitePoint = 215}, "whites", 0},
        {{.whitePoint = 214}, "whites", 6}, // 6.4
        {{.whitePoint = 191}, "whites", 16}, // 15.6
        {{.medianLuma = 105}, "shadows", 0},
        {{.medianLuma = 104}, "shadows", 4}, // 3.85
        {{.medianLuma = 103}, "shadows", 4}, // 4.2
        {{.medianLuma = 102}, "shadows", 5}, // 4.55
        {{.medianLuma = 75}, "shadows", 14},
        {{.whitePoint = 246}, "highlights", 0},
        {{.whitePoint = 247}, "highlights", -10}, // -9.9
        {{.whitePoint = 255}, "highlights", -17}, // -17.1
        {{.contrastSpread = 73}, "contrast", 24}, // 23.6, from a need of 38.5 that counts as 39
        {{.contrastSpread = 68}, "contrast", 24}, // 24.4, from 41
        {{.contrastSpread = 0}, "contrast", 36}, // held
        {{.contrastSpread = 70}, "clarity", 19}, // 19.2
        {{.contrastSpread = 0}, "clarity", 28}, // 27.6
        {{.meanSaturation = 99}, "vibrance", 20},
        {{.meanSaturation = 20}, "vibrance", 34},
        {{.meanSaturation = -9}, "vibrance", 48},
        {{.haze = 53}, "dehaze", 29}, // 29.15
        {{.haze = 54}, "dehaze", 30}, // 29.7
        {{.haze = 400}, "dehaze", 30},
        {{.medianLuma = 255}, "vignette", -14},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Looks::pop(c.stats, drawing({})).adjustments.at(c.key), c.expected) << c.key;

    const struct {
        Stats stats;
        const char* opening;
    } openings[] = {
        {{.medianLuma = 94}, "Opens it up and lifts the shadows"},
        {{.medianLuma = 166, .contrastSpread = 10}, "Pulls it back and recovers the highlights"},
        {{.medianLuma = 165, .contrastSpread = 69}, "Expands the range for more punch"},
        {{.medianLuma = 95, .contrastSpread = 70}, "A balanced lift across the range"},
    };
    for (const auto& o : openings)
        EXPECT_TRUE(Looks::pop(o.stats, drawing({})).reason.starts_with(o.opening)) << o.opening;
}

TEST(LooksPop, LeansAsTheTenthDrawSays)
{
    const Adjustments::AdjustMap upright{
        {"exposure", -1}, {"blacks", 0},  {"whites", 0},    {"shadows", 0}, {"highlights", 0},
        {"contrast", 8},  {"clarity", 8}, {"vibrance", 15}, {"dehaze", 0},  {"vignette", -14}};
    const Adjustments::AdjustMap warm{{"temperature", 12}, {"vibrance", 4}};
    const Adjustments::AdjustMap filmic{{"highlights", -5}, {"contrast", -5}, {"vibrance", 4}};
    const struct {
        double draw;
        const char* phrase;
        Adjustments::AdjustMap additions;
    } cases[] = {
        {0, "warm.", warm},
        {0.2, "cool.", {{"temperature", -10}}},
        {0.4, "punchy color.", {{"vibrance", 12}, {"saturation", 5}}},
        {0.6, "gritty.", {{"clarity", 8}, {"contrast", 6}}},
        {0x1.fffffffffffffp-1, "filmic.", filmic},
        {1, "filmic.", filmic},
        {7, "filmic.", filmic},
        {-1, "warm.", warm},
        {nan, "warm.", warm},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.draw);
        Adjustments::AdjustMap expected = upright;
        for (const auto& [key, value] : c.additions)
            expected[key] += value;
        const Looks::Look look =
            Looks::pop({}, drawing({.5, .5, .5, .5, .5, .5, .5, .5, .5, c.draw}));
        EXPECT_EQ(look.adjustments, expected);
        EXPECT_EQ(look.reason, std::string("A balanced lift across the range — ") + c.phrase);
    }
    for (int i = 0; i < 100; ++i) {
        const double drawn = Looks::systemRandom();
        EXPECT_TRUE(drawn >= 0 && drawn < 1) << drawn;
    }
}

TEST(LooksPop, KeepsItsSlidersInRange)
{
    const std::map<std::string, std::pair<double, double>> expected = {
        {"exposure", {-30, 30}},   {"contrast", {-10, 55}},    {"clarity", {0, 45}},
        {"vibrance", {0, 55}},     {"saturation", {-10, 30}},  {"dehaze", {0, 35}},
        {"blacks", {-25, 22}},     {"whites", {-12, 32}},      {"shadows", {-15, 45}},
        {"highlights", {-40, 15}}, {"temperature", {-20, 20}},
    };
    std::map<std::string, std::pair<double, double>> bounds;
    for (const Looks::Bound& bound : Looks::popBounds)
        bounds[bound.key] = {bound.lowest, bound.highest};
    EXPECT_EQ(bounds, expected);

    // No lean reaches the ends of the two sliders that only leans move; an unruly source of jitter
    // reaches those of all others.
    const auto low = Looks::pop({}, [] { return -1000.0; }).adjustments; // leans to warm
    const auto high = Looks::pop({}, [] { return 1000.0; }).adjustments; // to filmic
    for (const auto& [key, range] : expected) {
        if (key == "saturation" || key == "temperature")
            continue;
        EXPECT_EQ(low.at(key), range.first) << key;
        EXPECT_EQ(high.at(key), range.second) << key;
    }
    EXPECT_EQ(low.at("vignette"), -14);
}

TEST(LooksApply, ScalesEveryValue)
{
    const Looks::Look look{"", "", "", {{"exposure", 30}, {"duotoneHue", 220}, {"blacks", -12}}};
    const struct {
        double strength;
        double k;
    } cases[] = {{100, 1}, {50, 0.5}, {0, 0}, {150, 1}, {-5, 0}, {infinity, 1}, {nan, 0}};
    for (const auto& c : cases) {
        const Adjustments::AdjustMap expected{
            {"exposure", 30 * c.k}, {"duotoneHue", 220 * c.k}, {"blacks", -12 * c.k}};
        EXPECT_EQ(Looks::apply(look, c.strength), expected) << c.strength;
    }
    EXPECT_FALSE(std::signbit(Looks::apply(look, 0).at("blacks"))); // would be shown as "-0"
}

TEST(WhiteBalance, GivesTheSlidersThatNeutralise)
{
    const struct {
        double r, g, b;
        WhiteBalance::Neutralising expected;
    } cases[] = {
        {0, 0, 0, {0, 0}},           {127, 127, 127, {0, 0}},    {200, 180, 116, {-100, -73}},
        {255, 0, 0, {-100, 100}},    {0, 255, 255, {100, -100}}, {100, 110.5, 121, {25, 0}},
        {100, 100.15, 100, {0, -1}}, // half a step, away from zero
        {nan, 10, 10, {0, 0}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(WhiteBalance::neutralise(c.r, c.g, c.b), c.expected) << c.r << " " << c.g;
    EXPECT_FALSE(std::signbit(WhiteBalance::neutralise(50, 50.01, 50).tint));
}

} // namespace
} // namespace orvane
