#include "BenchmarkInputs.h"

#include "AtomicFile.h"
#include "EditStateJSON.h"
#include "PictureDecoder.h"

namespace orvane {

Result<std::string> textFile(const std::string& path)
{
    Result<std::vector<uint8_t>> bytes = readFile(path, size_t(64) << 20);
    if (!bytes)
        return bytes.error();
    return std::string(bytes->begin(), bytes->end());
}

Result<EditState> readEdit(const std::string& path)
{
    Result<std::string> text = textFile(path);
    if (!text)
        return text.error();
    Result<EditState> state = decodeEditState(*text);
    if (!state)
        return Error{path + ": " + state.error().message};
    return state;
}

Result<CIImage> readPicture(const std::string& path)
{
    const Result<DecodedPicture> picture = decodePictureFile(path);
    if (!picture)
        return Error{path + ": " + picture.error().message};
    return imageFromPicture(*picture);
}

} // namespace orvane
