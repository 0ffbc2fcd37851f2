#include "Kernels.h"

#include "ReferenceRenderer.h"
#include "TestImages.h"

namespace orvane {
namespace {

using namespace test;

using Operation = std::function<CIImage(const CIImage&)>;

constexpr Adjustments::Bands none{};

Adjustments::Bands band(size_t index, double value)
{
    Adjustments::Bands bands{};
    bands[index] = value;
    return bands;
}

Operation contrast(double cf)
{
    return [=](const CIImage& image) { return Kernels::contrast(image, cf); };
}
Operation whitesBlacks(double whites, double blacks)
{
    return [=](const CIImage& image) { return Kernels::whitesBlacks(image, whites, blacks); };
}
Operation splitTone(double shadow, double highlight)
{
    return [=](const CIImage& image) { return Kernels::splitTone(image, shadow, highlight); };
}
Operation mixer(Adjustments::Bands hue, Adjustments::Bands sat, Adjustments::Bands lum)
{
    return [=](const CIImage& image) { return Kernels::colorMixer(image, hue, sat, lum); };
}

// The numbers come from the formulas in 64 bits, written down apart from this code.
TEST(Kernels, FollowTheirFormulas)
{
    const Color blue{0.2f, 0.3f, 0.6f, 1};
    const Color red350{0.72f, 0.08f, 0.1866667f, 1};
    const Color lime90{0.4f, 0.6f, 0.2f, 1};
    const struct {
        const char* what;
        Operation operation;
        Color in;
        Color expected;
    } cases[] = {
        {"contrast 1 shifts mid values a little",
         contrast(1),
         {0.1f, 0.18f, 0.5f, 1},
         {0.100023f, 0.180031f, 0.500035f, 1}},
        {"contrast 1 cuts", contrast(1), {-1, 0, 7, 1}, {0, 0, 1, 1}},
        {"contrast steep", contrast(2.9543726), {0.05f, 0.18f, 0.5f, 1}, {0, 0.117594f, 1, 1}},
        {"contrast flat",
         contrast(0.3350582),
         {0, 0.18f, 1, 1},
         {0.088687f, 0.204604f, 0.410993f, 1}},
        {"whites", whitesBlacks(0.5, 0), blue, {0.203964f, 0.303964f, 0.603964f, 1}},
        {"blacks", whitesBlacks(0, -0.5), blue, {0.140703f, 0.240703f, 0.540703f, 1}},
        {"both", whitesBlacks(1, 1), blue, {0.326522f, 0.426522f, 0.726522f, 1}},
        {"whites above white", whitesBlacks(-1, 0), {2, 2, 2, 1}, {1, 1, 1, 1}},
        {"split tone of grey",
         splitTone(1, 0),
         {0.2f, 0.2f, 0.2f, 1},
         {0.275294f, 0.211294f, 0.124706f, 1}},
        {"split tone of both", splitTone(0.5, -1), blue, {0.204649f, 0.300697f, 0.595351f, 1}},
        {"red reaches a hue of 350",
         mixer(band(0, 1), none, none),
         red350,
         {0.72f, 0.18386f, 0.08f, 1}},
        {"magenta reaches a hue of 350",
         mixer(band(7, 1), none, none),
         red350,
         {0.72f, 0.08f, 0.110877f, 1}},
        {"yellow has half of a hue of 90",
         mixer(none, band(2, -1), none),
         lime90,
         {0.4f, 0.5f, 0.3f, 1}},
        {"green has half of a hue of 90",
         mixer(none, band(3, -1), none),
         lime90,
         {0.4f, 0.5f, 0.3f, 1}},
        {"red has none of a hue of 90", mixer(band(0, 1), band(0, 1), band(0, 1)), lime90, lime90},
        {"darker blue",
         mixer(none, none, band(5, -0.6)),
         {0.1f, 0.2f, 0.7f, 1},
         {0.054167f, 0.108333f, 0.379167f, 1}},
        {"a light colour",
         mixer(band(0, 0.5), band(7, 0.5), band(0, 0.3)),
         {0.9f, 0.6f, 0.7f, 1},
         {0.944694f, 0.62076f, 0.689474f, 1}},
        {"above white",
         mixer(band(0, 0.5), band(7, 0.5), band(0, 0.3)),
         {1.6f, 1.2f, 0.9f, 1},
         {1, 1, 1, 1}},
        {"nearly grey",
         mixer(band(0, 1), band(0, 1), band(0, 1)),
         {0.319f, 0.3f, 0.3f, 1},
         {0.319f, 0.3f, 0.3f, 1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        expectNear(through(c.operation, c.in), c.expected);
    }
}

TEST(Kernels, LeaveOpacityAlone)
{
    const Operation operations[] = {
        contrast(1.5),
        whitesBlacks(0.5, -0.5),
        splitTone(1, -1),
        mixer(band(5, 1), none, none),
        [](const CIImage& i) { return Kernels::grain(i, 0.1); },
        [](const CIImage& i) { return Kernels::lens(i, 0, 1); },
    };
    const Color color{0.1f, 0.2f, 0.4f, 0.5f};
    const CIImage pane = constant(3, 3, color, false);
    for (const Operation& operation : operations) {
        const Color opaque = through(operation, color);
        // Colours count as they are stored.
        expectNear(pixel(operation(pane), 1, 1), {opaque[0], opaque[1], opaque[2], 0.5f});
    }
}

TEST(Kernels, MaskSharpeningByDetail)
{
    // How much of the sharpened picture shows where it differs from the blurred one by a colour, at
    // a threshold of 0.01; smoothstep(0.01, 0.04, luminance).
    const struct {
        Color difference;
        double share;
    } cases[] = {
        {{0.01f, 0.01f, 0.01f, 0}, 0}, {{0.02f, 0.02f, 0.02f, 0}, 0.259259},
        {{0.04f, 0.04f, 0.04f, 0}, 1}, {{-0.02f, -0.02f, -0.02f, 0}, 0.259259},
        {{0.1f, 0, 0, 0}, 0.316875},   {{0, 0.03f, 0, 0}, 0.326097},
        {{0, 0, 0.3f, 0}, 0.335760},   {{0.1f, -0.03f, 0, 0}, 0}, // the colours cancel out
        {{0, 0, 0, 0.4f}, 0}, // opacity is no detail
    };
    const Color original{0.3f, 0.35f, 0.4f, 0.5f};
    const Color sharpened{0.5f, 0.2f, 0.8f, 0.9f};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.difference));
        Color blurred;
        Color expected;
        for (size_t i = 0; i < 4; ++i) {
            blurred[i] = original[i] - c.difference[i];
            expected[i] = original[i] + float(c.share) * (sharpened[i] - original[i]);
        }
        const auto flat = [](const Color& color) { return constant(2, 2, color, false); };
        expectNear(
            pixel(Kernels::maskedSharpen(flat(original), flat(sharpened), flat(blurred), 0.01), 0,
                  0),
            expected);
    }
}

TEST(KernelsMixer, SharesEachHueAmongTheBandsAround)
{
    // A colour of saturation 0.25 tells by its new saturation how much of it a band has.
    const double centers[] = {0, 30, 60, 120, 180, 240, 280, 320};
    for (const int hue : {10, 45, 75, 100, 150, 200, 225, 265, 300, 345}) {
        const double position = hue / 60.0;
        const double middle = 0.3 + 0.2 * (1 - std::abs(std::fmod(position, 2) - 1));
        const double high = 0.5;
        const double low = 0.3;
        const double sextants[6][3] = {{high, middle, low}, {middle, high, low},
                                       {low, high, middle}, {low, middle, high},
                                       {middle, low, high}, {high, low, middle}};
        const double* rgb = sextants[hue / 60];
        const Color in{float(rgb[0]), float(rgb[1]), float(rgb[2]), 1};
        double weights[8];
        double sum = 0;
        for (size_t i = 0; i < 8; ++i) {
            const double distance = std::abs(hue - centers[i]);
            const double near = std::max(1 - std::min(distance, 360 - distance) / 60, 0.0);
            weights[i] = near * near;
            sum += weights[i];
        }
        for (size_t i = 0; i < 8; ++i) {
            const Color out = through(mixer(none, band(i, 1), none), in);
            const auto [least, most] = std::minmax({out[0], out[1], out[2]});
            EXPECT_NEAR((most - least) / (most + least), 0.25 * (1 + weights[i] / sum), 2e-5)
                << "band " << i << " of hue " << hue;
        }
    }
}

TEST(Kernels, SpreadGrainEvenlyAndByPosition)
{
    const double amp = 0.1;
    const auto grained = [&](float level, int x, int y) {
        const auto move = CGAffineTransform::translation(x, y);
        return pixel(Kernels::grain(grey(1, 1, level).transformed(move), amp), x, y)[0] - level;
    };
    // The sine of the float32 argument, from the C library.
    const int places[][2] = {{0, 0}, {5, 3}, {100, 40}, {3999, 0}, {3999, 3999}};
    for (const auto& [x, y] : places) {
        const float argument = (float(x) + 0.5f) * 12.9898f + (float(y) + 0.5f) * 78.233f;
        const double wave = std::sin(double(argument)) * 43758.5453;
        const double noise = wave - std::floor(wave) - 0.5;
        // The factor of 43758 turns a sine's last bit into 0.003.
        EXPECT_NEAR(grained(0.5f, x, y), noise * 2 * amp, 0.02 * 2 * amp) << x << ", " << y;
        EXPECT_NEAR(grained(0.25f, x, y), grained(0.5f, x, y) * 0.65, 2e-6) << x << ", " << y;
    }
    // By luminance, 0.3576 of this green.
    const auto green = Kernels::grain(constant(1, 1, {0, 0.5f, 0, 1}), amp);
    EXPECT_NEAR(pixel(green, 0, 0)[1] - 0.5f, grained(0.5f, 0, 0) * 0.80064, 2e-6);
    double sum = 0;
    double largest = 0;
    for (int i = 0; i < 400; ++i) {
        const double change = grained(0.5f, i * 7 % 400, i * 13 % 371) / amp;
        sum += change;
        largest = std::max(largest, std::abs(change));
    }
    EXPECT_NEAR(sum / 400, 0, 0.1);
    EXPECT_GT(largest, 0.99);
    EXPECT_LT(largest, 1 + 1e-5);
    EXPECT_NE(grained(0.5f, 10, 10), grained(0.5f, 11, 10));
}

TEST(KernelsLens, ReadsInPlaceWithoutDistortion)
{
    const CIImage image = coordinates(31, 20);
    const CIImage same = Kernels::lens(image, 0, 0);
    for (int x = 0; x < 31; ++x)
        expectNear(pixel(same, x, 7), pixel(image, x, 7), 1e-6f);
    const CIImage endless = CIImage::withColor({});
    EXPECT_TRUE(Kernels::lens(endless, 1, 1).isSame(endless));
}

TEST(KernelsLens, MovesColoursApartAndCornersOutwards)
{
    // Red and blue tell x, green tells y.
    const CIImage image = picture(100, 100, [](int x, int y) {
        return Color{float(x) / 100, float(y) / 100, float(x) / 100, 1};
    });
    // 30.5 pixels right of the middle, on the middle line: rn^2 = 30.5^2 / 5000.
    const double scale = 1 + 0.5 * 0.35 * (30.5 * 30.5 + 0.25) / 5000;
    for (const auto& [left, bottom] : {std::pair(0, 0), std::pair(-37, 13)}) {
        const CIImage placed = image.transformed(CGAffineTransform::translation(left, bottom));
        const Color color = pixel(Kernels::lens(placed, 0.5, 1), left + 80, bottom + 50);
        EXPECT_NEAR(color[0] * 100, 49.5 + 30.5 * scale * 1.02, 2e-3) << left;
        EXPECT_NEAR(color[1] * 100, 49.5 + 0.5 * scale, 2e-3) << left;
        EXPECT_NEAR(color[2] * 100, 49.5 + 30.5 * scale * 0.98, 2e-3) << left;
    }
    // Positions beyond the frame repeat its edge.
    expectNear(pixel(Kernels::lens(image, 1, 0), 99, 99), {0.99f, 0.99f, 0.99f, 1}, 1e-4f);
}

/// Colours of every kind, in the range and out of it, some transparent.
CIImage mixture(int width, int height)
{
    return picture(
        width, height,
        [](int x, int y) {
            const auto part = [&](int step) { return float((x * step + y * 31) % 97) / 80 - 0.1f; };
            return Color{part(7), part(29), part(53), float((x + y) % 5) / 4};
        },
        false);
}

TEST(Kernels, DrawTheSameInTilesAsPixelByPixel)
{
    const CIImage image = mixture(83, 41);
    const Operation operations[] = {
        contrast(1.7),
        whitesBlacks(-0.7, 0.9),
        splitTone(0.8, -0.6),
        mixer(band(1, 0.8), band(4, -0.9), band(6, 0.7)),
        [](const CIImage& i) { return Kernels::grain(i, 0.1); },
        [](const CIImage& i) { return Kernels::lens(i, -0.8, 0.9); },
        [](const CIImage& i) { return Kernels::lens(i, 0.8, -0.9); },
        [](const CIImage& i) {
            return Kernels::maskedSharpen(i, Kernels::contrast(i, 2), Kernels::contrast(i, 0.6),
                                          0.02);
        },
    };
    const CIContext context({.threads = 3, .tileWidth = 16, .tileHeight = 7, .shuffleSeed = 5});
    const PixelRect rect{0, 0, 83, 41};
    for (const Operation& operation : operations) {
        const CIImage drawn = operation(image);
        const FloatImage expected = drawReference(drawn, rect);
        std::vector<float> actual(expected.samples.size());
        ASSERT_TRUE(
            context.render(drawn, actual.data(), 83 * 16, rect.cgRect(), PixelFormat::RGBAFloat));
        for (int y = 0; y < 41; ++y) {
            for (int x = 0; x < 83; ++x) {
                for (int c = 0; c < 4; ++c)
                    ASSERT_NEAR(actual[size_t(((40 - y) * 83 + x) * 4 + c)], expected.at(x, y)[c],
                                2e-5)
                        << "operation " << &operation - operations << " at " << x << ", " << y;
            }
        }
    }
}

} // namespace
} // namespace orvane
