// A grade carried from one image to others.

#include "AppModel.h"

namespace orvane {

void AppModel::copyStyle()
{
    copiedStyle = editState();
    hasCopiedStyle = true;
}

void AppModel::applyStyle()
{
    const auto style = copiedStyle.value();
    if (!style)
        return;
    lastLook = std::nullopt;
    adjust = style->adjust;
    curve = style->curve;
    lutID = style->lutID;
    lutAmount = style->lutAmount;
    ensureLut(lutID);
    commitHistory();
}

void AppModel::applyStyleToAll()
{
    const auto style = copiedStyle.value();
    if (!style)
        return;
    parkActiveState();
    changeSession([&](std::vector<EditImage>& open) {
        for (EditImage& image : open) {
            image.state.adjust = style->adjust;
            image.state.curve = style->curve;
            image.state.lutID = style->lutID;
            image.state.lutAmount = style->lutAmount;
            image.history.commit(image.state, now());
            image.thumb = renderThumb(image);
        }
    });
    activate(activeImageID, false);
}

} // namespace orvane
