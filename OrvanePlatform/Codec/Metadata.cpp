#include "Metadata.h"

#include "ExifBlock.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <exception>
#include <mutex>

namespace orvane {

namespace {

// The toolkit behind the XMP parser serialises its own tables only; packets are taken one at a
// time.
std::mutex xmpMutex;

std::optional<Exiv2::XmpData> parsedXmp(const std::string& packet)
{
    prepareMetadataLibrary();
    const std::lock_guard lock(xmpMutex);
    try {
        Exiv2::XmpData data;
        if (Exiv2::XmpParser::decode(data, packet) != 0)
            return std::nullopt;
        return data;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::string encodedXmp(const Exiv2::XmpData& data)
{
    if (data.empty())
        return {};
    const std::lock_guard lock(xmpMutex);
    try {
        std::string packet;
        return Exiv2::XmpParser::encode(packet, data) == 0 ? packet : std::string();
    } catch (const std::exception&) {
        return {};
    }
}

std::optional<Exiv2::IptcData> parsedIptc(const std::vector<uint8_t>& records)
{
    prepareMetadataLibrary();
    try {
        Exiv2::IptcData data;
        if (Exiv2::IptcParser::decode(data, records.data(), uint32_t(records.size())) != 0
            || data.empty())
            return std::nullopt;
        return data;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

// Property names are the only sign of a place in XMP structures and maker's notes. Besides
// exif:GPSLatitude and its kin this meets the drones' "GpsLatitude" and "GpsLongtitude" (so spelt).
bool namesPosition(const std::string& key)
{
    std::string lower = key;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return char(std::tolower(letter)); });
    constexpr std::array<const char*, 5> words = {"gps", "latitude", "longitude", "longtitude",
                                                  "altitude"};
    return std::any_of(words.begin(), words.end(),
                       [&](const char* word) { return lower.find(word) != std::string::npos; });
}

// The names that make up a property's path, lower-case, without prefixes and places in a list:
// "Xmp.my.Place/my:Point[2]" is "place" and "point".
std::vector<std::string> pathNames(const std::string& path)
{
    std::vector<std::string> names(1);
    for (const char letter : path) {
        if (letter == '/' || letter == '[')
            names.emplace_back();
        else if (letter == ':')
            names.back().clear();
        else if (std::isalnum(static_cast<unsigned char>(letter)) || letter == '_')
            names.back() += char(std::tolower(static_cast<unsigned char>(letter)));
    }
    return names;
}

// Short names count only as a whole: "LongName" and "Flat" are none.
bool isXmpPosition(const Exiv2::Xmpdatum& property)
{
    constexpr std::array<const char*, 8> shortNames = {
        "lat", "long", "lon", "lng", "lat_long", "latlong", "latlon", "coordinates"};
    constexpr std::array<const char*, 2> namespaces = {"http://www.w3.org/2003/01/geo/wgs84_pos#",
                                                       "http://www.georss.org/georss"};
    if (namesPosition(property.key()))
        return true;
    const std::string ns = Exiv2::XmpProperties::ns(property.groupName());
    if (std::any_of(namespaces.begin(), namespaces.end(),
                    [&](const char* one) { return ns.starts_with(one); }))
        return true;
    const std::vector<std::string> names = pathNames(property.tagName());
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return std::find(shortNames.begin(), shortNames.end(), name) != shortNames.end();
    });
}

// What a parser passes over, comments and foreign elements, may hold a place as well. Only a packet
// without any sign of one is handed on as it is written.
bool mayHidePosition(const std::string& packet)
{
    std::string lower = packet;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return char(std::tolower(letter)); });
    constexpr std::array<const char*, 6> signs = {"<!--", "gps", "lat", "lon", "coord", "geo"};
    return std::any_of(signs.begin(), signs.end(),
                       [&](const char* sign) { return lower.find(sign) != std::string::npos; });
}

constexpr uint16_t gpsPointerTag = 0x8825;

// GeoTIFF's tags, which tie pixels to the ground.
constexpr std::array<uint16_t, 7> groundTags = {0x830e, 0x8480, 0x8482, 0x85d8,
                                                0x87af, 0x87b0, 0x87b1};

// The pointer counts by itself: a directory that this parser finds broken another may still read.
bool isExifPosition(const Exiv2::Exifdatum& entry)
{
    const std::string group = entry.groupName();
    const bool isNote = isMakerNote(entry);
    return group == "GPSInfo" || entry.tag() == gpsPointerTag
        || (!isNote
            && std::find(groundTags.begin(), groundTags.end(), entry.tag()) != groundTags.end())
        || (isNote && namesPosition(entry.key()));
}

// Copies of XMP and IPTC inside a TIFF's Exif, which the blocks beside it stand for.
bool isEmbeddedBlock(const Exiv2::Exifdatum& entry)
{
    return entry.groupName() == "Image"
        && (entry.tag() == 0x02bc || entry.tag() == 0x83bb || entry.tag() == 0x8649);
}

// Maker's notes that the parser knows leave their byte order behind as a made-up entry.
bool hasOpaqueMakerNote(const Exiv2::ExifData& data)
{
    return data.findKey(Exiv2::ExifKey("Exif.Photo.MakerNote")) != data.end()
        && data.findKey(Exiv2::ExifKey("Exif.MakerNote.ByteOrder")) == data.end();
}

template <class Data, class Test> bool any(const Data& data, Test test)
{
    return std::any_of(data.begin(), data.end(), test);
}

std::vector<uint8_t> exifWithoutLocation(const std::vector<uint8_t>& exif, ExifBlock& block)
{
    eraseWhere(block.data, isExifPosition);
    eraseWhere(block.data, isEmbeddedBlock);
    if (hasOpaqueMakerNote(block.data))
        eraseWhere(block.data, isMakerNote);
    if (block.data.empty())
        return {};
    const std::vector<uint8_t> cleaned = encodedExif(block, exif);
    // Read once more: what cannot be shown to be free of the place does not go out.
    const std::optional<ExifBlock> check = parsedExif(cleaned);
    return check && !any(check->data, isExifPosition) ? cleaned : std::vector<uint8_t>();
}

struct TagRange {
    uint16_t first;
    uint16_t last;
};

// Tags of a first directory that describe how the old file kept its pixels: TIFF 6.0's structure
// and colour tags, embedded blocks and profiles, and the private tags of DNG.
constexpr std::array<TagRange, 20> structuralTags = {{
    {0x00fe, 0x0103}, {0x0106, 0x0109}, {0x010a, 0x010a}, {0x0111, 0x0111}, {0x0115, 0x0119},
    {0x011c, 0x011c}, {0x0120, 0x0125}, {0x012d, 0x012d}, {0x013d, 0x0145}, {0x014a, 0x014a},
    {0x0152, 0x015b}, {0x0200, 0x0212}, {0x0214, 0x0214}, {0x02bc, 0x02bc}, {0x828d, 0x828e},
    {0x83bb, 0x83bb}, {0x8649, 0x8649}, {0x8773, 0x8773}, {0x9216, 0x9217}, {0xc612, 0xc7ff},
}};

bool belongsToOldFile(const Exiv2::Exifdatum& entry)
{
    const std::string group = entry.groupName();
    if (group == "Image")
        return any(structuralTags, [&](const TagRange& range) {
            return entry.tag() >= range.first && entry.tag() <= range.last;
        });
    // Thumbnail is the second directory; SubImage1.. and Image2.. hold previews and raw data.
    return group == "Thumbnail" || group.starts_with("SubImage") || group.starts_with("SubThumb")
        || group == "Image2" || group == "Image3";
}

std::vector<uint8_t> preparedExif(const std::vector<uint8_t>& exif, int width, int height)
{
    std::optional<ExifBlock> block = parsedExif(exif);
    if (!block)
        return {};
    try {
        Exiv2::ExifData& data = block->data;
        eraseWhere(data, belongsToOldFile);
        if (data.findKey(Exiv2::ExifKey("Exif.Image.Orientation")) != data.end())
            data["Exif.Image.Orientation"] = uint16_t(1);
        if (data.findKey(Exiv2::ExifKey("Exif.Iop.InteroperabilityIndex")) != data.end())
            data["Exif.Iop.InteroperabilityIndex"] = "R98";
        data["Exif.Photo.ColorSpace"] = uint16_t(1);
        data["Exif.Photo.PixelXDimension"] = uint32_t(width);
        data["Exif.Photo.PixelYDimension"] = uint32_t(height);
    } catch (const std::exception&) {
        return {};
    }
    return encodedExif(*block, exif);
}

// Properties that repeat what Exif says of the file, and what they say of the new one.
bool updateXmp(Exiv2::XmpData& data, int width, int height)
{
    const std::array<std::pair<const char*, std::string>, 7> properties = {{
        {"Xmp.tiff.Orientation", "1"},
        {"Xmp.tiff.ImageWidth", std::to_string(width)},
        {"Xmp.tiff.ImageLength", std::to_string(height)},
        {"Xmp.exif.PixelXDimension", std::to_string(width)},
        {"Xmp.exif.PixelYDimension", std::to_string(height)},
        {"Xmp.exif.ColorSpace", "1"},
        {"Xmp.photoshop.ICCProfile", "sRGB IEC61966-2.1"},
    }};
    bool changed = eraseWhere(data, [](const Exiv2::Xmpdatum& property) {
        return property.key().starts_with("Xmp.xmp.Thumbnails");
    });
    for (const auto& [key, value] : properties) {
        const auto at = data.findKey(Exiv2::XmpKey(key));
        if (at != data.end() && at->toString() != value) {
            at->setValue(value);
            changed = true;
        }
    }
    return changed;
}

std::string preparedXmp(const std::string& xmp, int width, int height)
{
    std::optional<Exiv2::XmpData> data = parsedXmp(xmp);
    if (!data)
        return {};
    try {
        return updateXmp(*data, width, height) ? encodedXmp(*data) : xmp;
    } catch (const std::exception&) {
        return {};
    }
}

// Record 2, data sets 200 to 202: a small preview of the old picture.
std::vector<uint8_t> preparedIptc(const std::vector<uint8_t>& iptc)
{
    std::optional<Exiv2::IptcData> data = parsedIptc(iptc);
    if (!data)
        return {};
    const bool changed = eraseWhere(*data, [](const Exiv2::Iptcdatum& set) {
        return set.record() == 2 && set.tag() >= 200 && set.tag() <= 202;
    });
    if (!changed)
        return iptc;
    try {
        const Exiv2::DataBuf bytes = Exiv2::IptcParser::encode(*data);
        return std::vector<uint8_t>(bytes.pData_, bytes.pData_ + bytes.size_);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

ImageProperties withoutLocation(const ImageProperties& properties)
{
    ImageProperties result = properties;
    std::optional<ExifBlock> exif = parsedExif(properties.exif);
    std::optional<Exiv2::XmpData> xmp;
    if (!properties.xmp.empty())
        xmp = parsedXmp(properties.xmp);

    const bool inExif = exif && any(exif->data, isExifPosition);
    const bool inXmp = xmp && any(*xmp, isXmpPosition);
    // XMP inside a TIFF's Exif may hold the place too; it is not looked into but left out.
    const bool embedded = exif && any(exif->data, isEmbeddedBlock);
    if (!exif)
        result.exif.clear();
    else if (inExif || embedded || (inXmp && hasOpaqueMakerNote(exif->data)))
        result.exif = exifWithoutLocation(properties.exif, *exif);
    if (!xmp) {
        result.xmp.clear();
    } else if (inXmp || mayHidePosition(properties.xmp)) {
        eraseWhere(*xmp, isXmpPosition);
        result.xmp = encodedXmp(*xmp);
    }
    // IPTC has fields for the names of places, which stay, and none for a position.
    if (!properties.iptc.empty() && !parsedIptc(properties.iptc))
        result.iptc.clear();
    return result;
}

ImageProperties preparedForExport(const ImageProperties& properties, int width, int height)
{
    ImageProperties result;
    if (!properties.exif.empty())
        result.exif = preparedExif(properties.exif, width, height);
    if (!properties.xmp.empty())
        result.xmp = preparedXmp(properties.xmp, width, height);
    if (!properties.iptc.empty())
        result.iptc = preparedIptc(properties.iptc);
    return result;
}

} // namespace orvane
