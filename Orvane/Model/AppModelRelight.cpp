// The relight tool.

#include "AppModel.h"

namespace orvane {

void AppModel::exitRelight()
{
    relightMode = false;
    selectedLightID = std::string();
    relightSession = std::nullopt;
    relightHistoryAtStart = std::nullopt;
}

} // namespace orvane
