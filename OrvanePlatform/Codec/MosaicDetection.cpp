#include "FormatDecoders.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr uint16_t tagCompression = 0x0103;
constexpr uint16_t tagPhotometric = 0x0106;
constexpr uint16_t tagSubDirectories = 0x014a;
constexpr uint16_t tagDngVersion = 0xc612;

constexpr uint32_t photometricMosaic = 32803;
constexpr uint32_t photometricLinearRaw = 34892;

/// Codings that cameras alone write: Sony, Samsung, Nikon, Kodak, Pentax.
constexpr uint32_t cameraCompressions[] = {32767, 32769, 32770, 32772, 34713, 65000, 65535};

struct Walk {
    const ByteReader& reader;
    int directoriesLeft = 32; ///< also what ends a chain that bites its tail
};

uint32_t entryNumber(const ByteReader& reader, uint64_t entry, uint64_t at)
{
    const uint16_t type = reader.u16(entry + 2);
    return type == 3 ? reader.u16(at) : reader.u32(at);
}

bool directoryHoldsMosaic(Walk& walk, uint64_t directory, int depth)
{
    const ByteReader& reader = walk.reader;
    while (directory != 0 && walk.directoriesLeft-- > 0) {
        const int count = reader.u16(directory);
        for (int i = 0; i < count; ++i) {
            const uint64_t entry = directory + 2 + uint64_t(i) * 12;
            if (entry + 12 > reader.size())
                return false;
            const uint16_t tag = reader.u16(entry);
            const uint32_t value = entryNumber(reader, entry, entry + 8);
            if (tag == tagDngVersion)
                return true;
            if (tag == tagPhotometric
                && (value == photometricMosaic || value == photometricLinearRaw))
                return true;
            if (tag == tagCompression)
                for (uint32_t compression : cameraCompressions)
                    if (value == compression)
                        return true;
            if (tag != tagSubDirectories || depth >= 2)
                continue;
            const uint32_t children = std::min(reader.u32(entry + 4), uint32_t(8));
            for (uint32_t child = 0; child < children; ++child) {
                const uint32_t offset = children == 1 ? value : reader.u32(value + child * 4);
                if (directoryHoldsMosaic(walk, offset, depth + 1))
                    return true;
            }
        }
        directory = reader.u32(directory + 2 + uint64_t(count) * 12);
    }
    return false;
}

} // namespace

bool holdsMosaic(Bytes tiff)
{
    const bool bigEndian = startsWith(tiff, "MM");
    const ByteReader reader(tiff, bigEndian);
    if (reader.u16(2) != 42)
        return false;
    if (startsWith(tiff.subspan(std::min<size_t>(8, tiff.size())), "CR\x02"))
        return true; // cr2
    Walk walk{reader};
    return directoryHoldsMosaic(walk, reader.u32(4), 0);
}

} // namespace orvane
