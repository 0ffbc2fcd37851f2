#include "EditRendering.h"

#include "HexColor.h"

namespace orvane {

namespace {

Light renderLight(const EditState::Light& stored)
{
    Light light;
    light.type = stored.type;
    light.x = stored.x;
    light.y = stored.y;
    light.radius = stored.radius;
    light.angle = stored.angle;
    light.feather = stored.feather;
    light.invert = stored.invert;
    light.brightness = stored.brightness;
    light.warmth = stored.warmth;
    light.contrast = stored.contrast;
    light.saturation = stored.saturation;
    light.strokes = stored.strokes;
    return light;
}

} // namespace

Adjustments adjustments(const EditState& state, const std::optional<LUT>& lut)
{
    Adjustments result(state.adjust);
    // The state's map takes the identity's place whole, an empty one too: absent channels are flat.
    result.curve = state.curve;
    result.lut = lut;
    result.lutAmount = state.lutAmount;
    for (const EditState::Light& light : state.lights)
        result.lights.push_back(renderLight(light));
    result.healSpots = state.healSpots;
    return result;
}

Geometry::Fill canvasFill(const EditState& state)
{
    if (state.canvasFill == "color")
        return Geometry::ColourFill{colorFromHex(state.canvasColor)};
    if (state.canvasFill == "edge")
        return Geometry::EdgeFill{};
    return Geometry::BlurFill{};
}

CIImage framed(const CIImage& source, const EditState& state, Cropping cropping)
{
    const CGRect& crop = cropping == Cropping::Applied ? state.crop : Geometry::fullFrame;
    return Geometry::apply(source, state.rotation, state.flipH, state.flipV, crop,
                           state.canvasAspect, canvasFill(state));
}

} // namespace orvane
