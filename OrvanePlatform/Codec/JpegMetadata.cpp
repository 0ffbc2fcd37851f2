#include "JpegMetadata.h"

#include <map>

namespace orvane {

namespace {

constexpr std::string_view exifPrefix("Exif\0\0", 6);
constexpr std::string_view xmpPrefix("http://ns.adobe.com/xap/1.0/\0", 29);
constexpr std::string_view iccPrefix("ICC_PROFILE\0", 12);
constexpr std::string_view photoshopPrefix("Photoshop 3.0\0", 14);

/// Chunks carry their number, from 1, and how many there are; they may come in any order.
std::vector<uint8_t> joined(const std::map<int, Bytes>& chunks, int count)
{
    std::vector<uint8_t> profile;
    if (int(chunks.size()) != count)
        return profile;
    for (const auto& [number, chunk] : chunks)
        profile.insert(profile.end(), chunk.begin(), chunk.end());
    return profile;
}

} // namespace

void readJpegMetadata(Bytes jpeg, DecoderOutput& output)
{
    constexpr uint8_t app1 = 0xe1, app2 = 0xe2, app13 = 0xed, startOfScan = 0xda, endOfImage = 0xd9;
    const ByteReader reader(jpeg, true);
    std::map<int, Bytes> iccChunks;
    int iccCount = 0;
    std::vector<uint8_t> resources; // may go on in several markers
    uint64_t at = 2;
    while (at + 4 <= jpeg.size()) {
        if (jpeg[at] != 0xff) {
            ++at;
            continue;
        }
        const uint8_t marker = jpeg[at + 1];
        if (marker == startOfScan || marker == endOfImage)
            break;
        if (marker == 0xff || marker == 0 || marker == 1 || (marker >= 0xd0 && marker <= 0xd8)) {
            at += marker == 0xff ? 1 : 2;
            continue;
        }
        const uint64_t length = reader.u16(at + 2);
        if (length < 2)
            break;
        const Bytes body = reader.range(at + 4, length - 2);
        if (marker == app1 && startsWith(body, exifPrefix) && output.properties.exif.empty())
            keepBlock(output.properties.exif, body.subspan(exifPrefix.size()), largestExifBytes);
        else if (marker == app1 && startsWith(body, xmpPrefix) && output.properties.xmp.empty())
            keepXmp(output.properties, body.subspan(xmpPrefix.size()));
        else if (marker == app2 && startsWith(body, iccPrefix) && body.size() > 14) {
            iccCount = body[13];
            iccChunks.emplace(body[12], body.subspan(14));
        } else if (marker == app13 && startsWith(body, photoshopPrefix)
                   && resources.size() < largestIptcBytes) {
            const Bytes part = body.subspan(photoshopPrefix.size());
            resources.insert(resources.end(), part.begin(), part.end());
        }
        at += 2 + length;
    }
    output.icc = joined(iccChunks, iccCount);
    keepBlock(output.properties.iptc, iptcInPhotoshopResources(resources), largestIptcBytes);
}

Bytes iptcInPhotoshopResources(Bytes resources)
{
    // "8BIM", number, a name with its length ahead, padded to even; size, data, padded to even.
    const ByteReader reader(resources, true);
    uint64_t at = 0;
    while (at + 12 <= resources.size() && startsWith(resources.subspan(at), "8BIM")) {
        const uint16_t number = reader.u16(at + 4);
        const uint64_t nameBytes = (uint64_t(resources[at + 6]) + 2) & ~uint64_t(1);
        const uint64_t size = reader.u32(at + 6 + nameBytes);
        const uint64_t data = at + 10 + nameBytes;
        if (number == 0x0404)
            return reader.range(data, size);
        at = data + size + (size & 1);
    }
    return {};
}

} // namespace orvane
