#include "Metadata.h"

#include "EncoderTestSupport.h"

#include <gtest/gtest.h>

namespace orvane {

static std::string exifText(const ImageProperties& properties, const char* key)
{
    const std::optional<ExifBlock> block = parsedExif(properties.exif);
    if (!block)
        return "unreadable";
    const auto at = block->data.findKey(Exiv2::ExifKey(key));
    return at == block->data.end() ? "absent" : at->toString();
}

TEST(WithoutLocation, LeavesPropertiesWithoutAPlaceAsTheyAre)
{
    for (const bool opaque : {false, true}) {
        const ImageProperties properties = {testExif({.place = false, .opaqueMaker = opaque}),
                                            testXmp(false), testIptc()};
        EXPECT_EQ(withoutLocation(properties), properties);
    }
    EXPECT_TRUE(withoutLocation({}).isEmpty());
}

TEST(WithoutLocation, TakesThePlaceAloneOutOfExif)
{
    const ImageProperties properties = {testExif({}), testXmp(false), testIptc()};
    ASSERT_TRUE(spellsPlace(properties.exif));
    const ImageProperties result = withoutLocation(properties);
    EXPECT_FALSE(spellsPlace(result.exif));
    EXPECT_EQ(exifText(result, "Exif.GPSInfo.GPSLatitudeRef"), "absent");
    EXPECT_EQ(exifText(result, "Exif.Image.GPSTag"), "absent");
    EXPECT_EQ(exifText(result, "Exif.Image.Model"), "Box");
    EXPECT_EQ(exifText(result, "Exif.Photo.ExposureTime"), "1/8000");
    EXPECT_EQ(exifText(result, "Exif.Canon.OwnerName"), "Ada");
    EXPECT_EQ(exifText(result, "Exif.Thumbnail.ImageWidth"), "16");
    EXPECT_EQ(result.xmp, properties.xmp);
    EXPECT_EQ(result.iptc, properties.iptc);
}

TEST(WithoutLocation, TakesTheTiesToTheGroundOutOfEveryDirectory)
{
    for (const char* tag : {"0x830e", "0x8480", "0x8482", "0x85d8", "0x87af", "0x87b0", "0x87b1"}) {
        for (const char* group : {"Exif.Image.", "Exif.Photo.", "Exif.Thumbnail."}) {
            SCOPED_TRACE(std::string(group) + tag);
            std::optional<ExifBlock> block = parsedExif(testExif({.place = false}));
            ASSERT_TRUE(block);
            block->data[std::string(group) + tag] =
                Exiv2::URational(placeNumerator, placeDenominator);
            const std::vector<uint8_t> exif = encodedExif(*block, {});
            ASSERT_TRUE(spellsPlace(exif));
            const ImageProperties result = withoutLocation({exif, {}, {}});
            EXPECT_FALSE(spellsPlace(result.exif));
            EXPECT_EQ(exifText(result, "Exif.Image.Model"), "Box");
        }
    }
}

TEST(WithoutLocation, MakerNotesThatCannotBeReadGoWithThePlace)
{
    struct Case {
        const char* name;
        bool inExif;
        bool inXmp;
    };
    for (const Case& one : {Case{"Exif", true, false}, Case{"XMP", false, true}}) {
        SCOPED_TRACE(one.name);
        const ImageProperties result = withoutLocation(
            {testExif({.place = one.inExif, .opaqueMaker = true}), testXmp(one.inXmp), {}});
        EXPECT_EQ(exifText(result, "Exif.Photo.MakerNote"), "absent");
        EXPECT_EQ(exifText(result, "Exif.Image.Make"), "Nobody");
    }
}

TEST(WithoutLocation, TakesEveryPositionOutOfXmp)
{
    const std::string xmp = withoutLocation({{}, testXmp(true), {}}).xmp;
    for (const char* gone : {"GPSLatitude", "GpsLongtitude", "52,30.5N", "13.4"})
        EXPECT_EQ(xmp.find(gone), std::string::npos) << gone;
    for (const char* kept : {"Rating", "Box"})
        EXPECT_NE(xmp.find(kept), std::string::npos) << kept;

    const struct {
        const char* attributes;
        const char* elements;
        bool isKept; ///< the value 52.5163
    } cases[] = {
        {"geo:lat='52.5163' geo:long='13.4'", "", false},
        {"geo:anything='52.5163'", "", false},
        {"my:lon='52.5163'", "", false},
        {"my:LAT='52.5163'", "", false},
        {"", "<my:Place rdf:parseType='Resource'><my:lat>52.5163</my:lat></my:Place>", false},
        {"", "<my:Coordinates><rdf:Seq><rdf:li>52.5163</rdf:li></rdf:Seq></my:Coordinates>", false},
        {"", "<my:Coordinates rdf:parseType='Resource'><my:x>52.5163</my:x></my:Coordinates>",
         false},
        {"", "<!-- taken at 52.5163, 13.4 -->", false},
        {"my:LongName='52.5163'", "", true},
        {"my:Flat='52.5163'", "<!-- nothing -->", true},
        {"", "<my:Longest rdf:parseType='Resource'><my:plate>52.5163</my:plate></my:Longest>",
         true},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::string(one.attributes) + one.elements);
        const std::string packet =
            "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
            "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
            "rdf:about='' xmlns:xmp='http://ns.adobe.com/xap/1.0/' "
            "xmlns:geo='http://www.w3.org/2003/01/geo/wgs84_pos#' "
            "xmlns:my='http://example.org/my/' xmp:Rating='4' "
            + std::string(one.attributes) + ">" + one.elements
            + "</rdf:Description></rdf:RDF></x:xmpmeta>";
        const std::string result = withoutLocation({{}, packet, {}}).xmp;
        EXPECT_NE(result.find("Rating"), std::string::npos);
        EXPECT_EQ(result.find("52.5163") != std::string::npos, one.isKept) << result;
    }
}

// A file cut anywhere, or with one byte changed, must neither throw nor let the place through.
TEST(WithoutLocation, BrokenBlocksNeverKeepThePlace)
{
    const std::vector<uint8_t> whole = testExif({});
    for (size_t size = 0; size <= whole.size(); ++size) {
        const std::vector<uint8_t> cut(whole.begin(), whole.begin() + long(size));
        EXPECT_FALSE(spellsPlace(withoutLocation({cut, {}, {}}).exif)) << size;
    }
    for (size_t at = 0; at < whole.size(); ++at) {
        std::vector<uint8_t> damaged = whole;
        damaged[at] ^= 0xff;
        const ImageProperties result = withoutLocation({damaged, {}, {}});
        const std::optional<ExifBlock> block = parsedExif(result.exif);
        for (const Exiv2::Exifdatum& entry : block ? block->data : Exiv2::ExifData())
            EXPECT_NE(entry.groupName(), "GPSInfo") << at;
        (void)preparedForExport({damaged, {}, {}}, 4, 4);
    }
    const ImageProperties garbage = {{1, 2, 3, 4, 5, 6, 7, 8, 9}, "<not xmp", {0x1c, 2, 5, 9, 9}};
    for (const ImageProperties& result :
         {withoutLocation(garbage), preparedForExport(garbage, 4, 4)}) {
        EXPECT_TRUE(result.exif.empty());
        EXPECT_TRUE(result.xmp.empty());
        EXPECT_TRUE(result.iptc.empty());
    }
}

TEST(PreparedForExport, DescribesTheNewFile)
{
    const ImageProperties properties = {testExif({}), testXmp(false), testIptc()};
    const ImageProperties result = preparedForExport(properties, 640, 480);
    const std::pair<const char*, const char*> expected[] = {
        {"Exif.Image.Orientation", "1"},           {"Exif.Photo.ColorSpace", "1"},
        {"Exif.Photo.PixelXDimension", "640"},     {"Exif.Photo.PixelYDimension", "480"},
        {"Exif.Iop.InteroperabilityIndex", "R98"}, {"Exif.Thumbnail.ImageWidth", "absent"},
        {"Exif.Canon.OwnerName", "Ada"},           {"Exif.GPSInfo.GPSLatitudeRef", "N"},
    };
    for (const auto& [key, value] : expected)
        EXPECT_EQ(exifText(result, key), value) << key;
    EXPECT_EQ(result.xmp.find("Orientation=\"6\""), std::string::npos);
    EXPECT_NE(result.xmp.find("Orientation=\"1\""), std::string::npos) << result.xmp;
    EXPECT_EQ(result.iptc, properties.iptc);
    EXPECT_EQ(preparedForExport(result, 640, 480), result) << "a second time changes nothing";
}

TEST(ExifAtMost, DropsTheMakersNotesAndThenEverything)
{
    const std::vector<uint8_t> exif = testExif({.opaqueMaker = true});
    EXPECT_EQ(exifAtMost(exif, exif.size()), exif);
    const ImageProperties smaller = {exifAtMost(exif, exif.size() - 200), {}, {}};
    EXPECT_LE(smaller.exif.size(), exif.size() - 200);
    EXPECT_EQ(exifText(smaller, "Exif.Image.Make"), "Nobody");
    EXPECT_TRUE(exifAtMost(exif, 20).empty());
}

} // namespace orvane
