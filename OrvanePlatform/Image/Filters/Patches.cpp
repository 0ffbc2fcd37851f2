#include "Filters/Patches.h"

#include "Node.h"

namespace orvane {

CIImage Patches::ground(const CIImage& picture)
{
    const NodePtr& node = picture.node();
    return CIImage(makeNode(PatchGroundNode{}, {}, node->extent, node->opaque));
}

CIImage Patches::laidOn(const CIImage& picture, const std::vector<CIImage>& patches)
{
    const NodePtr& node = picture.node();
    PatchesNode laid;
    for (const CIImage& patch : patches) {
        const CIImage within = patch.cropped(picture.extent());
        if (!within.isEmpty())
            laid.patches.push_back(within.node());
    }
    if (laid.patches.empty() || node->extent.infinite)
        return picture;
    return CIImage(makeNode(std::move(laid), {node}, node->extent, node->opaque));
}

} // namespace orvane
