// The crop tool.

#include "AppModel.h"

namespace orvane {

void AppModel::finishCrop()
{
    const auto tool = cropSession.value();
    if (tool && tool->commits({crop.value(), aspectId.value()}))
        commitHistory();
    cropMode = false;
    cropSession = std::nullopt;
}

} // namespace orvane
