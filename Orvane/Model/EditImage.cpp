#include "EditImage.h"

#include "PictureFiles.h"
#include "SourceKey.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <future>
#include <map>
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

namespace {

/// How many pictures are decoded at a time: more only take more memory.
unsigned decodersAtOnce(size_t files)
{
    return unsigned(
        std::min<size_t>(std::clamp(std::thread::hardware_concurrency(), 1U, 4U), files));
}

/// work(i) for every index below `count`, on a few threads; it does not throw.
template <class Work> void forEachAtOnce(size_t count, const Work& work)
{
    std::atomic<size_t> next = 0;
    const auto workOn = [&] {
        for (size_t i = next++; i < count; i = next++)
            work(i);
    };
    std::vector<std::future<void>> helpers;
    try {
        for (unsigned i = 1; i < decodersAtOnce(count); ++i)
            helpers.push_back(std::async(std::launch::async, workOn));
    } catch (const std::exception&) {
        // The system gives no more threads: it takes longer, that is all.
    }
    workOn();
    for (const auto& helper : helpers)
        helper.wait();
}

IncomingImage readImage(const SourceFile& file)
{
    IncomingImage image{
        .data = {}, .name = SourceKey::readableName(file.path), .source = file.source};
    if (auto bytes = readPictureFile(file.path)) {
        image.data = std::move(*bytes);
        image.decode();
    }
    return image;
}

} // namespace

std::vector<IncomingImage> decodedImages(std::vector<IncomingImage> incoming)
{
    forEachAtOnce(incoming.size(), [&](size_t i) {
        incoming[i].decode();
        // Only the first will be looked at now.
        if (i > 0)
            incoming[i].held = {};
    });
    std::erase_if(incoming, [](const IncomingImage& image) { return !image.pixels; });
    return incoming;
}

ReadImages readImages(const std::vector<SourceFile>& files)
{
    std::map<std::filesystem::path, size_t> places;
    std::vector<const SourceFile*> distinct;
    for (const SourceFile& file : files) {
        if (places.try_emplace(file.path, distinct.size()).second)
            distinct.push_back(&file);
    }
    std::vector<IncomingImage> opened(distinct.size());
    forEachAtOnce(distinct.size(), [&](size_t i) {
        opened[i] = readImage(*distinct[i]);
        if (i > 0)
            opened[i].held = {};
    });

    ReadImages read;
    for (const SourceFile& file : files) {
        IncomingImage image = opened[places.at(file.path)];
        image.source = file.source;
        if (image.pixels)
            read.images.push_back(std::move(image));
        else
            read.failed.push_back(std::move(image.name));
    }
    return read;
}

ReadImages readImages(const std::vector<std::filesystem::path>& files)
{
    std::vector<SourceFile> identified;
    for (const auto& given : files) {
        const auto path = identifyingPath(given);
        identified.push_back({path, SourceKey::ofFile(path)});
    }
    return readImages(identified);
}

} // namespace orvane
