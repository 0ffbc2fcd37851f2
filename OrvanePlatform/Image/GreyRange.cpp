#include "GreyRange.h"

#include "PixelKernels.h"

namespace orvane {

GreyRange greyRange(const Node& node, const PixelRect& rect)
{
    if (!node.extent.contains(rect))
        return {};
    if (node.as<CropNode>())
        return greyRange(*node.inputs.front(), rect);
    const auto* pointwise = node.as<PointwiseNode>();
    return pointwise && pointwise->kernel->range ? pointwise->kernel->range(node, rect)
                                                 : GreyRange{};
}

} // namespace orvane
