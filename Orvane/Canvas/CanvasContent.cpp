#include "CanvasContent.h"

#include "EditRendering.h"
#include "Geometry.h"
#include "Pipeline.h"
#include "TextLayers.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

} // namespace

CanvasContent draftOf(CanvasContent content, double scale)
{
    if (scale >= 1)
        return content;
    const CGRect proxy = content.proxy.extent();
    const double edge = std::max(proxy.width(), proxy.height()) * scale;
    content.proxy = Geometry::resized(content.proxy, std::max(1, int(std::lround(edge))));
    return content;
}

EditState uncropped(EditState state)
{
    state.crop = Geometry::fullFrame;
    state.canvasAspect = 0;
    return state;
}

RenderKey RenderKey::of(const CanvasContent& content)
{
    const EditState& state = content.state;
    RenderKey key;
    key.version = content.version;
    key.comparing = content.comparing;
    key.geometry = {state.rotation,      double(state.flipH), double(state.flipV),
                    state.crop.minX(),   state.crop.minY(),   state.crop.width(),
                    state.crop.height(), state.canvasAspect};
    key.canvasFill = state.canvasFill;
    key.canvasColor = state.canvasColor;
    if (content.comparing)
        return key;
    key.adjust = state.adjust;
    key.curve = state.curve;
    key.lutAmount = state.lutAmount;
    key.lutID = state.lutID;
    key.hasLut = content.lut.has_value();
    key.lights = state.lights;
    key.healSpots = state.healSpots;
    key.texts = state.texts;
    return key;
}

CIImage proxyOf(const CIImage& source)
{
    return Geometry::resized(source, proxyEdge);
}

CIImage picture(const CanvasContent& content)
{
    const CIImage frame = framed(content.proxy, content.state);
    if (content.comparing)
        return frame;
    const CIImage graded = Pipeline::render(frame, adjustments(content.state, content.lut));
    return TextLayers::draw(content.state.textItems(), graded);
}

CGSize pictureSize(const CanvasContent& content)
{
    if (content.isEmpty())
        return {};
    const CGRect extent = framed(content.proxy, content.state).extent();
    return {std::round(extent.maxX()) - std::round(extent.minX()),
            std::round(extent.maxY()) - std::round(extent.minY())};
}

} // namespace orvane
