#include "SharedPicture.h"

#include "AtomicFile.h"
#include "Baker.h"
#include "PictureDecoder.h"

#include <limits>

namespace orvane {

Result<std::vector<uint8_t>> pngOfFile(const std::filesystem::path& file)
{
    Result<std::vector<uint8_t>> bytes = readFile(file, std::numeric_limits<size_t>::max());
    if (!bytes)
        return bytes;
    const Result<DecodedPicture> picture = decodePicture(*bytes);
    if (!picture)
        return picture.error();
    const bool isEightBit = picture->bitmap->type() == SampleType::U8;
    if (picture->format == PictureFormat::Png && isEightBit)
        return bytes;
    auto png = Baker::pngData(imageFromPicture(*picture), false);
    if (!png)
        return Error{"There is not enough memory to copy the picture."};
    return std::move(*png);
}

} // namespace orvane
