#include "Kernels.h"

namespace orvane::Kernels {

// These operations are not drawn yet: each hands on the image that it would work on.

CIImage contrast(const CIImage& image, double)
{
    return image;
}

CIImage whitesBlacks(const CIImage& image, double, double)
{
    return image;
}

CIImage splitTone(const CIImage& image, double, double)
{
    return image;
}

CIImage grain(const CIImage& image, double)
{
    return image;
}

CIImage colorMixer(const CIImage& image, const Adjustments::Bands&, const Adjustments::Bands&,
                   const Adjustments::Bands&)
{
    return image;
}

CIImage lens(const CIImage& image, double, double)
{
    return image;
}

CIImage maskedSharpen(const CIImage&, const CIImage& sharpened, const CIImage&, double)
{
    return sharpened;
}

} // namespace orvane::Kernels
