#include "EditImage.h"

#include "AtomicFile.h"
#include "SourceKey.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <limits>
#include <new>
#include <thread>

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

namespace {

/// How many pictures are decoded at a time: more only take more memory.
unsigned decodersAtOnce(size_t files)
{
    return unsigned(
        std::min<size_t>(std::clamp(std::thread::hardware_concurrency(), 1U, 4U), files));
}

IncomingImage readImage(const std::filesystem::path& given)
{
    std::error_code none;
    const auto file = std::filesystem::absolute(given, none).lexically_normal();
    IncomingImage image{
        .data = {}, .name = SourceKey::readableName(file), .source = SourceKey::ofFile(file)};
    try {
        if (auto bytes = readFile(file, std::numeric_limits<size_t>::max())) {
            image.data = std::move(*bytes);
            image.decode();
        }
    } catch (const std::bad_alloc&) {
        image.pixels.reset();
    }
    return image;
}

} // namespace

ReadImages readImages(const std::vector<std::filesystem::path>& files)
{
    std::vector<IncomingImage> all(files.size());
    std::atomic<size_t> next = 0;
    const auto readSome = [&] {
        for (size_t i = next++; i < files.size(); i = next++) {
            all[i] = readImage(files[i]);
            // Only the first will be looked at now.
            if (i > 0)
                all[i].held = {};
        }
    };
    std::vector<std::future<void>> helpers;
    for (unsigned i = 1; i < decodersAtOnce(files.size()); ++i)
        helpers.push_back(std::async(std::launch::async, readSome));
    readSome();
    for (const auto& helper : helpers)
        helper.wait();

    ReadImages read;
    for (IncomingImage& image : all) {
        if (image.pixels)
            read.images.push_back(std::move(image));
        else
            read.failed.push_back(std::move(image.name));
    }
    return read;
}

} // namespace orvane
