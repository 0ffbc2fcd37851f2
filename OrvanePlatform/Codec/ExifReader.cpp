#include "ExifReader.h"

#include "ExifBlock.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr uint16_t tagOrientation = 0x0112;
constexpr uint16_t tagExifDirectory = 0x8769;
constexpr uint16_t tagColorSpace = 0xa001;
constexpr uint16_t tagInteroperabilityDirectory = 0xa005;
constexpr uint16_t tagInteroperabilityIndex = 0x0001;
constexpr uint16_t typeShort = 3;
constexpr uint16_t typeLong = 4;

/// One entry of a directory: tag, type, count, and a value or the offset of one.
struct Entry {
    uint16_t type = 0;
    uint64_t valueOffset = 0;
};

std::optional<Entry> findEntry(const ByteReader& reader, uint32_t directory, uint16_t tag)
{
    if (directory == 0)
        return std::nullopt;
    const int count = reader.u16(directory);
    for (int i = 0; i < count; ++i) {
        const uint64_t at = uint64_t(directory) + 2 + uint64_t(i) * 12;
        if (at + 12 > reader.size())
            return std::nullopt;
        if (reader.u16(at) == tag)
            return Entry{reader.u16(at + 2), at + 8};
    }
    return std::nullopt;
}

uint32_t numberOf(const ByteReader& reader, const std::optional<Entry>& entry)
{
    if (!entry)
        return 0;
    if (entry->type == typeShort)
        return reader.u16(entry->valueOffset);
    return entry->type == typeLong ? reader.u32(entry->valueOffset) : 0;
}

/// Tags of the first directory that describe how the pixels are stored, not what the picture is.
constexpr uint16_t storageTags[] = {
    0x00fe, 0x00ff, 0x0100, 0x0101, 0x0102, 0x0103, 0x0106, 0x0107, 0x0108, 0x0109, 0x010a,
    0x0111, 0x0115, 0x0116, 0x0117, 0x0118, 0x0119, 0x011c, 0x0120, 0x0121, 0x0122, 0x0123,
    0x0124, 0x0125, 0x012d, 0x013d, 0x013e, 0x013f, 0x0140, 0x0141, 0x0142, 0x0143, 0x0144,
    0x0145, 0x014a, 0x014c, 0x014d, 0x014e, 0x0150, 0x0151, 0x0152, 0x0153, 0x0154, 0x0155,
    0x0156, 0x015b, 0x0200, 0x0201, 0x0202, 0x0203, 0x0205, 0x0206, 0x0207, 0x0208, 0x0209,
    0x0211, 0x0212, 0x0213, 0x0214, 0x02bc, 0x80e3, 0x83bb, 0x8649, 0x8773, 0x935c,
};

bool isMetadata(const Exiv2::Exifdatum& datum)
{
    const std::string group = datum.groupName();
    if (group == "Image") {
        // From 0xc4a5 on lie the tags of raw files: matrices, masks, levels.
        return datum.tag() < 0xc4a5
            && std::find(std::begin(storageTags), std::end(storageTags), datum.tag())
            == std::end(storageTags);
    }
    // Previews, masks and raw data of TIFF-based files.
    return group.rfind("SubImage", 0) != 0 && group.rfind("SubThumb", 0) != 0
        && group.rfind("Image", 0) != 0 && group.rfind("Thumbnail", 0) != 0;
}

} // namespace

ExifSummary takeOrientation(std::span<uint8_t> tiff)
{
    ExifSummary summary;
    const bool little = startsWith(tiff, std::string_view("II*\0", 4));
    if (!little && !startsWith(tiff, std::string_view("MM\0*", 4)))
        return summary;
    const ByteReader reader(tiff, !little);
    const uint32_t first = reader.u32(4);
    if (const auto entry = findEntry(reader, first, tagOrientation)) {
        const uint32_t value = numberOf(reader, entry);
        if (value >= 1 && value <= 8)
            summary.orientation = int(value);
        const size_t width = entry->type == typeLong ? 4 : 2;
        if (value != 0)
            for (size_t i = 0; i < width; ++i)
                tiff[entry->valueOffset + i] = (i == (little ? 0 : width - 1)) ? 1 : 0;
    }
    const uint32_t exif = numberOf(reader, findEntry(reader, first, tagExifDirectory));
    const uint32_t colorSpace = numberOf(reader, findEntry(reader, exif, tagColorSpace));
    const uint32_t interoperability =
        numberOf(reader, findEntry(reader, exif, tagInteroperabilityDirectory));
    const auto index = findEntry(reader, interoperability, tagInteroperabilityIndex);
    // Cameras write "uncalibrated" beside R03; an sRGB that is claimed outright wins over it.
    const bool isR03 = index && startsWith(reader.range(index->valueOffset, 4), "R03");
    summary.isAdobeRgb = colorSpace == 2 || (isR03 && colorSpace != 1);
    return summary;
}

void neutralizeOrientation(std::string& xmp)
{
    constexpr std::string_view name = "tiff:Orientation";
    size_t at = 0;
    while ((at = xmp.find(name, at)) != std::string::npos) {
        at += name.size();
        // As an attribute, tiff:Orientation="6", or as an element, <tiff:Orientation>6</...
        size_t digit = xmp.find_first_not_of(" \t\r\n=\"'>", at);
        if (digit != std::string::npos && digit > at && xmp[digit] >= '1' && xmp[digit] <= '8')
            xmp[digit] = '1';
    }
}

std::vector<uint8_t> exifFromTiffFile(Bytes file)
{
    prepareMetadataLibrary();
    try {
        const auto image = Exiv2::ImageFactory::open(file.data(), long(file.size()));
        image->readMetadata();
        Exiv2::ExifData kept;
        for (const Exiv2::Exifdatum& datum : image->exifData())
            if (isMetadata(datum) && datum.size() <= long(largestExifBytes))
                kept.add(datum);
        if (kept.empty())
            return {};
        Exiv2::Blob blob;
        Exiv2::ExifParser::encode(
            blob, image->byteOrder() == Exiv2::bigEndian ? Exiv2::bigEndian : Exiv2::littleEndian,
            kept);
        if (blob.size() > largestExifBytes)
            return {};
        return {blob.begin(), blob.end()};
    } catch (const std::exception&) {
        return {};
    }
}

Bytes withoutExifPrefix(Bytes block)
{
    return startsWith(block, std::string_view("Exif\0\0", 6)) ? block.subspan(6) : block;
}

} // namespace orvane
