#include "PictureEncoder.h"

#include "EncoderBase.h"
#include "EncoderTestSupport.h"
#include "Metadata.h"
#include "SrgbProfile.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <jpeglib.h>
#include <libheif/heif.h>
#include <png.h>
#include <tiffio.h>

// x265 3.5 loses a few hundred bytes with every coder that it closes; leaks of ours still count.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libx265\nleak:x265_";
}

namespace orvane {

namespace {

struct Picture {
    int width = 0;
    int height = 0;
    int channels = 0;
    int bits = 8;
    std::vector<uint16_t> samples; // 8-bit values as they are
};

struct ReadBack {
    Picture picture;
    ImageProperties properties;
    std::vector<uint8_t> profile;
};

// Every value of the depth in turn when `levels`; otherwise soft waves that lossy coding keeps.
Picture testPicture(int width, int height, int channels, int bits, bool levels = false)
{
    Picture picture = {width, height, channels, bits, {}};
    const double most = bits == 16 ? 65535 : 255;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c) {
                const double wave = 0.5 + 0.4 * std::sin(0.11 * x + 0.07 * y + 2.1 * c);
                picture.samples.push_back(levels ? uint16_t(y * width + x)
                                                 : uint16_t(std::lround(wave * most)));
            }
    return picture;
}

// Rows in uneven parts and with bytes between them, as an engine may hand them over.
Result<void> encode(const Picture& picture, EncodeSettings settings, ByteSink& sink)
{
    settings.width = picture.width;
    settings.height = picture.height;
    settings.alpha = picture.channels == 4;
    settings.bits = picture.bits;
    auto encoder = makePictureEncoder(settings, sink);
    if (!encoder)
        return encoder.error();
    const size_t perRow = size_t(picture.width) * size_t(picture.channels);
    const size_t sampleBytes = size_t(picture.bits / 8);
    const size_t rowBytes = perRow * sampleBytes + 10;
    std::vector<uint8_t> rows(rowBytes * size_t(picture.height), 0xee);
    for (size_t i = 0; i < picture.samples.size(); ++i) {
        uint8_t* at = rows.data() + i / perRow * rowBytes + i % perRow * sampleBytes;
        if (sampleBytes == 2)
            std::memcpy(at, &picture.samples[i], 2);
        else
            *at = uint8_t(picture.samples[i]);
    }
    for (int y = 0, part = 1; y < picture.height; y += part, part = part % 19 + 3) {
        part = std::min(part, picture.height - y);
        auto written = (*encoder)->writeRows(rows.data() + size_t(y) * rowBytes, part, rowBytes);
        if (!written)
            return written;
    }
    return (*encoder)->finish();
}

using Bytes = std::vector<uint8_t>;

Picture readJpeg(const Bytes& bytes)
{
    jpeg_decompress_struct info = {};
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, bytes.data(), bytes.size());
    jpeg_read_header(&info, TRUE);
    jpeg_start_decompress(&info);
    Picture picture = {int(info.output_width), int(info.output_height), 3, 8, {}};
    Bytes row(size_t(picture.width) * 3);
    while (info.output_scanline < info.output_height) {
        JSAMPROW pointer = row.data();
        jpeg_read_scanlines(&info, &pointer, 1);
        picture.samples.insert(picture.samples.end(), row.begin(), row.end());
    }
    jpeg_destroy_decompress(&info);
    return picture;
}

Picture readPng(const Bytes& bytes)
{
    struct Reader {
        const Bytes& bytes;
        size_t at = 0;
    } reader{bytes};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_read_fn(png, &reader, [](png_structp p, png_bytep data, size_t size) {
        auto& from = *static_cast<Reader*>(png_get_io_ptr(p));
        std::memcpy(data, from.bytes.data() + from.at, size);
        from.at += size;
    });
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    Picture picture = {int(png_get_image_width(png, info)),
                       int(png_get_image_height(png, info)),
                       png_get_channels(png, info),
                       png_get_bit_depth(png, info),
                       {}};
    for (int y = 0; y < picture.height; ++y) {
        const png_bytep row = png_get_rows(png, info)[y];
        for (int i = 0; i < picture.width * picture.channels; ++i)
            picture.samples.push_back(
                picture.bits == 16 ? uint16_t(row[2 * i] << 8 | row[2 * i + 1]) : uint16_t(row[i]));
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return picture;
}

Picture readTiff(int file)
{
    lseek(file, 0, SEEK_SET);
    TIFF* tiff = TIFFFdOpen(dup(file), "written", "r");
    if (tiff == nullptr)
        return {};
    uint32_t width = 0, height = 0;
    uint16_t channels = 0, bits = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    Picture picture = {int(width), int(height), channels, bits, {}};
    std::vector<uint16_t> row(size_t(TIFFScanlineSize(tiff)) / 2 + 1);
    for (uint32_t y = 0; y < height; ++y) {
        TIFFReadScanline(tiff, row.data(), y, 0);
        const auto* bytes = reinterpret_cast<const uint8_t*>(row.data());
        for (uint32_t i = 0; i < width * channels; ++i)
            picture.samples.push_back(bits == 16 ? row[i] : bytes[i]);
    }
    TIFFClose(tiff);
    return picture;
}

Bytes heifBlock(const heif_image_handle* handle, const char* type)
{
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(handle, type, &id, 1) != 1)
        return {};
    Bytes bytes(heif_image_handle_get_metadata_size(handle, id));
    heif_image_handle_get_metadata(handle, id, bytes.data());
    return bytes;
}

ReadBack readHeif(const Bytes& bytes)
{
    ReadBack result;
    heif_context* context = heif_context_alloc();
    heif_image_handle* handle = nullptr;
    heif_image* image = nullptr;
    heif_context_read_from_memory(context, bytes.data(), bytes.size(), nullptr);
    heif_context_get_primary_image_handle(context, &handle);
    const bool alpha = heif_image_handle_has_alpha_channel(handle) != 0;
    heif_decode_image(handle, &image, heif_colorspace_RGB,
                      alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, nullptr);
    int stride = 0;
    const uint8_t* plane = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    Picture& picture = result.picture;
    picture = {heif_image_get_primary_width(image),
               heif_image_get_primary_height(image),
               alpha ? 4 : 3,
               8,
               {}};
    for (int y = 0; y < picture.height; ++y)
        picture.samples.insert(picture.samples.end(), plane + y * stride,
                               plane + y * stride + picture.width * picture.channels);
    result.profile.resize(heif_image_handle_get_raw_color_profile_size(handle));
    heif_image_handle_get_raw_color_profile(handle, result.profile.data());
    // The block begins with the offset of the TIFF stream after it.
    Bytes exif = heifBlock(handle, "Exif");
    if (exif.size() > 4)
        result.properties.exif.assign(exif.begin() + 4, exif.end());
    const Bytes xmp = heifBlock(handle, "mime");
    result.properties.xmp.assign(xmp.begin(), xmp.end());
    heif_image_release(image);
    heif_image_handle_release(handle);
    heif_context_free(context);
    return result;
}

ReadBack readBack(EncodedFormat format, const Bytes& bytes, int file)
{
    if (format == EncodedFormat::Heif)
        return readHeif(bytes);
    ReadBack result;
    result.picture = format == EncodedFormat::Jpeg ? readJpeg(bytes)
        : format == EncodedFormat::Png             ? readPng(bytes)
                                                   : readTiff(file);
    auto image = Exiv2::ImageFactory::open(bytes.data(), long(bytes.size()));
    image->readMetadata();
    if (!image->exifData().empty())
        result.properties.exif = encodedExif({image->exifData(), Exiv2::littleEndian}, {});
    result.properties.xmp = image->xmpPacket();
    if (!image->iptcData().empty())
        result.properties.iptc = Bytes(1);
    if (image->iccProfileDefined())
        result.profile.assign(image->iccProfile()->pData_,
                              image->iccProfile()->pData_ + image->iccProfile()->size_);
    return result;
}

struct Case {
    const char* name;
    EncodedFormat format;
    int channels;
    int bits;
    int tolerance; // levels
    bool iptc;
};

class EveryFormat : public testing::TestWithParam<Case> {
protected:
    void SetUp() override
    {
        MemoryByteSink sink;
        if (GetParam().format == EncodedFormat::Heif
            && !makePictureEncoder({.format = EncodedFormat::Heif, .width = 8, .height = 8}, sink))
            GTEST_SKIP() << "this build writes no HEIC";
        m_file = std::tmpfile();
    }
    void TearDown() override
    {
        if (m_file != nullptr)
            std::fclose(m_file);
    }

    ReadBack written(const Picture& picture, const ImageProperties& properties)
    {
        EncodeSettings settings;
        settings.format = GetParam().format;
        settings.properties = properties;
        EXPECT_EQ(ftruncate(fileno(m_file), 0), 0);
        FileByteSink sink(fileno(m_file));
        const Result<void> result = encode(picture, settings, sink);
        EXPECT_TRUE(result) << result.error().message;
        Bytes bytes(sink.size());
        sink.seek(0);
        EXPECT_EQ(sink.read(bytes.data(), bytes.size()), bytes.size());
        return readBack(settings.format, bytes, fileno(m_file));
    }

    std::FILE* m_file = nullptr;
};

TEST_P(EveryFormat, KeepsPixelsProfileAndMetadata)
{
    const Picture picture = testPicture(83, 61, GetParam().channels, GetParam().bits);
    const ReadBack read = written(picture, {testExif({}), testXmp(true), testIptc()});
    EXPECT_EQ(read.picture.width, picture.width);
    EXPECT_EQ(read.picture.channels, picture.channels);
    EXPECT_EQ(read.picture.bits, picture.bits);
    ASSERT_EQ(read.picture.samples.size(), picture.samples.size());
    int worst = 0;
    for (size_t i = 0; i < picture.samples.size(); ++i)
        worst = std::max(worst, std::abs(picture.samples[i] - read.picture.samples[i]));
    EXPECT_LE(worst, GetParam().tolerance);
    EXPECT_EQ(read.profile, srgbProfile());

    std::optional<ExifBlock> exif = parsedExif(read.properties.exif);
    ASSERT_TRUE(exif);
    EXPECT_EQ(exif->data["Exif.Image.Model"].toString(), "Box");
    EXPECT_EQ(exif->data["Exif.Image.Orientation"].toString(), "1");
    EXPECT_EQ(exif->data["Exif.Photo.ExposureTime"].toString(), "1/8000");
    EXPECT_EQ(exif->data["Exif.Photo.PixelXDimension"].toString(), "83");
    EXPECT_EQ(exif->data["Exif.GPSInfo.GPSLatitudeRef"].toString(), "N");
    EXPECT_TRUE(spellsPlace(read.properties.exif));
    EXPECT_NE(read.properties.xmp.find("52,30.5N"), std::string::npos);
    EXPECT_EQ(!read.properties.iptc.empty(), GetParam().iptc);
}

TEST_P(EveryFormat, WritesNoPlaceAndNoMetadataWhenAsked)
{
    const Picture picture = testPicture(16, 16, GetParam().channels, GetParam().bits);
    const ReadBack still =
        written(picture, withoutLocation({testExif({}), testXmp(true), testIptc()}));
    EXPECT_FALSE(spellsPlace(still.properties.exif));
    EXPECT_TRUE(parsedExif(still.properties.exif));
    EXPECT_EQ(still.properties.xmp.find("GPSLatitude"), std::string::npos);
    EXPECT_NE(still.properties.xmp.find("Rating"), std::string::npos);

    const ReadBack bare = written(picture, {});
    // A TIFF still says how it keeps its own pixels.
    const std::optional<ExifBlock> exif = parsedExif(bare.properties.exif);
    for (const Exiv2::Exifdatum& entry : exif ? exif->data : Exiv2::ExifData())
        EXPECT_TRUE(entry.groupName() == "Image" && entry.tag() != 0x010f && entry.tag() != 0x0110)
            << entry.key();
    EXPECT_TRUE(bare.properties.xmp.empty());
    EXPECT_TRUE(bare.properties.iptc.empty());
    EXPECT_EQ(bare.profile, srgbProfile());
}

// A disk that fills up after any number of bytes gives an error, from the rows or from the end.
TEST_P(EveryFormat, ReportsASinkThatFails)
{
    class FullSink final : public ByteSink {
    public:
        explicit FullSink(size_t room)
            : m_room(room)
        {
        }
        bool write(const void* data, size_t size) override
        {
            return m_memory.position() + size <= m_room && m_memory.write(data, size);
        }
        bool seek(uint64_t position) override { return m_memory.seek(position); }
        uint64_t position() const override { return m_memory.position(); }
        uint64_t size() const override { return m_memory.size(); }
        size_t read(void* data, size_t size) override { return m_memory.read(data, size); }
        std::string failure() const override { return "full"; }

    private:
        MemoryByteSink m_memory;
        size_t m_room;
    };

    const Picture picture = testPicture(40, 40, GetParam().channels, GetParam().bits);
    const EncodeSettings settings = {.format = GetParam().format,
                                     .properties = {testExif({}), testXmp(true), testIptc()}};
    MemoryByteSink whole;
    ASSERT_TRUE(encode(picture, settings, whole));
    for (const size_t room : {size_t(0), size_t(4), whole.size() / 2, size_t(whole.size()) - 1}) {
        FullSink sink(room);
        const Result<void> result = encode(picture, settings, sink);
        ASSERT_FALSE(result) << room;
        EXPECT_EQ(result.error().message, "full");
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, EveryFormat,
                         testing::Values(Case{"Jpeg", EncodedFormat::Jpeg, 3, 8, 8, true},
                                         Case{"Png8", EncodedFormat::Png, 3, 8, 0, false},
                                         Case{"Png16Alpha", EncodedFormat::Png, 4, 16, 0, false},
                                         Case{"Tiff8Alpha", EncodedFormat::Tiff, 4, 8, 0, true},
                                         Case{"Tiff16", EncodedFormat::Tiff, 3, 16, 0, true},
                                         Case{"Heif", EncodedFormat::Heif, 3, 8, 8, false},
                                         Case{"HeifAlpha", EncodedFormat::Heif, 4, 8, 8, false}),
                         [](const testing::TestParamInfo<Case>& one) { return one.param.name; });

TEST(PictureEncoder, DeepFormatsKeepAll65536Levels)
{
    const Picture picture = testPicture(256, 256, 3, 16, true);
    MemoryByteSink png;
    ASSERT_TRUE(encode(picture, {.format = EncodedFormat::Png}, png));
    EXPECT_TRUE(readPng(png.take()).samples == picture.samples);
    std::FILE* file = std::tmpfile();
    FileByteSink tiff(fileno(file));
    ASSERT_TRUE(encode(picture, {.format = EncodedFormat::Tiff}, tiff));
    EXPECT_TRUE(readTiff(fileno(file)).samples == picture.samples);
    std::fclose(file);
}

TEST(PictureEncoder, RefusesWhatAFormatCannotHold)
{
    struct Refusal {
        EncodeSettings settings;
        const char* message;
    };
    const Refusal refusals[] = {
        {{.width = 0, .height = 9}, "The picture is empty."},
        {{.width = 65501, .height = 9}, "A JPEG file holds at most 65,500 pixels a side."},
        {{.width = 9, .height = 9, .bits = 16}, "JPEG files hold 8 bits a channel, not 16."},
        {{.format = EncodedFormat::Heif, .width = 9, .height = 16385},
         "A HEIC file holds at most 16,384 pixels a side."},
        {{.format = EncodedFormat::Heif, .width = 9, .height = 9, .bits = 16},
         "HEIC files hold 8 bits a channel, not 16."},
        {{.format = EncodedFormat::Png, .width = 9, .height = 9, .bits = 12},
         "A picture is written with 8 or 16 bits a channel."},
    };
    for (const Refusal& refusal : refusals) {
        MemoryByteSink sink;
        const auto encoder = makePictureEncoder(refusal.settings, sink);
        ASSERT_FALSE(encoder);
        EXPECT_EQ(encoder.error().message, refusal.message);
        EXPECT_EQ(sink.size(), 0u);
    }
}

// Past the checks of makePictureEncoder, so that it is the library that refuses.
TEST(PictureEncoder, SaysWhatCouldNotBeEncodedInWordsOfItsOwn)
{
    MemoryByteSink sink;
    EXPECT_EQ(makeJpegEncoder({.width = 65501, .height = 9}, sink).error().message,
              "The image couldn't be encoded as JPEG.");
    EXPECT_EQ(makePngEncoder({.format = EncodedFormat::Png, .width = 0, .height = 9}, sink)
                  .error()
                  .message,
              "The image couldn't be encoded as PNG.");
}

// The small file still lies in the sink's buffer after the last row: finish() must push it out.
TEST(PictureEncoder, SaysThatTheDiskIsFull)
{
    const int device = open("/dev/full", O_RDWR);
    ASSERT_GE(device, 0);
    FileByteSink sink(device);
    const Result<void> result =
        encode(testPicture(8, 8, 3, 8), {.format = EncodedFormat::Png}, sink);
    close(device);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().message, "There is not enough free space on the disk.");
}

TEST(PictureEncoder, CountsTheRows)
{
    const uint8_t row[24] = {};
    for (const EncodedFormat format :
         {EncodedFormat::Jpeg, EncodedFormat::Png, EncodedFormat::Tiff}) {
        MemoryByteSink sink;
        const EncodeSettings settings = {.format = format, .width = 8, .height = 2};
        auto missing = makePictureEncoder(settings, sink);
        ASSERT_TRUE((*missing)->writeRows(row, 1, 24));
        EXPECT_FALSE((*missing)->finish());
        auto more = makePictureEncoder(settings, sink);
        EXPECT_FALSE((*more)->writeRows(row, 3, 0));
    }
}

// What does not fit a marker segment is left out or cut down; the file stays whole.
TEST(PictureEncoder, JpegSurvivesMetadataThatIsTooLarge)
{
    std::string xmp = testXmp(false);
    xmp.insert(xmp.find("xmp:Rating"), "xmp:Label='" + std::string(70000, 'x') + "' ");
    ImageProperties properties = {testExif({}), xmp, {}};
    MemoryByteSink sink;
    ASSERT_TRUE(encode(testPicture(8, 8, 3, 8), {.properties = properties}, sink));
    const Bytes bytes = sink.take();
    const ReadBack read = readBack(EncodedFormat::Jpeg, bytes, -1);
    EXPECT_TRUE(read.properties.xmp.empty());
    EXPECT_TRUE(parsedExif(read.properties.exif));
    EXPECT_EQ(read.profile, srgbProfile());
}

} // namespace

} // namespace orvane
