#include "CanvasTool.h"

#include "CropTool.h"
#include "RelightTool.h"
#include "RetouchTool.h"
#include "TextTool.h"
#include "WhiteTool.h"

#include <algorithm>

namespace orvane {

bool CanvasPointer::isInside() const
{
    return held() == fraction;
}

CGPoint CanvasPointer::held() const
{
    return {std::clamp(fraction.x, 0.0, 1.0), std::clamp(fraction.y, 0.0, 1.0)};
}

std::vector<std::unique_ptr<CanvasTool>> makeCanvasTools(AppModel& model)
{
    std::vector<std::unique_ptr<CanvasTool>> tools;
    tools.push_back(std::make_unique<CropTool>(model));
    tools.push_back(std::make_unique<RelightTool>(model));
    tools.push_back(std::make_unique<RetouchTool>(model));
    tools.push_back(std::make_unique<WhiteTool>(model));
    tools.push_back(std::make_unique<TextTool>(model));
    return tools;
}

} // namespace orvane
