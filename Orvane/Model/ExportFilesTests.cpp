// What lies on the disk after an export: the metadata that each policy lets through, and nothing
// half-written.

#include "BakeChain.h"

#include "PictureDecoder.h"
#include "SharedPicture.h"
#include "TemporaryFolder.h"

namespace orvane {
namespace {

constexpr const char* block =
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
    "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
    "xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" "
    "exif:GPSLatitude=\"48,51.5N\" tiff:Artist=\"Ann Author\"/></rdf:RDF></x:xmpmeta>";

CIImage locatedPicture(int width, int height)
{
    ImageProperties properties;
    properties.xmp = block;
    const CIImage plain =
        CIImage::withColor({0.4, 0.5, 0.6, 1}).cropped({0, 0, double(width), double(height)});
    return plain.settingProperties(properties);
}

class ExportFiles : public TemporaryFolder { };

TEST_F(ExportFiles, TellOfTheirSourceWhatThePolicyAllows)
{
    for (const ExportFormatInfo& format : exportFormats) {
        for (const Baker::Metadata policy : Baker::allMetadata) {
            SCOPED_TRACE(std::string(format.rawValue) + " " + std::string(Baker::rawValue(policy)));
            const auto file = folder / ("out." + std::string(format.ext));
            const ExportOptions options{.format = format.format, .metadata = policy};
            const auto written = exportFile(locatedPicture(64, 48), options, file);
            ASSERT_TRUE(written) << written.error().message;
            const auto picture = decodePictureFile(file);
            ASSERT_TRUE(picture) << picture.error().message;
            const std::string& xmp = picture->properties.xmp;
            const auto tells = [&](const char* text) {
                return xmp.find(text) != std::string::npos;
            };
            EXPECT_EQ(tells("Ann Author"), policy != Baker::Metadata::stripAll);
            EXPECT_EQ(tells("GPSLatitude"), policy == Baker::Metadata::keep);
        }
    }
}

TEST_F(ExportFiles, ComeIntoBeingWholeOrNotAtAll)
{
    CancellationToken cancelled;
    cancelled.cancel();
    const auto refuse = [] { return false; };
    using Kind = ExportEnd::Kind;
    const struct {
        const char* what;
        CIImage picture;
        ExportWatch watch;
        Kind kind;
    } cases[] = {
        {"cancelled at the start",
         locatedPicture(64, 48),
         {.drawing = {.cancellation = &cancelled}},
         Kind::Cancelled},
        {"refused at the end", locatedPicture(64, 48), {.mayFinish = refuse}, Kind::Cancelled},
        {"no room in the format", locatedPicture(66000, 1), {}, Kind::NotEncoded},
        {"no pixels", CIImage(), {}, Kind::NotEncoded},
        {"a file that must stay", locatedPicture(64, 48), {.replaces = false}, Kind::NotWritten},
    };
    put("out.jpg", "what was there");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const ExportEnd end = bakeFile(c.picture, {}, folder / "out.jpg", c.watch);
        EXPECT_EQ(end.kind, c.kind);
        EXPECT_FALSE(end.reason.empty());
        EXPECT_EQ(content("out.jpg"), "what was there");
        EXPECT_EQ(names(), "out.jpg");
    }
    EXPECT_EQ(bakeFile(locatedPicture(64, 48), {}, folder / "out.jpg", {}).kind, Kind::Written);
    EXPECT_TRUE(decodePictureFile(folder / "out.jpg"));
}

TEST_F(ExportFiles, GoToThePasteboardAsPng)
{
    const struct {
        ExportFormat format;
        bool png16;
    } cases[] = {{ExportFormat::jpeg, false},
                 {ExportFormat::png, false},
                 {ExportFormat::png, true},
                 {ExportFormat::tiff, false}};
    for (const auto& c : cases) {
        ASSERT_TRUE(exportFile(locatedPicture(64, 48), {.format = c.format, .png16 = c.png16},
                               folder / "out"));
        const auto bytes = pngOfFile(folder / "out");
        ASSERT_TRUE(bytes) << bytes.error().message;
        const auto picture = decodePicture(*bytes);
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->format, PictureFormat::Png);
        EXPECT_EQ(picture->bitmap->type(), SampleType::U8);
        EXPECT_NEAR(picture->bitmap->row(20)[3], 102, 2); // red, 0.4 of 255
    }
    put("out", "no picture");
    EXPECT_FALSE(pngOfFile(folder / "out"));
}

} // namespace
} // namespace orvane
