#include "PictureFiles.h"

#include "AtomicFile.h"
#include "PictureDecoder.h"

#include <algorithm>
#include <fstream>
#include <new>

namespace orvane {

namespace fs = std::filesystem;

namespace {

/// As many first bytes as the formats are told by; a directory of a TIFF file may lie further on,
/// but that it is one stands in front.
constexpr size_t startSize = size_t(1) << 16;

bool beginsAsPicture(const fs::path& file)
{
    // Asked first: to open a pipe would wait for its other end.
    std::error_code none;
    if (!fs::is_regular_file(file, none))
        return false;
    std::vector<uint8_t> start(startSize);
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(start.data()), std::streamsize(start.size()));
    start.resize(size_t(stream.gcount()));
    return detectPictureFormat(start) != PictureFormat::Unknown;
}

} // namespace

fs::path identifyingPath(const fs::path& given)
{
    std::error_code error;
    const fs::path path = fs::absolute(given, error);
    if (error)
        return given;
    if (std::find(path.begin(), path.end(), "..") == path.end())
        return path.lexically_normal();
    const fs::path folder = fs::canonical(path.parent_path(), error);
    return error ? path : folder / path.filename();
}

Result<std::vector<uint8_t>> readPictureFile(const fs::path& file)
{
    try {
        if (!beginsAsPicture(file))
            return Error{"This file isn't a picture that Orvane can read."};
        return readFile(file, largestPictureFile);
    } catch (const std::bad_alloc&) {
        return Error{"There is not enough memory to open this picture."};
    }
}

} // namespace orvane
