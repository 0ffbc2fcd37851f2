#include "PictureDecoder.h"
#include "TestPictures.h"

#include <random>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace test;

/// One of each road through the decoders.
std::vector<File> seeds()
{
    std::vector<File> files = {
        jpeg({.exif = exifBlock(6, 2, true),
              .icc = File(300, 1),
              .xmp = "<x/>",
              .iptc = File(9, 2)}),
        jpeg({.channels = 4, .isProgressive = true}),
        png({2, 16, true, nullptr}),
        png({4, 8, false, nullptr}),
        tiff({.bits = 16, .compression = 5}),
        tiff({.samples = 4,
              .bits = 32,
              .sampleFormat = 3,
              .isPlanar = true,
              .isTiled = true,
              .extraSample = 1}),
        webp(true, File(200, 3), exifBlock(3)),
        heif({0.2, 0.5, 0.7}, {.exif = exifBlock(6)}),
        heif({0.2, 0.5, 0.7}, {.isAvif = true, .bits = 12}),
        dng(1000, 2000, 3000),
    };
    return files;
}

/// What came back is a picture with pixels to look at, or a sentence.
void expectSane(const File& file)
{
    const auto picture = decodePicture(file);
    if (!picture) {
        EXPECT_FALSE(picture.error().message.empty());
        return;
    }
    const Bitmap& bitmap = *picture->bitmap;
    EXPECT_TRUE(picture->orientation >= 1 && picture->orientation <= 8);
    for (const int y : {0, bitmap.height() / 2, bitmap.height() - 1})
        for (const double v : linearPixel(bitmap, bitmap.width() - 1, y))
            EXPECT_TRUE(std::isfinite(v));
}

TEST(DamagedPicture, cutAnywhere)
{
    for (const File& whole : seeds())
        for (size_t i = 0; i < 40; ++i)
            expectSane(File(whole.begin(), whole.begin() + ptrdiff_t(whole.size() * i / 40)));
}

TEST(DamagedPicture, flippedAnywhere)
{
    std::mt19937 random(20240229);
    for (const File& whole : seeds()) {
        if (whole.empty())
            continue;
        for (int round = 0; round < 60; ++round) {
            File file = whole;
            // Headers are where the numbers are: half of the changes go there.
            const size_t reach = round % 2 == 0 ? std::min<size_t>(file.size(), 200) : file.size();
            for (int change = 0; change <= round % 4; ++change)
                file[random() % reach] ^= uint8_t(1 + random() % 255);
            expectSane(file);
        }
    }
}

} // namespace
} // namespace orvane
