#include "Relight.h"

namespace orvane::Relight {

// Lights are not drawn yet: the image is handed on.
CIImage apply(const CIImage& image, const std::vector<Light>&)
{
    return image;
}

} // namespace orvane::Relight
