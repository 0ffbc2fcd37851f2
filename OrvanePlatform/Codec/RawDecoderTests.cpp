#include "DecoderSupport.h"
#include "FormatDecoders.h"
#include "PictureDecoder.h"
#include "TestPictures.h"

#include <gtest/gtest.h>
#include <tiffio.h>

namespace orvane {
namespace {

using namespace test;

TEST(RawDecoder, mosaicBecomesLinearColour)
{
    // The middle of the sensor's range is the middle of linear light; red is a quarter of green.
    const auto picture = decodePicture(dng(8192, 32768, 16384, 6));
    ASSERT_TRUE(picture) << picture.error().message;
    EXPECT_EQ(picture->format, PictureFormat::Raw);
    EXPECT_EQ(picture->orientation, 6);
    EXPECT_EQ(picture->note, "");
    const Bitmap& bitmap = *picture->bitmap;
    EXPECT_EQ(bitmap.type(), SampleType::U16);
    EXPECT_GT(bitmap.width(), bitmap.height());
    const auto pixel = linearPixel(bitmap, bitmap.width() / 2, bitmap.height() / 2);
    EXPECT_NEAR(pixel[0], 0.125, 0.01);
    EXPECT_NEAR(pixel[1], 0.5, 0.01);
    EXPECT_NEAR(pixel[2], 0.25, 0.01);
    const auto& exif = picture->properties.exif;
    EXPECT_NE(std::string(exif.begin(), exif.end()).find("Maker"), std::string::npos);
}

TEST(RawDecoder, aTiffOfACameraMakerIsNoRawFile)
{
    const File file = tiff({.photometric = 1, .samples = 1, .bits = 16, .describe = [](TIFF* t) {
                                TIFFSetField(t, TIFFTAG_MAKE, "Canon");
                                TIFFSetField(t, TIFFTAG_MODEL, "Canon EOS 5D Mark II");
                            }});
    EXPECT_EQ(detectPictureFormat(file), PictureFormat::Tiff);
}

TEST(RawDecoder, unknownSensorShowsItsPreview)
{
    File file(64, 0);
    const std::string magic = "FUJIFILMCCD-RAW 0201";
    std::copy(magic.begin(), magic.end(), file.begin());
    const File small = jpeg({}, 16, 16);
    const File large = jpeg({}, 64, 48);
    file.insert(file.end(), small.begin(), small.end());
    file.insert(file.end(), large.begin(), large.end());
    const auto picture = decodePicture(file);
    ASSERT_TRUE(picture) << picture.error().message;
    EXPECT_EQ(picture->bitmap->width() * picture->bitmap->height(), 64 * 48);
    EXPECT_EQ(picture->note,
              "Orvane does not know this camera's sensor; the picture is shown from "
              "its embedded preview.");

    file.resize(64);
    EXPECT_EQ(decodePicture(file).error().message,
              "This camera's raw format is one that Orvane cannot read.");
}

TEST(RawDecoder, aCutFileIsDamagedAndNotUnknown)
{
    const File whole = dng(8192, 32768, 16384);
    const File cut(whole.begin(), whole.begin() + ptrdiff_t(whole.size() / 2));
    const auto picture = decodePicture(cut);
    ASSERT_FALSE(picture);
    EXPECT_EQ(picture.error().message, sentence::damaged);
}

} // namespace
} // namespace orvane
