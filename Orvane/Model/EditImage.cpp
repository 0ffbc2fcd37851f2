#include "EditImage.h"

#include "AtomicFile.h"
#include "SourceKey.h"

#include <limits>

namespace orvane {

bool IncomingImage::decode()
{
    if (pixels)
        return true;
    auto decoded = SourcePixels::decoded(std::move(data));
    if (!decoded)
        return false;
    pixels = std::move(decoded->pixels);
    held = std::move(decoded->image);
    return true;
}

std::vector<IncomingImage> decodedImages(std::vector<IncomingImage> incoming)
{
    std::vector<IncomingImage> images;
    for (IncomingImage& image : incoming) {
        if (!image.decode())
            continue;
        // Only the first will be looked at now.
        if (!images.empty())
            image.held = {};
        images.push_back(std::move(image));
    }
    return images;
}

ReadImages readImages(const std::vector<std::filesystem::path>& files)
{
    ReadImages read;
    for (const std::filesystem::path& given : files) {
        std::error_code none;
        const auto file = std::filesystem::absolute(given, none).lexically_normal();
        IncomingImage image{
            .data = {}, .name = SourceKey::readableName(file), .source = SourceKey::ofFile(file)};
        auto bytes = readFile(file, std::numeric_limits<size_t>::max());
        if (bytes)
            image.data = std::move(*bytes);
        if (!bytes || !image.decode()) {
            read.failed.push_back(image.name);
            continue;
        }
        if (!read.images.empty())
            image.held = {};
        read.images.push_back(std::move(image));
    }
    return read;
}

} // namespace orvane
