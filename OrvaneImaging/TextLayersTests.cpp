#include "BrushMask.h"
#include "TestImages.h"
#include "TextBlock.h"
#include "TextLayers.h"

#include <cmath>
#include <limits>
#include <string>

namespace orvane {
namespace {

using test::Color;
using TextLayers::Item;

const std::string block = "\xe2\x96\x88"; // fills its letter's space

Item item(std::string text, double size = 0.2)
{
    Item made;
    made.text = std::move(text);
    made.size = size;
    made.red = made.green = made.blue = 1;
    return made;
}

/// Where a picture on black is lighter than `threshold`: pixels from the extent's left and bottom.
struct Box {
    int left = 1 << 30;
    int bottom = 1 << 30;
    int right = 0;
    int top = 0;
};

Box lightOf(const CIImage& image, float threshold = 0.02f)
{
    const CGRect e = image.extent();
    const int width = int(e.width());
    const int height = int(e.height());
    const CIImage moved = image.transformed(CGAffineTransform::translation(-e.minX(), -e.minY()));
    const std::vector<Color> colors = test::pixels(moved, width, height);
    Box box;
    for (int i = 0; i < width * height; ++i) {
        if (colors[size_t(i)][1] <= threshold)
            continue;
        const int x = i % width;
        const int y = height - 1 - i / width;
        box.left = std::min(box.left, x);
        box.right = std::max(box.right, x + 1);
        box.bottom = std::min(box.bottom, y);
        box.top = std::max(box.top, y + 1);
    }
    return box;
}

TEST(TextLayers, WithNothingToDrawTheImageComesBack)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const CIImage image = test::grey(64, 48, 0.5f);
    EXPECT_TRUE(TextLayers::draw({}, image).isSame(image));
    for (const char* blank : {"", " ", "\n\t \r\n", "\xc2\xa0\xc2\x85", "\xe3\x80\x80\xe2\x80\xa9"})
        EXPECT_TRUE(TextLayers::draw({item(blank)}, image).isSame(image)) << blank;
    const std::function<void(Item&)> cases[] = {
        [](Item& i) { i.alpha = 0; },  [](Item& i) { i.alpha = nan; },
        [](Item& i) { i.x = nan; },    [](Item& i) { i.y = INFINITY; },
        [](Item& i) { i.size = nan; }, [](Item& i) { i.size = 1e300; },
        [](Item& i) { i.x = 5; },      [](Item& i) { i.y = -1e300; }};
    for (const auto& change : cases) {
        Item odd = item("text");
        change(odd);
        EXPECT_TRUE(TextLayers::draw({odd}, image).isSame(image));
    }
    const CIImage infinite = CIImage::withColor({1, 0, 0, 1});
    EXPECT_TRUE(TextLayers::draw({item("text")}, infinite).isSame(infinite));
    EXPECT_TRUE(TextLayers::draw({item("text")}, CIImage()).isEmpty());
}

TEST(TextLayers, BlankItemsAreLeftOutAmongOthers)
{
    const CIImage image = test::grey(64, 48, 0);
    EXPECT_EQ(TextLayers::draw({item(" "), item("a"), item("\n")}, image).digest(),
              TextLayers::draw({item("a")}, image).digest());
}

TEST(TextLayers, TheBlockIsCentredAtItsPlaceFromTheTopLeft)
{
    struct Case {
        int width;
        int height;
        double left;
        double bottom;
    };
    // A preview and an export of one picture, upright and lying, and one that starts elsewhere.
    const Case cases[] = {
        {320, 200, 0, 0}, {1280, 800, 0, 0}, {200, 320, 0, 0}, {320, 200, -37, 1011}};
    for (const Case& c : cases) {
        const CIImage image = test::grey(c.width, c.height, 0)
                                  .transformed(CGAffineTransform::translation(c.left, c.bottom));
        Item placed = item("IHI\nIHI", 0.1);
        placed.x = 0.4;
        placed.y = 0.85 - 0.1;
        const CIImage drawn = TextLayers::draw({placed}, image);
        test::expectExtent(drawn, image.extent());
        const Box box = lightOf(drawn);
        EXPECT_NEAR((box.left + box.right) / 2.0, 0.4 * c.width, 1);
        // Ink does not fill its lines evenly: the block's middle is the same share of the type size
        // below the ink's.
        const double fontSize = 0.1 * std::max(c.width, c.height);
        EXPECT_NEAR((box.bottom + box.top) / 2.0, (1 - 0.75) * c.height, 0.1 * fontSize);
    }
}

TEST(TextLayers, ASizeOfNothingIsOnePixel)
{
    const Box box = lightOf(TextLayers::draw({item(block, 0)}, test::grey(64, 48, 0)), 0.001f);
    EXPECT_GE(box.right - box.left, 1);
    EXPECT_LE(box.top - box.bottom, 3);
}

TEST(TextLayers, WrapsAt96PercentOfTheWidth)
{
    const double ems = TextBlock("MM MM", {"", 100, 1e5, 1e5}).size().width / 100;
    const CIImage image = test::grey(500, 300, 0);
    for (const bool wraps : {false, true}) {
        const double size = (wraps ? 0.961 : 0.959) / ems;
        const Box box = lightOf(TextLayers::draw({item("MM MM", size)}, image));
        EXPECT_EQ(box.right - box.left < 300, wraps);
        EXPECT_NEAR((box.left + box.right) / 2.0, 250, 1);
    }
}

TEST(TextLayers, ColoursAreStraightSrgbOverTheLinearPicture)
{
    const CIImage image = test::grey(64, 48, 0.25f);
    Item solid = item(block, 0.5);
    solid.red = 0.8;
    solid.green = 0.4;
    solid.blue = 0;
    const auto linear = [](double v) { return float(std::pow((v + 0.055) / 1.055, 2.4)); };
    const Color opaque{linear(0.8), linear(0.4), 0, 1};
    test::expectNear(test::pixel(TextLayers::draw({solid}, image), 32, 24), opaque, 1e-4f);

    solid.alpha = 0.5;
    const float a = 128 / 255.0f;
    const float under = 0.25f * (1 - a);
    // A level of 8 bits more or less in the premultiplied bytes.
    test::expectNear(test::pixel(TextLayers::draw({solid}, image), 32, 24),
                     {opaque[0] * a + under, opaque[1] * a + under, under, 1}, 0.006f);
}

TEST(TextLayers, LaterItemsLieOnTop)
{
    Item red = item(block, 0.5);
    red.green = red.blue = 0;
    Item green = item(block, 0.3);
    green.red = green.blue = 0;
    const CIImage image = test::grey(64, 48, 0);
    test::expectNear(test::pixel(TextLayers::draw({red, green}, image), 32, 24), {0, 1, 0, 1});
    test::expectNear(test::pixel(TextLayers::draw({green, red}, image), 32, 24), {1, 0, 0, 1});
}

TEST(TextLayers, TextOverTextBlendsAsOneDrawing)
{
    const CIImage image = test::grey(200, 100, 1);
    Item white = item(block, 0.3);
    Item black = item(block, 0.2);
    black.red = black.green = black.blue = 0;
    black.alpha = 0.5;
    Item apart = item(block, 0.1);
    apart.x = 0.1;
    Item over = apart; // lies over nothing but that one
    over.red = 0;
    over.size = 0.05;
    const CIImage drawn = TextLayers::draw({white, apart, black, over}, image);
    const auto grey = float(std::pow((127 / 255.0 + 0.055) / 1.055, 2.4));
    test::expectNear(test::pixel(drawn, 100, 50), {grey, grey, grey, 1}, 3e-3f);
    test::expectNear(test::pixel(drawn, 20, 50), {0, 1, 1, 1});
    // On the picture itself it blends in linear light.
    test::expectNear(test::pixel(TextLayers::draw({black}, image), 100, 50), {0.5, 0.5, 0.5, 1},
                     3e-3f);
}

TEST(TextLayers, TheShadowFallsDownwardsAndDarkensByItsShare)
{
    // The shadow alone shows below a wide block: its ink ends at a straight edge.
    const CIImage image = test::grey(400, 400, 1);
    Item wide = item(block + block + block + block, 0.25);
    wide.alpha = 0.5;
    const auto column = [&](bool shadow) {
        wide.shadow = shadow;
        return test::pixels(TextLayers::draw({wide}, image), 400, 400);
    };
    const auto plain = column(false);
    const auto shadowed = column(true);
    const auto at = [](const std::vector<Color>& colors, int y) {
        return colors[size_t(y) * 400 + 200][0];
    };
    int top = 0;
    while (top < 400 && at(plain, top) == 1 && at(shadowed, top) == 1)
        ++top;
    int bottom = 399;
    while (bottom > 0 && at(shadowed, bottom) == 1)
        --bottom;
    int inkTop = 0;
    int inkBottom = 399;
    wide.red = wide.green = wide.blue = 0;
    const auto ink = column(false);
    while (at(ink, inkTop) == 1)
        ++inkTop;
    while (at(ink, inkBottom) == 1)
        --inkBottom;
    EXPECT_GT(bottom - inkBottom, (inkTop - top) + 4) << "offset 4, reaching as far either way";
    // Half of it shows 0.04 of the type size below the ink; the blur's sigma is 0.06 of that size.
    for (const int below : {4, 10, 16}) {
        const double covered = 0.5 * std::erfc((below + 0.5 - 4) / 6 / std::sqrt(2.0));
        EXPECT_NEAR(at(shadowed, inkBottom + 1 + below), 1 - 0.275 * covered, 0.012) << below;
    }
    // White of alpha 0.5 over its own shadow of 0.275, in encoded bytes, then over white in linear
    // light: alpha 1 - 0.5 (1 - 0.275), of which 0.5 is white.
    const double alpha = 0.6375;
    const double straight = std::pow((0.5 / alpha + 0.055) / 1.055, 2.4);
    EXPECT_NEAR(at(shadowed, 200), straight * alpha + 1 - alpha, 0.01);
}

TEST(TextLayers, TheSameTextIsTheSameRecipeAndAnyChangeIsAnother)
{
    const CIImage image = test::grey(64, 48, 0);
    const auto key = [&](const Item& i) { return TextLayers::draw({i}, image).digest(); };
    const Item first = item("text");
    const Digest digest = key(first);
    EXPECT_EQ(key(first), digest);
    const std::function<void(Item&)> cases[] = {
        [](Item& i) { i.text = "tex"; },  [](Item& i) { i.x = 0.51; },
        [](Item& i) { i.y = 0.51; },      [](Item& i) { i.size = 0.21; },
        [](Item& i) { i.red = 0.5; },     [](Item& i) { i.green = 0.5; },
        [](Item& i) { i.blue = 0.5; },    [](Item& i) { i.alpha = 0.5; },
        [](Item& i) { i.font = "P052"; }, [](Item& i) { i.shadow = true; }};
    for (const auto& change : cases) {
        Item other = first;
        change(other);
        EXPECT_NE(key(other), digest);
    }
    EXPECT_EQ(key(first), digest);
}

TEST(TextLayers, ThePicturesPropertiesStay)
{
    ImageProperties properties;
    properties.exif = {7, 7, 7};
    const CIImage image = test::grey(64, 48, 0).settingProperties(properties);
    EXPECT_EQ(TextLayers::draw({item("text")}, image).properties(), properties);
}

TEST(BrushMask, TheSameStrokesAreTheSameBitmap)
{
    const std::vector<std::vector<CGPoint>> strokes{{{0.1, 0.2}, {0.3, 0.4}}, {{0.5, 0.5}}};
    const auto mask = [](const std::vector<std::vector<CGPoint>>& painted, int width, int height,
                         double lineWidth) {
        return brushMask(painted, width, height, lineWidth).bitmap;
    };
    const auto first = mask(strokes, 40, 30, 4);
    EXPECT_EQ(mask(strokes, 40, 30, 4), first);
    EXPECT_NE(mask(strokes, 40, 30, 5), first);
    EXPECT_NE(mask(strokes, 30, 40, 4), first);
    // The same points in other strokes are another painting.
    EXPECT_NE(mask({{{0.1, 0.2}}, {{0.3, 0.4}, {0.5, 0.5}}}, 40, 30, 4), first);
}

} // namespace
} // namespace orvane
