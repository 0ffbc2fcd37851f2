#include "TextLayers.h"

namespace orvane::TextLayers {

// Text is not drawn yet: the image is handed on.
CIImage draw(const std::vector<Item>&, const CIImage& image)
{
    return image;
}

} // namespace orvane::TextLayers
