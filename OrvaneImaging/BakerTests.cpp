#include "Baker.h"

#include "PictureDecoder.h"
#include "TestImages.h"

namespace orvane {
namespace {

using namespace test;

TEST(BakerMetadata, HasThreeNames)
{
    for (const Baker::Metadata metadata : Baker::allMetadata)
        EXPECT_EQ(Baker::metadataWithRawValue(Baker::rawValue(metadata)), metadata);
    EXPECT_EQ(Baker::rawValue(Baker::Metadata::stripLocation), "stripLocation");
    EXPECT_FALSE(Baker::metadataWithRawValue("Keep"));
}

TEST(BakerMetadata, KeepsOrDropsTheProperties)
{
    ImageProperties properties;
    properties.xmp = "<x:xmpmeta/>";
    const CIImage image = grey(2, 2, 0.5f).settingProperties(properties);
    EXPECT_TRUE(Baker::apply(image, Baker::Metadata::keep).isSame(image));
    EXPECT_TRUE(Baker::apply(image, Baker::Metadata::stripAll).properties().isEmpty());
    // No location to take away: the rest stays.
    EXPECT_EQ(Baker::apply(grey(2, 2, 0), Baker::Metadata::stripLocation).properties(),
              ImageProperties());
}

TEST(Baker, GivesNothingForImagesWithoutAFrame)
{
    for (const CIImage& image : {CIImage::withColor({1, 1, 1, 1}), CIImage()}) {
        EXPECT_FALSE(Baker::cgImage(image));
        EXPECT_FALSE(Baker::pngData(image, false));
        EXPECT_FALSE(Baker::jpegData(image, 0.9));
        EXPECT_FALSE(Baker::heifData(image, 0.9));
        EXPECT_FALSE(Baker::tiff16Data(image));
        MemoryByteSink bytes;
        EXPECT_FALSE(Baker::encode(image, {}, bytes).ok());
        EXPECT_EQ(bytes.size(), 0u);
    }
}

TEST(Baker, WritesFilesThatReadBackAlike)
{
    const CIImage image = coordinates(24, 16).transformed(CGAffineTransform::translation(-5, 3));
    const struct {
        const char* what;
        Baker::Bytes bytes;
        PictureFormat format;
        SampleType type;
        float tolerance; // of linear values up to 0.4
    } cases[] = {
        {"png", Baker::pngData(image, false), PictureFormat::Png, SampleType::U8, 3e-3f},
        {"png16", Baker::pngData(image, true), PictureFormat::Png, SampleType::U16, 2e-5f},
        {"tiff", Baker::tiff16Data(image), PictureFormat::Tiff, SampleType::U16, 2e-5f},
        {"jpeg", Baker::jpegData(image, 1), PictureFormat::Jpeg, SampleType::U8, 2e-2f},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(c.bytes);
        const auto decoded = decodePicture(*c.bytes);
        ASSERT_TRUE(decoded.ok()) << decoded.error().message;
        EXPECT_EQ(decoded->format, c.format);
        EXPECT_EQ(decoded->bitmap->type(), c.type);
        EXPECT_FALSE(decoded->bitmap->hasAlpha()); // an opaque picture needs none
        const CIImage again = imageFromPicture(*decoded);
        expectExtent(again, {0, 0, 24, 16});
        for (const int x : {0, 11, 23})
            expectNear(pixel(again, x, 9), pixel(coordinates(24, 16), x, 9), c.tolerance);
    }
}

TEST(Baker, StoresAlphaWhereThePictureHasHoles)
{
    const CIImage holed = picture(
        8, 8,
        [](int x, int) {
            return x < 4 ? Color{} : Color{0.25f, 0.25f, 0.25f, 0.5f};
        },
        false);
    const auto png = Baker::pngData(holed, true);
    ASSERT_TRUE(png);
    const auto decoded = decodePicture(*png);
    ASSERT_TRUE(decoded.ok());
    EXPECT_TRUE(decoded->bitmap->hasAlpha());
    expectNear(pixel(imageFromPicture(*decoded), 1, 4), {0, 0, 0, 0}, 1e-4f);
    expectNear(pixel(imageFromPicture(*decoded), 6, 4), {0.25f, 0.25f, 0.25f, 0.5f}, 1e-4f);
    // JPEG gets it over black.
    const auto jpeg = Baker::jpegData(holed, 1);
    ASSERT_TRUE(jpeg);
    expectNear(pixel(imageFromPicture(*decodePicture(*jpeg)), 6, 4), {0.25f, 0.25f, 0.25f, 1},
               2e-2f);
}

TEST(Baker, StopsWhenCancelled)
{
    CancellationToken token;
    token.cancel();
    MemoryByteSink bytes;
    EXPECT_FALSE(Baker::encode(grey(64, 64, 0.5f), {}, bytes, {.cancellation = &token}).ok());
    EXPECT_FALSE(Baker::cgImage(grey(64, 64, 0.5f), {.cancellation = &token}));
}

} // namespace
} // namespace orvane
