#include "PictureDecoder.h"

#include "DecoderSupport.h"
#include "TestPictures.h"

#include <cmath>
#include <fstream>
#include <set>

#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>
#include <zlib.h>

namespace orvane {
namespace {

using namespace test;

struct FormatCase {
    std::string name;
    File file;
    PictureFormat format;
    int channels;
    SampleType type;
    double tolerance; ///< of the encoded value
};

double encoded(double linear)
{
    return linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

/// The process's peak of resident memory since resetPeak(), in bytes.
size_t peakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "VmHWM:") {
            size_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes << 10;
        }
    return 0;
}

void resetPeak()
{
    std::ofstream("/proc/self/clear_refs") << 5;
}

void describePalette(png_structp png, png_infop info)
{
    std::vector<png_color> colors;
    for (int i = 0; i < 16; ++i)
        colors.push_back({png_byte(i * 10), png_byte(255 - i), png_byte(i)});
    png_set_PLTE(png, info, colors.data(), int(colors.size()));
}

std::vector<FormatCase> formatCases()
{
    const auto u8 = SampleType::U8;
    const auto u16 = SampleType::U16;
    const auto f32 = SampleType::F32;
    const auto jpg = PictureFormat::Jpeg;
    const auto pngFormat = PictureFormat::Png;
    const auto tif = PictureFormat::Tiff;
    std::vector<FormatCase> cases = {
        {"jpeg", jpeg(), jpg, 3, u8, 0.02},
        {"progressive jpeg", jpeg({.isProgressive = true}), jpg, 3, u8, 0.02},
        {"grey jpeg", jpeg({.channels = 1}), jpg, 1, u8, 0.02},
        {"webp", webp(false), PictureFormat::WebP, 3, u8, 0.002},
        {"webp with alpha", webp(true), PictureFormat::WebP, 4, u8, 0.002},
        {"big-endian tiff", tiff({.bits = 16, .mode = "wb"}), tif, 3, u16, 1e-5},
        {"big tiff", tiff({.mode = "w8"}), tif, 3, u8, 0.002},
        {"palette tiff",
         tiff({.photometric = 3,
               .samples = 1,
               .describe =
                   [](TIFF* t) {
                       std::vector<uint16_t> red(256), green(256), blue(256);
                       for (size_t i = 0; i < 256; ++i)
                           red[i] = green[i] = blue[i] = uint16_t(i * 257);
                       TIFFSetField(t, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
                   }}),
         tif, 3, u8, 2},
    };
    for (const bool interlaced : {false, true}) {
        const std::string suffix = interlaced ? " interlaced png" : " png";
        const auto add = [&](const char* name, int color, int depth, int channels,
                             double tolerance) {
            cases.push_back({name + suffix, png({color, depth, interlaced, nullptr}), pngFormat,
                             channels, depth == 16 ? u16 : u8, tolerance});
        };
        add("grey 1 bit", 0, 1, 1, 0.51);
        add("grey 2 bits", 0, 2, 1, 0.17);
        add("grey 4 bits", 0, 4, 1, 0.034);
        add("grey 8 bits", 0, 8, 1, 0.002);
        add("grey 16 bits", 0, 16, 1, 1e-5);
        add("grey and alpha", 4, 8, 2, 0.002);
        add("rgb", 2, 8, 3, 0.002);
        add("rgb 16", 2, 16, 3, 1e-5);
        add("rgba", 6, 8, 4, 0.002);
        add("rgba 16", 6, 16, 4, 1e-5);
    }
    for (const bool planar : {false, true}) {
        for (const bool tiled : {false, true}) {
            const std::string suffix =
                std::string(planar ? " planar" : "") + (tiled ? " tiled" : "") + " tiff";
            const auto add = [&](const char* name, TiffOptions o, int channels, SampleType type,
                                 double tolerance) {
                o.isPlanar = planar && o.samples > 1;
                o.isTiled = tiled;
                cases.push_back({name + suffix, tiff(o), tif, channels, type, tolerance});
            };
            add("rgb", {}, 3, u8, 0.002);
            add("rgb 16 lzw", {.bits = 16, .compression = COMPRESSION_LZW}, 3, u16, 1e-5);
            add("rgb 32", {.bits = 32}, 3, u16, 2e-5);
            add("rgb half", {.bits = 16, .sampleFormat = 3}, 3, f32, 6e-4);
            add("rgb float", {.bits = 32, .sampleFormat = 3}, 3, f32, 1e-6);
            add("rgb double", {.bits = 64, .sampleFormat = 3}, 3, f32, 1e-6);
            add("grey", {.photometric = 1, .samples = 1}, 1, u8, 0.002);
            add("rgb and alpha", {.samples = 4, .extraSample = 2}, 4, u8, 0.002);
            add("rgb and unknown", {.samples = 4, .extraSample = 0}, 3, u8, 0.002);
            add("deflate", {.compression = COMPRESSION_ADOBE_DEFLATE}, 3, u8, 0.002);
        }
    }
    cases.push_back(
        {"1 bit tiff", tiff({.photometric = 1, .samples = 1, .bits = 1}), tif, 1, u8, 0.51});
    cases.push_back(
        {"4 bit tiff", tiff({.photometric = 1, .samples = 1, .bits = 4}), tif, 1, u8, 0.034});
    cases.push_back(
        {"12 bit tiff", tiff({.photometric = 1, .samples = 1, .bits = 12}), tif, 1, u16, 2e-4});
    cases.push_back({"jpeg in ycbcr tiff",
                     tiff({.photometric = PHOTOMETRIC_YCBCR, .compression = COMPRESSION_JPEG}), tif,
                     3, u8, 2});
    return cases;
}

TEST(PictureDecoder, everyFormatAtItsOwnDepth)
{
    for (const FormatCase& c : formatCases()) {
        SCOPED_TRACE(c.name);
        const auto picture = decodePicture(c.file);
        ASSERT_TRUE(picture) << picture.error().message;
        const Bitmap& bitmap = *picture->bitmap;
        EXPECT_EQ(picture->format, c.format);
        ASSERT_EQ(bitmap.width(), pictureWidth);
        ASSERT_EQ(bitmap.height(), pictureHeight);
        EXPECT_EQ(bitmap.channels(), c.channels);
        EXPECT_EQ(bitmap.type(), c.type);
        EXPECT_EQ(bitmap.alpha(), bitmap.hasAlpha() ? AlphaKind::Straight : AlphaKind::None);
        EXPECT_EQ(picture->note, "");
        for (int y = 0; y < pictureHeight; ++y) {
            for (int x = 0; x < pictureWidth; ++x) {
                const auto pixel = linearPixel(bitmap, x, y);
                for (int channel = 0; channel < 3; ++channel)
                    ASSERT_NEAR(encoded(pixel[size_t(channel)]),
                                sampleOf(bitmap.channels() < 3 ? 0 : channel, x, y), c.tolerance)
                        << x << ' ' << y << ' ' << channel;
                ASSERT_NEAR(pixel[3], bitmap.hasAlpha() ? sampleOf(3, x, y) : 1.0, c.tolerance);
            }
        }
    }
}

TEST(PictureDecoder, paletteAndTransparentColour)
{
    const auto palette = decodePicture(png({3, 4, false, describePalette}));
    ASSERT_TRUE(palette);
    ASSERT_EQ(palette->bitmap->channels(), 3);
    EXPECT_EQ(std::vector<uint8_t>(palette->bitmap->row(0) + 9, palette->bitmap->row(0) + 12),
              (std::vector<uint8_t>{30, 252, 3}));

    const auto keyed = decodePicture(png({3, 4, false, [](png_structp png, png_infop info) {
                                              describePalette(png, info);
                                              const png_byte alphas[] = {255, 7};
                                              png_set_tRNS(png, info, alphas, 2, nullptr);
                                          }}));
    ASSERT_TRUE(keyed);
    ASSERT_EQ(keyed->bitmap->channels(), 4);
    EXPECT_EQ(keyed->bitmap->row(3)[7], 7);
    EXPECT_EQ(keyed->bitmap->row(3)[11], 255);
}

TEST(PictureDecoder, tiffKindsWithAMeaningOfTheirOwn)
{
    const auto pixelOf = [](const TiffOptions& options, int x, int y) {
        const auto picture = decodePicture(tiff(options));
        EXPECT_TRUE(picture) << picture.error().message;
        return picture ? linearPixel(*picture->bitmap, x, y) : std::array<double, 4>{};
    };
    // 0 is white.
    const auto inverted = pixelOf({.photometric = 0, .samples = 1}, 0, 0);
    EXPECT_NEAR(inverted[1], 1, 1e-6);
    // Associated alpha: half of everything is all of it at alpha one half.
    const auto associated = pixelOf({.samples = 4,
                                     .extraSample = 1,
                                     .sample = [](int c, int, int) { return c == 3 ? 128 : 64; }},
                                    0, 0);
    EXPECT_NEAR(encoded(associated[0]), 0.5, 0.003);
    // Inks without a profile multiply: no cyan and half black leave half the red.
    const auto inks =
        pixelOf({.photometric = 5,
                 .samples = 4,
                 .sample = [](int c, int, int) { return c == 1 ? 255
                                                     : c == 3  ? 128
                                                               : 0; }},
                0, 0);
    EXPECT_NEAR(encoded(inks[0]), 0.498, 0.003);
    EXPECT_NEAR(inks[1], 0, 1e-6);
    // L* of 50 is a luminance of 0.1842; a* of 40 at both depths and both codings.
    const auto signed8 =
        pixelOf({.photometric = 8,
                 .sample = [](int c, int, int) { return c == 0 ? 127.5
                                                     : c == 1  ? 40
                                                               : 0; }},
                0, 0);
    const auto offset16 =
        pixelOf({.photometric = 9,
                 .bits = 16,
                 .sample = [](int c, int,
                              int) { return c == 0 ? 32640
                                         : c == 1  ? (128 + 40) * 256
                                                   : 32768; }},
                0, 0);
    EXPECT_NEAR(0.2126 * offset16[0] + 0.7152 * offset16[1] + 0.0722 * offset16[2], 0.1842, 0.004);
    EXPECT_GT(offset16[0], 2 * offset16[1]);
    for (size_t c = 0; c < 3; ++c)
        EXPECT_NEAR(signed8[c], offset16[c], 0.004);
}

TEST(PictureDecoder, floatsKeepWhatLiesBeyondWhiteAndLoseWhatIsNoNumber)
{
    const auto picture =
        decodePicture(tiff({.bits = 32, .sampleFormat = 3, .sample = [](int c, int x, int) {
                                return c == 0 ? 2.0 : c == 1 ? -0.5 : x == 0 ? NAN : INFINITY;
                            }}));
    ASSERT_TRUE(picture);
    const auto pixel = linearPixel(*picture->bitmap, 0, 0);
    EXPECT_NEAR(pixel[0], std::pow(2.055 / 1.055, 2.4), 1e-4);
    EXPECT_NEAR(pixel[1], -0.2140, 1e-4);
    EXPECT_EQ(pixel[2], 0);
    EXPECT_EQ(linearPixel(*picture->bitmap, 5, 0)[2], 0);
}

TEST(PictureDecoder, sixteenBitsStaySixteen)
{
    for (const File& file : {png({2, 16, false, nullptr}), tiff({.bits = 16})}) {
        const auto picture = decodePicture(file);
        ASSERT_TRUE(picture);
        const auto* row = reinterpret_cast<const uint16_t*>(picture->bitmap->row(7));
        for (int x = 0; x < pictureWidth; ++x)
            EXPECT_EQ(row[x * 3], sampleOf(0, x, 0, 65535));
    }
}

TEST(PictureDecoder, orientationAndBlocksComeFromEveryContainer)
{
    const std::string xmp = "<x:xmpmeta tiff:Orientation=\"6\"/>";
    const std::string neutralXmp = "<x:xmpmeta tiff:Orientation=\"1\"/>";
    const File iptc = {0x1c, 2, 5, 0, 1, 'a'};
    for (const bool bigEndian : {false, true}) {
        const File exif = exifBlock(6, 1, false, bigEndian);
        const auto describe = [&](png_structp writer, png_infop info) {
            png_set_eXIf_1(writer, info, png_uint_32(exif.size()),
                           const_cast<uint8_t*>(exif.data()));
            png_text text{};
            text.compression = PNG_ITXT_COMPRESSION_zTXt;
            text.key = const_cast<char*>("XML:com.adobe.xmp");
            text.text = const_cast<char*>(xmp.data());
            png_set_text(writer, info, &text, 1);
        };
        const File files[] = {jpeg({.exif = exif, .xmp = xmp, .iptc = iptc}),
                              png({2, 8, false, describe}), webp(false, {}, exif, xmp)};
        for (const File& file : files) {
            const auto picture = decodePicture(file);
            ASSERT_TRUE(picture);
            EXPECT_EQ(picture->orientation, 6);
            EXPECT_EQ(picture->properties.exif, exifBlock(1, 1, false, bigEndian));
            EXPECT_EQ(picture->properties.xmp, neutralXmp);
            EXPECT_EQ(picture->properties.iptc, &file == files ? iptc : File());
        }
    }
    const auto describe = [&](TIFF* t) {
        TIFFSetField(t, TIFFTAG_ORIENTATION, 8);
        TIFFSetField(t, TIFFTAG_MAKE, "Hand");
        TIFFSetField(t, TIFFTAG_XMLPACKET, uint32_t(xmp.size()), xmp.data());
    };
    const auto picture = decodePicture(tiff({.describe = describe}));
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->orientation, 8);
    EXPECT_EQ(picture->properties.xmp, neutralXmp);
    const auto& exif = picture->properties.exif;
    EXPECT_NE(std::string(exif.begin(), exif.end()).find("Hand"), std::string::npos);
}

TEST(PictureDecoder, textsOfAPngTakeNoMemory)
{
    // Sixty texts of 16 MB each, two hundred small ones, and the packet last.
    const std::string key("a\0\0", 3);
    File text(key.begin(), key.end());
    const File zeros = deflated(File(size_t(16000000), 'x'));
    text.insert(text.end(), zeros.begin(), zeros.end());
    std::vector<File> chunks(60, pngChunk("zTXt", text));
    chunks.insert(chunks.end(), 200, pngChunk("tEXt", {'a', 0, 'b'}));
    const std::string packet("XML:com.adobe.xmp\0\0\0\0\0<x/>", 26);
    chunks.push_back(pngChunk("iTXt", File(packet.begin(), packet.end())));
    const File file = pngWith(png(), chunks);
    resetPeak();
    const size_t before = peakMemory();
    ASSERT_GT(before, 0u);
    const auto picture = decodePicture(file);
    ASSERT_TRUE(picture) << picture.error().message;
    EXPECT_LT(peakMemory() - before, size_t(64) << 20);
    EXPECT_EQ(picture->properties.xmp, "<x/>");
}

// One bit a pixel in the file, two bytes in the bitmap.
TEST(PictureDecoder, aFlatPngWithATransparentColourIsWhole)
{
    File header;
    appendNumber(header, 5000);
    appendNumber(header, 4000);
    header.insert(header.end(), {1, 0, 0, 0, 0});
    File file = png();
    file.resize(8);
    for (const File& chunk :
         {pngChunk("IHDR", header), pngChunk("tRNS", {0, 0}),
          pngChunk("IDAT", deflated(File(size_t(4000) * (1 + 5000 / 8), 0))), pngChunk("IEND", {})})
        file.insert(file.end(), chunk.begin(), chunk.end());
    const auto picture = decodePicture(file);
    ASSERT_TRUE(picture) << picture.error().message;
    EXPECT_EQ(picture->bitmap->channels(), 2);
    EXPECT_EQ(picture->bitmap->row(3999)[2 * 4999 + 1], 0);
}

/// A little-endian TIFF with other numbers in its first directory.
File withTags(File file, const std::vector<std::pair<uint16_t, uint32_t>>& tags)
{
    const ByteReader reader(file, false);
    const uint64_t directory = reader.u32(4);
    for (int i = 0; i < reader.u16(directory); ++i) {
        const uint64_t entry = directory + 2 + uint64_t(i) * 12;
        for (const auto& [tag, value] : tags) {
            if (reader.u16(entry) != tag)
                continue;
            file[entry + 2] = TIFF_LONG;
            for (size_t byte = 0; byte < 4; ++byte)
                file[entry + 8 + byte] = uint8_t(value >> (8 * byte));
        }
    }
    return file;
}

TEST(PictureDecoder, sentences)
{
    const File whole = jpeg({}, 400, 300);
    const File progressive = jpeg({.isProgressive = true}, 400, 300);
    const File picture = png();
    const auto half = [](const File& file) {
        return File(file.begin(), file.begin() + ptrdiff_t(file.size() / 2));
    };
    const auto giantPng = [](uint32_t side) {
        File file = png();
        for (size_t i = 0; i < 4; ++i)
            file[16 + i] = file[20 + i] = uint8_t(side >> (24 - 8 * i));
        // The header's check sum, so that nothing else is wrong with the file.
        const uint32_t sum = uint32_t(crc32(0, file.data() + 12, 17));
        for (size_t i = 0; i < 4; ++i)
            file[29 + i] = uint8_t(sum >> (24 - 8 * i));
        return file;
    };
    const File giantTile = withTags(tiff({.isTiled = true}),
                                    {{TIFFTAG_TILEWIDTH, 16384}, {TIFFTAG_TILELENGTH, 16384}});
    // 6000 x 6000 pixels of 32 bytes; what follows could hold as many.
    File giantStrip = withTags(
        tiff({.samples = 16,
              .bits = 16,
              .compression = COMPRESSION_ADOBE_DEFLATE,
              .extraSample = 0}),
        {{TIFFTAG_IMAGEWIDTH, 6000}, {TIFFTAG_IMAGELENGTH, 6000}, {TIFFTAG_ROWSPERSTRIP, 6000}});
    giantStrip.resize(size_t(2) << 20);
    File noMarker = whole;
    noMarker.resize(noMarker.size() - 2);
    const struct {
        const char* name;
        File file;
        std::string message;
    } cases[] = {
        {"empty", {}, "The file is empty."},
        {"text", File(200, 'x'), "The file is not a picture that Orvane can read."},
        {"half a jpeg", half(whole), sentence::endsEarly},
        {"half a progressive jpeg", half(progressive), sentence::endsEarly},
        {"half a png", half(picture), sentence::endsEarly},
        {"half a webp", half(webp(true)), sentence::endsEarly},
        {"half a tiff", half(tiff()), sentence::endsEarly},
        {"half a heic", half(heif({0.5, 0.5, 0.5})), sentence::endsEarly},
        {"a png bomb", giantPng(30000), sentence::endsEarly},
        {"a giant png", giantPng(65535),
         "This picture is 65535 × 65535 pixels; Orvane opens pictures of up to 1000 megapixels."},
        {"a giant tile", giantTile,
         "This TIFF file's tiles are far larger than its picture, which Orvane does not read."},
        {"a giant strip", giantStrip,
         "This TIFF file stores its picture in pieces of more than 1 GB, which Orvane cannot "
         "read."},
        {"complete but for its last marker", noMarker, ""},
        {"complete", whole, ""},
    };
    for (const auto& c : cases) {
        const auto result = decodePicture(c.file);
        EXPECT_EQ(result.ok() ? "" : result.error().message, c.message) << c.name;
    }
}

TEST(PictureDecoder, readsWhatAFileIsNotWhatItIsCalled)
{
    const auto folder = std::filesystem::path(testing::TempDir()) / "orvane-decoder";
    std::filesystem::create_directories(folder);
    const File file = png();
    std::ofstream(folder / "picture.jpg", std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), std::streamsize(file.size()));
    const auto picture = decodePictureFile(folder / "picture.jpg");
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->format, PictureFormat::Png);
    EXPECT_EQ(decodePictureFile(folder).error().message, sentence::notAPicture);
    EXPECT_EQ(decodePictureFile(folder / "none").error().message, "The file is no longer there.");
    // Files with holes, which would take forever to read.
    for (const auto& [start, message] :
         {std::pair{"no picture", sentence::notAPicture},
          std::pair{"\x89PNG\r\n\x1a\n",
                    "The file is larger than this computer's memory can hold."}}) {
        std::ofstream(folder / "huge", std::ios::binary) << start;
        std::filesystem::resize_file(folder / "huge", uintmax_t(1) << 43);
        EXPECT_EQ(decodePictureFile(folder / "huge").error().message, message);
    }
    std::filesystem::remove_all(folder);
}

} // namespace
} // namespace orvane
