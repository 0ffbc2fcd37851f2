#include "PictureDecoder.h"

namespace orvane {

CIImage imageFromPicture(const DecodedPicture& picture)
{
    return CIImage::withBitmap(picture.bitmap, picture.properties).oriented(picture.orientation);
}

} // namespace orvane
