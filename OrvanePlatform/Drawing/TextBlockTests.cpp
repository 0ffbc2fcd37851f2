#include "Bitmap.h"
#include "TextBlock.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace orvane {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const CIColor white{1, 1, 1, 1};
const CIColor invisible{0, 0, 0, 0};

/// Bytes red, green, blue, alpha at a pixel of the picture; zeros beside the drawing.
std::array<int, 4> at(const PlacedBitmap& drawn, int x, int y)
{
    const Bitmap* bitmap = drawn.bitmap.get();
    const int column = x - drawn.x;
    const int row = y - drawn.y;
    if (!bitmap || column < 0 || row < 0 || column >= bitmap->width() || row >= bitmap->height())
        return {};
    const uint8_t* p = bitmap->row(row) + column * 4;
    return {p[0], p[1], p[2], p[3]};
}

/// Alpha as a mass: its sum, centre and variance, and the box where there is any.
struct Mass {
    double sum = 0;
    double x = 0;
    double y = 0;
    double varianceX = 0;
    double varianceY = 0;
    int left = 1 << 30;
    int top = 1 << 30;
    int right = 0;
    int bottom = 0;
};

Mass massOf(const PlacedBitmap& drawn)
{
    Mass m;
    double xx = 0;
    double yy = 0;
    for (int row = 0; drawn.bitmap && row < drawn.bitmap->height(); ++row) {
        for (int column = 0; column < drawn.bitmap->width(); ++column) {
            const int x = column + drawn.x;
            const int y = row + drawn.y;
            const double a = drawn.bitmap->row(row)[column * 4 + 3];
            if (a == 0)
                continue;
            m.sum += a;
            m.x += a * (x + 0.5);
            m.y += a * (y + 0.5);
            xx += a * (x + 0.5) * (x + 0.5);
            yy += a * (y + 0.5) * (y + 0.5);
            m.left = std::min(m.left, x);
            m.top = std::min(m.top, y);
            m.right = std::max(m.right, x + 1);
            m.bottom = std::max(m.bottom, y + 1);
        }
    }
    m.x /= m.sum;
    m.y /= m.sum;
    m.varianceX = xx / m.sum - m.x * m.x;
    m.varianceY = yy / m.sum - m.y * m.y;
    return m;
}

TextStyle roomy(double fontSize)
{
    return {"", fontSize, 1e5, 1e5};
}

TEST(TextBlock, BreaksAtTheSameWordsAtEverySize)
{
    const std::string text = "The quick brown fox jumps over the lazy dog, AVATAR To Wolves and "
                             "fjords; illumination 12.345 \xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d";
    // Many widths, so that some word ends close to the edge.
    for (double ems = 5; ems < 9; ems += 0.037) {
        const auto block = [&](double fontSize) {
            return TextBlock(text, {"", fontSize, ems * fontSize, 100 * fontSize});
        };
        const TextBlock preview = block(1.25);
        for (const double fontSize : {17.0, 153.6, 360.0, 1234.5}) {
            const TextBlock exported = block(fontSize);
            ASSERT_EQ(exported.lineCount(), preview.lineCount()) << ems << " ems, " << fontSize;
            ASSERT_NEAR(exported.size().width / fontSize, preview.size().width / 1.25, 1e-9);
        }
    }
}

TEST(TextBlock, KeepsLineBreaks)
{
    struct Case {
        std::string text;
        int lines;
    };
    const Case cases[] = {{"a\nb", 2},
                          {"a\r\nb", 2},
                          {"a\rb", 2},
                          {"a\n\nb", 3},
                          {"\n\na", 3},
                          {"a\xe2\x80\xa9"
                           "b",
                           2},
                          {"a\xe2\x80\xa8"
                           "b",
                           2},
                          {"a\n", 1},
                          {std::string("a\0b", 3), 1}};
    for (const Case& c : cases)
        EXPECT_EQ(TextBlock(c.text, roomy(20)).lineCount(), c.lines) << c.text;
}

TEST(TextBlock, SetsLongParagraphsInPartsLikeOneWhole)
{
    const double word = TextBlock("word ", roomy(20)).size().width;
    std::string text;
    for (int i = 0; i < 3000; ++i)
        text += "word ";
    // Seven words and a half: the eighth goes to the next line, wherever a part ends.
    EXPECT_EQ(TextBlock(text, {"", 20, 7.5 * word, 1e6}).lineCount(), 429);
    // One line alone is longer than a part.
    EXPECT_EQ(TextBlock(text, {"", 20, 1400.5 * word, 1e6}).lineCount(), 3);
}

TEST(TextBlock, LeavesOutLinesThatTheHeightCannotHoldButNeverTheFirst)
{
    const double line = TextBlock("x", roomy(20)).size().height;
    EXPECT_EQ(TextBlock("x\nx\nx\nx", {"", 20, 1000, 2.5 * line}).lineCount(), 2);
    EXPECT_EQ(TextBlock("x\nx\nx\nx", {"", 20, 1000, 0.5 * line}).lineCount(), 1);
}

TEST(TextBlock, BreaksWithinAWordThatIsLongerThanTheWidth)
{
    const TextBlock block(std::string(60, 'n'), {"", 20, 200, 1000});
    EXPECT_GE(block.lineCount(), 3);
    EXPECT_LE(block.size().width, 200);
}

TEST(TextBlock, IsCentredToAFractionOfAPixel)
{
    for (const double fontSize : {24.0, 96.0}) {
        const TextBlock block("IHI\nH", roomy(fontSize));
        const Mass middle = massOf(block.drawn({300, 200}, 600, 400, white, {}));
        EXPECT_NEAR(middle.x, 300, 0.1) << "symmetric letters";
        EXPECT_GE(middle.top, 200 - block.size().height / 2);
        EXPECT_LE(middle.bottom, 200 + block.size().height / 2);
        const Mass moved = massOf(block.drawn({300.4, 200.3}, 600, 400, white, {}));
        EXPECT_NEAR(moved.x - middle.x, 0.4, 0.02);
        EXPECT_NEAR(moved.y - middle.y, 0.3, 0.05);
    }
}

TEST(TextBlock, IsPremultipliedBytesInTheirOrder)
{
    const TextBlock block("\xe2\x96\x88", roomy(60)); // a full block
    const auto middle = at(block.drawn({50, 50}, 100, 100, {1, 0.5, 0.25, 0.5}, {}), 50, 50);
    EXPECT_EQ(middle, (std::array<int, 4>{128, 64, 32, 128}));
    const auto held = at(block.drawn({50, 50}, 100, 100, {7, -1, nan, 2}, {}), 50, 50);
    EXPECT_EQ(held, (std::array<int, 4>{255, 0, 0, 255}));
}

TEST(TextBlock, ShadowIsTheInkMovedAndBlurred)
{
    const TextBlock block("Shadow", roomy(150));
    const CGPoint centre{640, 400};
    const Mass ink = massOf(block.drawn(centre, 1280, 800, white, {}));
    // Blurs on both sides of each change of the small drawing's size.
    for (const double blur : {0.0, 1.0, 4.0, 11.0, 12.5, 18.0, 40.0, 90.0}) {
        const TextShadow shadow{5, 9, blur, 0.55};
        const PlacedBitmap drawn = block.drawn(centre, 1280, 800, invisible, shadow);
        const Mass m = massOf(drawn);
        EXPECT_NEAR(m.sum / ink.sum, 0.55, 0.01) << blur;
        // Where the ends are rounded away unevenly, the centre moves a little.
        EXPECT_NEAR(m.x - ink.x, 5, 0.15 + blur * 0.002) << blur;
        EXPECT_NEAR(m.y - ink.y, 9, 0.15 + blur * 0.002) << "downwards; " << blur;
        // A Gaussian adds its variance; cut at 3 sigma it keeps 97 %, rounding to bytes takes the
        // faint ends.
        const double variance = blur * blur / 4;
        EXPECT_NEAR(m.varianceY - ink.varianceY, variance, 0.06 * variance + 0.3) << blur;
        EXPECT_EQ(at(drawn, int(m.x), int(m.y))[0], 0) << "black";
    }
}

TEST(TextBlock, InkLiesOverItsShadow)
{
    const TextBlock block("\xe2\x96\x88", roomy(60));
    const TextShadow shadow{0, 2, 8, 0.55};
    const auto inside = at(block.drawn({50, 50}, 100, 100, {1, 0, 0, 1}, shadow), 50, 50);
    EXPECT_EQ(inside, (std::array<int, 4>{255, 0, 0, 255}));
    const auto half = at(block.drawn({50, 50}, 100, 100, {1, 0, 0, 0.5}, shadow), 50, 50);
    // 1 - (1 - 0.5)(1 - 0.55) = 0.775
    EXPECT_NEAR(half[3], 0.775 * 255, 2);
    EXPECT_NEAR(half[0], 128, 1);
}

// Averaging 4 x 4 bytes gives nearly exact coverage. A filled edge is sampled on 15 lines a pixel:
// where it lies flat that errs by up to 17 levels, and a little more where two edges meet.
TEST(TextBlock, ExportReducedLooksLikeThePreview)
{
    const auto draw = [](double scale, const CIColor& color) {
        const TextBlock block("Glyphs \xf0\x9f\x98\x80\nat two sizes",
                              {"", 40.3 * scale, 400 * scale, 200 * scale});
        return block.drawn({200.3 * scale, 100.7 * scale}, int(400 * scale), int(200 * scale),
                           color, TextShadow{0, 1.6 * scale, 4.8 * scale, 0.55});
    };
    for (const CIColor& color : {white, invisible}) {
        const PlacedBitmap small = draw(1, color);
        const PlacedBitmap large = draw(4, color);
        double worst = 0;
        double sum = 0;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 400; ++x) {
                double mean[4] = {};
                for (int i = 0; i < 16; ++i) {
                    const auto p = at(large, x * 4 + i % 4, y * 4 + i / 4);
                    for (size_t c = 0; c < 4; ++c)
                        mean[c] += p[c] / 16.0;
                }
                const auto p = at(small, x, y);
                for (size_t c = 0; c < 4; ++c) {
                    worst = std::max(worst, std::abs(mean[c] - p[c]));
                    sum += std::abs(mean[c] - p[c]);
                }
            }
        }
        EXPECT_LT(worst, color.alpha > 0 ? 24 : 2.5);
        EXPECT_LT(sum / (400 * 200 * 4), 0.15);
    }
}

TEST(TextBlock, DrawsOnlyTheRectangleThatIsCovered)
{
    const TextBlock block("Small", roomy(40));
    const PlacedBitmap drawn = block.drawn({3000, 2000}, 6000, 4000, white, {});
    const Mass m = massOf(drawn);
    EXPECT_LE(drawn.bitmap->width(), m.right - m.left + 5);
    EXPECT_LE(drawn.bitmap->height(), m.bottom - m.top + 5);
    EXPECT_FALSE(block.drawn({-500, 2000}, 6000, 4000, white, {}).bitmap) << "beside the picture";
    const PlacedBitmap cut = block.drawn({0, 2000}, 6000, 4000, white, {});
    EXPECT_EQ(cut.x, 0);
    EXPECT_LT(cut.bitmap->width(), drawn.bitmap->width());
}

// A drawing is made in pieces from its left edge on: cut at the left, the pieces lie elsewhere.
TEST(TextBlock, PiecesJoinWithoutASeam)
{
    const int shift = 1600; // whole steps of the shadow's small drawing
    for (const double fontSize : {60.0, 400.0}) {
        const TextBlock block(std::string(size_t(4800 / fontSize), 'o'), roomy(fontSize));
        const TextShadow shadow{0, fontSize * 0.04, fontSize * 0.12, 0.55};
        const int width = int(block.size().width) + 200;
        const auto draw = [&](double moved, bool shadowAlone) {
            return block.drawn({width / 2.0 - moved, 300}, width, 600,
                               shadowAlone ? invisible : white,
                               shadowAlone ? std::optional(shadow) : std::nullopt);
        };
        for (const bool shadowAlone : {false, true}) {
            const PlacedBitmap whole = draw(0, shadowAlone);
            const PlacedBitmap cut = draw(shift, shadowAlone);
            ASSERT_GT(whole.bitmap->width(), 2048);
            // Edges are sampled anew, on 15 lines a pixel, of which one may fall to either side.
            const int tolerance = shadowAlone ? 0 : 17;
            for (int y = 0; y < 600; ++y) {
                for (int x = shift; x < width; ++x) {
                    ASSERT_NEAR(at(whole, x, y)[3], at(cut, x - shift, y)[3], tolerance)
                        << x << ", " << y;
                }
            }
        }
    }
}

TEST(TextBlock, DrawsAcrossPicturesWiderThanASurfaceCanBe)
{
    const TextBlock block(std::string(200, 'H'), {"", 230, 40000, 300});
    ASSERT_EQ(block.lineCount(), 1);
    const PlacedBitmap drawn = block.drawn({20500, 200}, 41000, 400, white, TextShadow{0, 9, 9, 1});
    const Mass m = massOf(drawn);
    EXPECT_NEAR(m.x, 20500, 5);
    EXPECT_GT(m.right - m.left, 33000);
}

TEST(TextBlock, EmojiKeepTheirColours)
{
    const PlacedBitmap drawn =
        TextBlock("\xf0\x9f\x98\x80", roomy(80)).drawn({60, 60}, 120, 120, {0, 0, 1, 0.5}, {});
    ASSERT_TRUE(drawn.bitmap);
    int yellow = 0;
    for (int y = 0; y < 120; ++y) {
        for (int x = 0; x < 120; ++x) {
            const auto p = at(drawn, x, y);
            yellow += p[3] == 128 && p[0] > 100 && p[1] > 70 && p[2] < 60;
        }
    }
    EXPECT_GT(yellow, 1500) << "a yellow face, half transparent as its text is";
}

TEST(TextBlock, DrawsTheSameOnAnyThread)
{
    const auto draw = [] {
        return massOf(TextBlock("Thread \xf0\x9f\x98\x80 \xd7\xa9\xd7\x9c", roomy(30))
                          .drawn({200, 50}, 400, 100, white, TextShadow{0, 2, 4, 0.5}));
    };
    const Mass expected = draw();
    std::array<Mass, 8> masses;
    std::vector<std::thread> threads;
    for (Mass& mass : masses) {
        threads.emplace_back([&mass, &draw] {
            for (int i = 0; i < 5; ++i)
                mass = draw();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const Mass& mass : masses) {
        EXPECT_EQ(mass.sum, expected.sum);
        EXPECT_EQ(mass.varianceX, expected.varianceX);
    }
}

TEST(TextBlock, HoldsOutAgainstAnything)
{
    const auto repeated = [](const std::string& text, int count) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    const std::string texts[] = {"",
                                 " ",
                                 "plain",
                                 std::string("\0\0a\0", 4),
                                 "cut \xe2\x82",
                                 "\xff\xfe\xc0\x80\xed\xa0\x80\xf4\x90\x80\x80",
                                 "\x01\x1b[31m\x7f",
                                 "\xe2\x80\xae"
                                 "abc \xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d \xe2\x81\xa6",
                                 "\xf3\xa0\x80\x81\xef\xbf\xbf\xf4\x8f\xbf\xbf",
                                 repeated("a", 8000),
                                 repeated("\n", 100000),
                                 repeated("\xcc\x81", 5000),
                                 repeated("\xe2\x80\xae", 20000),
                                 repeated("\xf0\x9f\x98\x80", 1500),
                                 repeated("a\xd8\xa8 ", 5000)};
    const double sizes[] = {-1, 0, 1e-9, 1, 7, 480, 4800, 5e5, 1e9, 1e300, nan, INFINITY};
    const std::string fonts[] = {"",
                                 "No Such Font",
                                 "\xff",
                                 ",,,",
                                 std::string(100000, 'f'),
                                 std::string("a\0b", 3),
                                 "Inter:size=9999"};
    for (const std::string& text : texts) {
        for (const double size : sizes) {
            if (text.size() > 100 && size != 1 && size != 7 && size != 480)
                continue;
            const TextBlock block(text, {"", size, 320 * 0.96, 240});
            const PlacedBitmap drawn = block.drawn({160, 120}, 320, 240, white,
                                                   TextShadow{0, size * 0.04, size * 0.12, 0.55});
            if (!drawn.bitmap)
                continue;
            EXPECT_GE(drawn.x, 0);
            EXPECT_LE(drawn.x + drawn.bitmap->width(), 320);
            EXPECT_LE(drawn.y + drawn.bitmap->height(), 240);
        }
    }
    for (const std::string& font : fonts) {
        const TextBlock block("still drawn", {font, 20, 300, 200});
        EXPECT_TRUE(block.drawn({160, 120}, 320, 240, white, {}).bitmap);
    }
    const TextBlock block("x", roomy(20));
    for (const double off : {nan, HUGE_VAL, -1e300, 1e300})
        EXPECT_FALSE(block.drawn({off, 120}, 320, 240, white, TextShadow{}).bitmap);
    // Larger than the picture: the inside of a letter, drawn over all of it.
    const TextBlock huge("\xe2\x96\x88", {"", 3200, 307, 240});
    EXPECT_EQ(at(huge.drawn({160, 120}, 320, 240, white, {}), 5, 5)[3], 255);
}

} // namespace
} // namespace orvane
