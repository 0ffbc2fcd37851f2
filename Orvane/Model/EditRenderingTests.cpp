#include "EditRendering.h"

#include <gtest/gtest.h>

#include <array>

namespace orvane {
namespace {

TEST(EditRendering, MapsAnEditToTheRender)
{
    EditState state;
    state.adjust = {{"exposure", 250}, {"lumMagenta", -3}, {"unknown", 1}};
    state.curve = {{"g", {{0, 10}, {255, 200}}}};
    state.lutAmount = 40;
    state.healSpots = {{0.1, 0.2, 0.3}};
    EditState::Light light;
    light.id = "l_1";
    light.type = "brush";
    light.mode = "erase";
    light.brightness = 1;
    light.warmth = 2;
    light.contrast = 3;
    light.saturation = 4;
    light.radius = 5;
    light.feather = 6;
    light.invert = true;
    light.x = 7;
    light.y = 8;
    light.angle = 9;
    light.strokes = {{{0.1, 0.2}}};
    state.lights = {light};
    state.rotation = 5;
    state.texts.emplace_back();
    const std::array<float, 24> table{0.5f};
    const std::optional<LUT> lut = LUT::fromRGB(2, table);
    ASSERT_TRUE(lut);

    Adjustments expected;
    expected.exposure = 250;
    expected.mixerLum[7] = -3;
    expected.curve = {{"g", {{0, 10}, {255, 200}}}};
    expected.lut = lut;
    expected.lutAmount = 40;
    expected.healSpots = {{0.1, 0.2, 0.3}};
    expected.lights = {{"brush", 7, 8, 5, 9, 6, true, 1, 2, 3, 4, {{{0.1, 0.2}}}}};
    EXPECT_EQ(adjustments(state, lut), expected);

    // The identity curve is replaced by the state's empty map, which is not the same record.
    const Adjustments neutral = adjustments(EditState(), std::nullopt);
    EXPECT_TRUE(neutral.curve.empty());
    EXPECT_EQ(neutral.lut, std::nullopt);
}

TEST(EditRendering, ReadsTheCanvasFill)
{
    EditState state;
    state.canvasColor = "#ff0000";
    const struct {
        const char* text;
        Geometry::Fill fill;
    } cases[] = {
        {"color", Geometry::ColourFill{{1, 0, 0, 1}}},
        {"edge", Geometry::EdgeFill{}},
        {"blur", Geometry::BlurFill{}},
        {"colour", Geometry::BlurFill{}},
        {"", Geometry::BlurFill{}},
    };
    for (const auto& [text, fill] : cases) {
        state.canvasFill = text;
        EXPECT_EQ(canvasFill(state), fill) << text;
    }
}

TEST(EditRendering, FramesTheSource)
{
    const CIImage source = CIImage::withColor({1, 1, 1, 1}).cropped({0, 0, 200, 100});
    EditState state;
    EXPECT_TRUE(framed(source, state).isSame(source));
    state.crop = {0.25, 0, 0.5, 1};
    EXPECT_EQ(framed(source, state).extent(), CGRect(0, 0, 100, 100));
    EXPECT_TRUE(framed(source, state, Cropping::Ignored).isSame(source));
    state.canvasAspect = 2;
    state.canvasFill = "color";
    EXPECT_EQ(framed(source, state).extent(), CGRect(0, 0, 200, 100));
}

} // namespace
} // namespace orvane
