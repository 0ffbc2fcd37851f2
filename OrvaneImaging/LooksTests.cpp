#include "Looks.h"

#include "TestImages.h"
#include "WhiteBalance.h"

#include <limits>
#include <numeric>

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

TEST(LooksAll, FitsTheRecipesToThePicture)
{
    const Stats flatGrey{.blackPoint = 100,
                         .whitePoint = 100,
                         .contrastSpread = 0,
                         .meanSaturation = 0,
                         .haze = 116};
    const struct {
        const char* id;
        const char* key;
        double usual; // for the default Stats: only colour is a little short
        double needy; // for a picture that lacks everything
    } rows[] = {
        {"pop", "contrast", 12, 48},        {"pop", "clarity", 10, 34},
        {"pop", "vibrance", 20, 44},        {"pop", "dehaze", 0, 28},
        {"pop", "blacks", -4, -12},         {"pop", "whites", 6, 6},
        {"warm", "vibrance", 13, 28},       {"cool", "contrast", 16, 40},
        {"mono", "contrast", 18, 48},       {"mono", "saturation", -100, -100},
        {"film", "vibrance", 10, 22},       {"cinema", "contrast", 14, 32},
        {"faded", "satBlue", -12, -12},     {"golden", "vibrance", 15, 30},
        {"miniature", "tiltWidth", 26, 26}, {"poster", "duotoneHue", 220, 220},
    };
    const auto value = [](const Stats& stats, const std::string& id, const char* key) {
        for (const Looks::Look& look : Looks::all(stats)) {
            if (look.id == id)
                return look.adjustments.at(key);
        }
        return nan;
    };
    for (const auto& row : rows) {
        EXPECT_EQ(value({}, row.id, row.key), row.usual) << row.id << " " << row.key;
        EXPECT_EQ(value(flatGrey, row.id, row.key), row.needy) << row.id << " " << row.key;
    }
    EXPECT_EQ(value({.blackPoint = 16}, "pop", "blacks"), -4);
    EXPECT_EQ(value({.blackPoint = 17}, "pop", "blacks"), -12);

    // How many keys each recipe moves, in the order of the panel: a lost line of the table shows.
    std::vector<size_t> counts;
    for (const Looks::Look& look : Looks::all({}))
        counts.push_back(look.adjustments.size());
    EXPECT_EQ(counts, (std::vector<size_t>{6, 5, 4, 3, 12, 10, 7, 10, 7, 5}));
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
    // No jitter, and the middle lean.
    const Looks::Look still = Looks::pop({}, drawing({}));
    EXPECT_EQ(still.reason, "A balanced lift across the range — punchy color.");
    EXPECT_EQ(still.adjustments,
              (Adjustments::AdjustMap{{"exposure", -1},
                                      {"blacks", 0},
                                      {"whites", 0},
                                      {"shadows", 0},
                                      {"highlights", 0},
                                      {"contrast", 8},
                                      {"clarity", 8},
                                      {"vibrance", 27},
                                      {"dehaze", 0},
                                      {"vignette", -14},
                                      {"saturation", 5}}));
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
        {{.medianLuma = 0}, "exposure", 30}, // held
        {{.medianLuma = 255}, "exposure", -30},
        {{.blackPoint = 30}, "blacks", 0},
        {{.blackPoint = 31}, "blacks", -5}, // -4.5, away from zero
        {{.blackPoint = 200}, "blacks", -25},
        {{.blackPoint = 7.9}, "blacks", 10},
        {{.blackPoint = 8}, "blacks", 0},
        {{.whitePoint = 215}, "whites", 0},
        {{.whitePoint = 210}, "whites", 8},
        {{.medianLuma = 105}, "shadows", 0},
        {{.medianLuma = 95}, "shadows", 7},
        {{.whitePoint = 246}, "highlights", 0},
        {{.whitePoint = 255}, "highlights", -17}, // -17.1
        {{.contrastSpread = 0}, "contrast", 36},
        {{.contrastSpread = 0}, "clarity", 28}, // 27.6
        {{.meanSaturation = 0}, "vibrance", 48},
        {{.haze = 40}, "dehaze", 22},
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
    const struct {
        double draw;
        const char* phrase;
    } cases[] = {
        {0, "warm."},   {0.2, "cool."}, {0.6, "gritty."}, {0x1.fffffffffffffp-1, "filmic."},
        {1, "filmic."}, {7, "filmic."}, {-1, "warm."},    {nan, "warm."},
    };
    for (const auto& c : cases) {
        std::vector<double> draws(9, 0.5);
        draws.push_back(c.draw);
        EXPECT_TRUE(Looks::pop({}, drawing(draws)).reason.ends_with(c.phrase)) << c.draw;
    }
    const auto warm = Looks::pop({}, drawing({.5, .5, .5, .5, .5, .5, .5, .5, .5, 0})).adjustments;
    EXPECT_EQ(warm.at("temperature"), 12);
    EXPECT_EQ(warm.at("vibrance"), 19);
    EXPECT_FALSE(warm.contains("saturation"));
    for (int i = 0; i < 100; ++i) {
        const double drawn = Looks::systemRandom();
        EXPECT_TRUE(drawn >= 0 && drawn < 1) << drawn;
    }
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
