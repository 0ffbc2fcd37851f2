#include "CanvasContent.h"

#include "Geometry.h"
#include "Pipeline.h"
#include "TextLayers.h"

namespace orvane {

RenderKey RenderKey::of(const CanvasContent& content)
{
    const EditState& state = content.state;
    RenderKey key;
    key.version = content.version;
    key.comparing = content.comparing;
    key.geometry = {
        state.rotation,      double(state.flipH), double(state.flipV),
        state.crop.minX(),   state.crop.minY(),   state.crop.width(),
        state.crop.height(), state.canvasAspect,  double(content.cropping == Cropping::Applied)};
    key.canvasFill = state.canvasFill;
    key.canvasColor = state.canvasColor;
    if (content.comparing)
        return key;
    key.adjust = state.adjust;
    key.curve = state.curve;
    key.lutAmount = state.lutAmount;
    key.lutID = state.lutID;
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
    const CIImage frame = framed(content.proxy, content.state, content.cropping);
    if (content.comparing)
        return frame;
    const CIImage graded = Pipeline::render(frame, adjustments(content.state, {}));
    return TextLayers::draw(content.state.textItems(), graded);
}

} // namespace orvane
