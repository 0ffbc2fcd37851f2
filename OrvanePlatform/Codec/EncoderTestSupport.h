#pragma once

#include "ExifBlock.h"
#include "PictureEncoder.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace orvane {

// A latitude that no other bytes of a test file spell by chance: 0x5a17c3e5 / 0x01f3a9d1 degrees.
inline constexpr uint32_t placeNumerator = 0x5a17c3e5;
inline constexpr uint32_t placeDenominator = 0x01f3a9d1;

struct ExifContents {
    bool place = true;
    bool opaqueMaker = false; ///< a maker that the parser does not know
};

// Canon's notes are ones that the parser reads and writes.
inline std::vector<uint8_t> testExif(const ExifContents& contents)
{
    prepareMetadataLibrary();
    Exiv2::ExifData data;
    data["Exif.Image.Make"] = contents.opaqueMaker ? "Nobody" : "Canon";
    data["Exif.Image.Model"] = "Box";
    data["Exif.Image.Orientation"] = uint16_t(6);
    data["Exif.Photo.ExposureTime"] = Exiv2::URational(1, 8000);
    data["Exif.Photo.ColorSpace"] = uint16_t(2);
    data["Exif.Iop.InteroperabilityIndex"] = "R03";
    data["Exif.Thumbnail.ImageWidth"] = uint32_t(16);
    if (contents.opaqueMaker) {
        Exiv2::DataValue notes(Exiv2::undefined);
        notes.read(std::vector<Exiv2::byte>(300, 7).data(), 300);
        data.add(Exiv2::ExifKey("Exif.Photo.MakerNote"), &notes);
    } else {
        data["Exif.Canon.OwnerName"] = "Ada";
    }
    if (contents.place) {
        data["Exif.GPSInfo.GPSLatitudeRef"] = "N";
        data["Exif.GPSInfo.GPSLatitude"] = Exiv2::URational(placeNumerator, placeDenominator);
    }
    return encodedExif({data, Exiv2::littleEndian}, {});
}

inline std::string testXmp(bool place)
{
    const std::string position =
        " exif:GPSLatitude='52,30.5N' drone:GpsLongtitude='13.4' tiff:Model='Box'";
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
           "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
           "xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmlns:tiff='http://ns.adobe.com/tiff/1.0/' "
           "xmlns:exif='http://ns.adobe.com/exif/1.0/' xmlns:drone='http://example.org/drone/' "
           "xmp:Rating='4' tiff:Orientation='6'"
        + (place ? position : std::string()) + "/></rdf:RDF></x:xmpmeta>";
}

inline std::vector<uint8_t> testIptc()
{
    Exiv2::IptcData data;
    data["Iptc.Application2.City"] = "Reykjavik";
    const Exiv2::DataBuf bytes = Exiv2::IptcParser::encode(data);
    return std::vector<uint8_t>(bytes.pData_, bytes.pData_ + bytes.size_);
}

inline bool spellsPlace(const std::vector<uint8_t>& bytes)
{
    uint8_t little[4];
    std::memcpy(little, &placeNumerator, 4);
    return std::search(bytes.begin(), bytes.end(), little, little + 4) != bytes.end();
}

} // namespace orvane
