#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <exiv2/exiv2.hpp>

namespace orvane {

/// Sets up the metadata library: once, and from any thread. It prints nothing afterwards.
void prepareMetadataLibrary();

/// Erases what the test holds for, of Exif, XMP or IPTC data alike; whether anything went.
template <class Data, class Test> bool eraseWhere(Data& data, Test test)
{
    bool erased = false;
    for (auto at = data.begin(); at != data.end();) {
        if (test(*at)) {
            at = data.erase(at);
            erased = true;
        } else {
            ++at;
        }
    }
    return erased;
}

/// The maker's notes as a whole, or one entry of them.
bool isMakerNote(const Exiv2::Exifdatum& entry);

/// A TIFF stream of Exif, parsed.
struct ExifBlock {
    Exiv2::ExifData data;
    Exiv2::ByteOrder byteOrder = Exiv2::littleEndian;
};

/// Absent when nothing can be made of the bytes. Never throws.
std::optional<ExifBlock> parsedExif(const std::vector<uint8_t>& bytes);

/// The block as bytes; `original` is what it was parsed from, and keeps its layout where nothing
/// had to move, so that maker notes with offsets of their own stay readable. Empty when that fails.
/// The library drops the largest tags above 64 KB, as JPEG needs.
std::vector<uint8_t> encodedExif(const ExifBlock& block, const std::vector<uint8_t>& original);

/// The bytes as they are when they fit; else less their thumbnail, then less the maker's notes;
/// empty when that is still too much.
std::vector<uint8_t> exifAtMost(const std::vector<uint8_t>& bytes, size_t limit);

} // namespace orvane
