#include "BrushMask.h"
#include "Relight.h"
#include "TestImages.h"

#include <numbers>

namespace orvane {
namespace {

using namespace test;

TEST(Relight, ReturnsTheImageForLightsThatChangeNothing)
{
    const CIImage image = grey(20, 10, 0.2f);
    const std::vector<Light> idle = {
        {.radius = 0.5}, // no amount
        {.radius = 0, .brightness = 50},
        {.type = "brush", .radius = 0.5, .brightness = 50}, // no stroke
    };
    EXPECT_TRUE(Relight::apply(image, idle).isSame(image));
    EXPECT_TRUE(Relight::apply(image, {}).isSame(image));
    const CIImage endless = CIImage::withColor({1, 1, 1, 1});
    EXPECT_TRUE(Relight::apply(endless, {{.radius = 1, .brightness = 50}}).isSame(endless));
}

// Within the solid core. The numbers come from the formulas in 64 bits.
TEST(Relight, AppliesTheFourAmountsInAGammaSpace)
{
    const Color gray{0.2f, 0.2f, 0.2f, 1};
    const Color blue{0.2f, 0.3f, 0.6f, 1};
    const Color dark{0.001f, 0.001f, 0.001f, 1};
    const Color dim{0.15f, 0.2f, 0.3f, 1};
    const Color pale{0.2f, 0.21f, 0.24f, 1};
    const Color wide{1.5f, 0.2f, -0.1f, 1};
    const Light core{.radius = 2};
    const auto light = [&](double brightness, double warmth, double contrast, double saturation) {
        Light l = core;
        l.brightness = brightness;
        l.warmth = warmth;
        l.contrast = contrast;
        l.saturation = saturation;
        return l;
    };
    const struct {
        const char* what;
        std::vector<Light> lights;
        Color in;
        Color expected;
    } cases[] = {
        {"two of 30 are one of 60",
         {light(30, 0, 0, 0), light(30, 0, 0, 0)},
         gray,
         {0.562554f, 0.562554f, 0.562554f, 1}},
        {"-100 leaves a tenth", {light(-100, 0, 0, 0)}, gray, {0.001262f, 0.001262f, 0.001262f, 1}},
        {"-85", {light(-85, 0, 0, 0)}, gray, {0.00308f, 0.00308f, 0.00308f, 1}},
        {"brightness up to 4",
         {light(250, 0, 0, 0), light(250, 0, 0, 0)},
         dark,
         {0.034517f, 0.034517f, 0.034517f, 1}},
        {"warm", {light(0, 100, 0, 0)}, gray, {0.332462f, 0.200032f, 0.103206f, 1}},
        {"colder without a limit",
         {light(0, -150, 0, 0)},
         gray,
         {0.067509f, 0.200032f, 0.412569f, 1}},
        {"contrast", {light(0, 0, 50, 0)}, gray, {0.191532f, 0.191532f, 0.191532f, 1}},
        {"contrast from -0.9", {light(0, 0, -200, 0)}, blue, {0.215841f, 0.225232f, 0.246666f, 1}},
        {"contrast up to 2", {light(0, 0, 300, 0)}, dim, {0.054582f, 0.167235f, 0.509017f, 1}},
        {"no colour", {light(0, 0, 0, -100)}, blue, {0.294098f, 0.294098f, 0.294098f, 1}},
        {"saturation from -1", {light(0, 0, 0, -300)}, blue, {0.294098f, 0.294098f, 0.294098f, 1}},
        {"saturation up to 2", {light(0, 0, 0, 300)}, pale, {0.18095f, 0.210167f, 0.306819f, 1}},
        {"0.0009 in all", {light(0.04, -0.02, 0.01, -0.02)}, wide, wide},
        {"0.0011 in all", {light(0.04, -0.02, 0.02, -0.03)}, wide, {1, 0.200237f, 0, 1}},
        {"all four", {light(50, 20, 30, 40)}, blue, {0.546957f, 0.957508f, 1, 1}},
        {"opposites", {light(50, 0, 0, 0), light(-50, 0, 0, 0)}, blue, blue},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        expectNear(through([&](const CIImage& i) { return Relight::apply(i, c.lights); }, c.in),
                   c.expected, 1e-4f);
    }
    const CIImage pane = constant(3, 3, {0.1f, 0.1f, 0.1f, 0.5f}, false);
    EXPECT_EQ(pixel(Relight::apply(pane, {light(50, 20, 30, 40)}), 1, 1)[3], 0.5f);
}

/// How much of a light of brightness 50 arrives at a pixel of a grey picture: 0..1.
double arriving(const CIImage& image, const std::vector<Light>& lights, int x, int y)
{
    const double before = std::pow(pixel(image, x, y)[0], 0.4545);
    const double after = std::pow(pixel(Relight::apply(image, lights), x, y)[0], 1 / 2.2);
    return (after / before - 1) / 0.5;
}

TEST(Relight, ShapesLightsFromTheTopLeftInPartsOfTheLongEdge)
{
    // Radius 20 about (30, 45) in image coordinates.
    const Light round{.x = 0.3, .y = 0.25, .radius = 0.2, .brightness = 50};
    Light soft = round;
    soft.feather = 1;
    Light halfSoft = round;
    halfSoft.feather = 0.5;
    Light outside = round;
    outside.invert = true;
    // Across 40 pixels about x = 50; or about y = 30, growing downwards.
    const Light ramp{.type = "linear", .radius = 0.2, .brightness = 50};
    Light down = ramp;
    down.angle = 90;
    Light eased = ramp;
    eased.feather = 1;
    Light half = ramp;
    half.feather = 0.5;
    Light slanted = ramp;
    slanted.angle = 30;
    Light rising = ramp;
    rising.angle = -30;
    Light back = slanted;
    back.invert = true;
    const Light high{.x = 0, .y = 0, .radius = 0.1, .brightness = 50};
    // Less than a pixel, between the middles of two.
    const Light tiny{.x = 0.308, .y = 0.5 - 0.5 / 60, .radius = 1e-6, .brightness = 50};
    Light step = tiny;
    step.type = "linear";
    const struct {
        const char* what;
        Light light;
        int x, y;
        double expected;
    } cases[] = {
        {"hard edge, within", round, 49, 44, 1},
        {"hard edge, beyond", round, 50, 44, 0},
        {"soft, half way", soft, 40, 44, 0.461}, // t = 0.5256
        {"half soft, core", halfSoft, 38, 44, 1}, // t = 0.4258
        {"half soft, begins to fall", halfSoft, 40, 44, 0.9923}, // t = 0.5256
        {"half soft, half way", halfSoft, 45, 44, 0.4241}, // t = 0.7754
        {"inverted, within", outside, 30, 44, 0},
        {"inverted, beyond", outside, 70, 44, 1},
        {"ramp, before", ramp, 29, 10, 0},
        {"ramp, a quarter", ramp, 40, 10, 0.2625},
        {"ramp, after", ramp, 71, 10, 1},
        {"eased, a quarter", eased, 40, 10, 0.1705},
        {"downwards, top", down, 50, 51, 0},
        {"downwards, bottom", down, 50, 8, 1},
        {"half eased", half, 40, 10, 0.2165},
        {"slanted", slanted, 60, 40, 0.5961},
        {"slanted upwards", rising, 60, 40, 0.8586},
        {"slanted, inverted", back, 60, 40, 0.4039},
        {"inverted, before", back, 20, 50, 1},
        {"inverted, after", back, 80, 10, 0},
        {"in the corner", high, 6, 53, 1},
        {"beyond the corner", high, 7, 52, 0},
        {"a pixel at least", tiny, 31, 30, 1},
        {"no more than a pixel", tiny, 29, 30, 0},
        {"two pixels of ramp", step, 31, 30, 0.85},
    };
    for (const CGPoint origin : {CGPoint{0, 0}, CGPoint{-37, 13}}) {
        SCOPED_TRACE(origin.x);
        const CIImage image =
            grey(100, 60, 0.2f).transformed(CGAffineTransform::translation(origin.x, origin.y));
        for (const auto& c : cases) {
            const double found =
                arriving(image, {c.light}, c.x + int(origin.x), c.y + int(origin.y));
            EXPECT_NEAR(found, c.expected, 2e-3) << c.what;
        }
    }
}

TEST(Relight, PaintsBrushStrokesWhereTheyLie)
{
    const CIImage image = grey(100, 60, 0.2f).transformed(CGAffineTransform::translation(10, 20));
    const Light brush{.type = "brush",
                      .radius = 0.05,
                      .brightness = 50,
                      .strokes = {{{0.2, 0.25}, {0.8, 0.25}}, {}, {{0.5, 0.75}}}};
    EXPECT_NEAR(arriving(image, {brush}, 60, 65), 1, 2e-3); // on the stroke, 15 below the top
    EXPECT_NEAR(arriving(image, {brush}, 60, 71), 0, 2e-3);
    EXPECT_NEAR(arriving(image, {brush}, 60, 35), 1, 2e-3); // on the dab
    EXPECT_NEAR(arriving(image, {brush}, 66, 35), 0, 2e-3);
    // A dab on the middle of a pixel, too small to see.
    const Light dot{
        .type = "brush", .radius = 1e-6, .brightness = 50, .strokes = {{{0.305, 0.5 - 0.5 / 60}}}};
    EXPECT_NEAR(arriving(image, {dot}, 40, 50), 1, 2e-3);
    EXPECT_NEAR(arriving(image, {dot}, 41, 50), 0, 2e-3);
}

TEST(Relight, SoftensBrushStrokesByAGaussian)
{
    // A band right across the picture, `half` pixels above and below the line between rows 31 and
    // 32. What the blur leaves of it at a pixel is a difference of two of the Gaussian's integrals.
    const CIImage image = grey(128, 64, 0.2f);
    const auto integral = [](double t) { return (1 + std::erf(t / std::numbers::sqrt2)) / 2; };
    const struct {
        double half;
        double feather;
        double sigma; // pixels; half * feather, but none up to half a pixel
    } cases[] = {{16, 0.25, 4}, {16, 0.5, 8}, {8, 0.125, 1}, {8, 0.0625, 1e-6}, {8, 0.07, 0.56}};
    for (const auto& c : cases) {
        const Light band{.type = "brush",
                         .radius = c.half / 128,
                         .feather = c.feather,
                         .brightness = 50,
                         .strokes = {{{-0.5, 0.5}, {1.5, 0.5}}}};
        for (const double out : {-7.5, -2.5, -0.5, 0.5, 1.5, 3.5, 7.5}) {
            const double above = -out / c.sigma;
            const double below = (-out - 2 * c.half) / c.sigma;
            EXPECT_NEAR(arriving(image, {band}, 40, int(32 + c.half + out - 0.5)),
                        integral(above) - integral(below), 2e-3)
                << c.sigma << ", " << out << " beyond the edge";
        }
    }
}

TEST(Relight, TakesTheMaskOfABrushForGreyOfAPicture)
{
    // The band's edge runs through the middle of a row: half covered, byte 128 of sRGB.
    const Light band{.type = "brush",
                     .radius = 0.05,
                     .brightness = 50,
                     .strokes = {{{-0.5, 34.5 / 60}, {1.5, 34.5 / 60}}}};
    EXPECT_NEAR(arriving(grey(100, 60, 0.2f), {band}, 40, 30), 0.21586, 1e-3);
    EXPECT_NEAR(arriving(grey(100, 60, 0.2f), {band}, 40, 20), 0.21586, 1e-3);
}

TEST(Relight, ASoftBrushEndsNowhereButWhereItFades)
{
    // Dabs so small that they paint next to nothing, in the far corners, have the mask reach over
    // the whole picture; without them it ends beside the stroke, which runs out of the frame.
    const CIImage image = grey(240, 150, 0.2f).transformed(CGAffineTransform::translation(-70, 9));
    const std::vector<CGPoint> stroke{{-0.1, 0.55}, {0.2, 0.4}, {0.25, 0.7}};
    Light brush{.type = "brush", .radius = 0.03, .feather = 0.9, .brightness = 50};
    brush.strokes = {stroke};
    const CIImage alone = Relight::apply(image, {brush});
    brush.strokes = {stroke, {{0.999, 0.001}}, {{0.999, 0.999}}};
    const CIImage among = Relight::apply(image, {brush});
    // Beyond 4 sigma of the dabs.
    for (int y = 9; y < 159; y += 7) {
        for (int x = -70; x < 110; x += 9)
            ASSERT_EQ(pixel(alone, x, y), pixel(among, x, y)) << x << ", " << y;
    }
    EXPECT_NE(pixel(alone, -70, 76), pixel(image, -70, 76));

    brush.strokes = {{{1.5, 0.5}, {1.8, 0.2}}, {{1.4, 0.4}}};
    EXPECT_TRUE(Relight::apply(image, {brush}).isSame(image)) << "nothing within the frame";
}

TEST(BrushMask, CoversEverythingWithinHalfTheLineWidth)
{
    // Against the plain definition, at every pixel; slopes of every kind, ends outside the picture.
    const std::vector<std::vector<CGPoint>> strokes[] = {
        {{{0.2, 0.2}, {0.8, 0.9}}}, {{{0.1, 0.5}, {0.9, 0.5}}},
        {{{0.5, 0.1}, {0.5, 0.9}}}, {{{-0.2, 0.3}, {1.3, 0.4}}},
        {{{0.6, 0.4}, {0.6, 0.4}}}, {{{0.9, 0.9}, {0.4, 0.1}, {0.1, 0.8}}},
    };
    const int width = 23;
    const int height = 19;
    for (const double lineWidth : {1.0, 5.0, 16.5}) {
        for (size_t i = 0; i < std::size(strokes); ++i) {
            const PlacedBitmap mask = brushMask(strokes[i], width, height, lineWidth);
            ASSERT_TRUE(mask.bitmap);
            const auto painted = [&](int x, int y) {
                const int column = x - mask.x;
                const int row = y - mask.y;
                const bool within = column >= 0 && column < mask.bitmap->width() && row >= 0
                    && row < mask.bitmap->height();
                return within ? mask.bitmap->row(row)[column] : 0;
            };
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    double nearest = 1e9;
                    for (const auto& stroke : strokes[i]) {
                        for (size_t k = 0; k + 1 < stroke.size(); ++k) {
                            for (int step = 0; step <= 2000; ++step) {
                                const double t = step / 2000.0;
                                const double px =
                                    (stroke[k].x * (1 - t) + stroke[k + 1].x * t) * width;
                                const double py =
                                    (stroke[k].y * (1 - t) + stroke[k + 1].y * t) * height;
                                nearest = std::min(nearest, std::hypot(px - x - 0.5, py - y - 0.5));
                            }
                        }
                    }
                    const double expected =
                        std::clamp(lineWidth / 2 + 0.5 - nearest, 0.0, 1.0) * 255;
                    ASSERT_NEAR(painted(x, y), expected, 2)
                        << "stroke " << i << ", width " << lineWidth << ", at " << x << ", " << y;
                }
            }
        }
    }
}

} // namespace
} // namespace orvane
