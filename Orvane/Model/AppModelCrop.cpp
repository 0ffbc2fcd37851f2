// The crop tool, flips and the canvas.

#include "AppModel.h"

#include "CropRatio.h"
#include "EditRendering.h"
#include "Finite.h"

#include <algorithm>

namespace orvane {

void AppModel::enterCrop()
{
    cropSession = ModalSession<CropSnapshot>({crop.value(), aspectId.value()});
    cropMode = true;
    relightMode = false;
    // What a tool remembers ends with it: left here, it could be put back into another image.
    relightSession = std::nullopt;
    relightHistoryAtStart = std::nullopt;
}

void AppModel::finishCrop()
{
    const auto tool = cropSession.value();
    if (tool && tool->commits({crop.value(), aspectId.value()}))
        commitHistory();
    cropMode = false;
    cropSession = std::nullopt;
}

void AppModel::cancelCrop()
{
    if (const auto tool = cropSession.value()) {
        crop = tool->cancelled().crop;
        aspectId = tool->cancelled().aspectId;
    }
    cropMode = false;
    cropSession = std::nullopt;
}

/// The size that the picture has after rotation and flips, in pixels.
std::optional<CGSize> AppModel::cropFrame() const
{
    const auto& source = sourceImage.value();
    if (!source)
        return std::nullopt;
    EditState state = editState();
    state.canvasAspect = 0;
    return framed(*source, state, Cropping::Ignored).extent().size;
}

void AppModel::setAspect(const std::string& id)
{
    aspectId = id;
    const auto frame = cropFrame();
    crop = CropRatio::fit(crop, CropRatio::pixelRatio(id, frame), frame.value_or(CGSize()));
    if (!cropMode)
        commitHistory();
}

void AppModel::setCropNative(const CGRect& rect)
{
    if (!areFinite(rect))
        return;
    crop = rect;
    if (!cropMode)
        commitHistory();
}

void AppModel::flip(const std::string& axis)
{
    QProperty<bool>& mirrored = axis == "h" ? flipH : flipV;
    mirrored = !mirrored;
    commitHistory();
}

void AppModel::setCanvasShape(const std::string& id)
{
    const auto* const shape =
        std::find_if(canvasShapes.begin(), canvasShapes.end(),
                     [&](const CanvasShape& candidate) { return candidate.id == id; });
    canvasAspect = shape == canvasShapes.end() ? 0 : shape->aspect;
    commitHistory();
}

} // namespace orvane
