#include "TestPictures.h"

#include "HalfFloat.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

namespace orvane::test {

namespace {

uint16_t halfOf(double value)
{
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent); // 0.5..1
    if (value == 0 || exponent < -13)
        return 0;
    return uint16_t((exponent + 14) << 10 | (int(std::lround(fraction * 2048)) - 1024));
}

double storedSample(const Bitmap& bitmap, int x, int y, int channel)
{
    const size_t index = size_t(x) * size_t(bitmap.channels()) + size_t(channel);
    const uint8_t* row = bitmap.row(y);
    switch (bitmap.type()) {
    case SampleType::U8:
        return row[index];
    case SampleType::U16:
        return reinterpret_cast<const uint16_t*>(row)[index];
    case SampleType::F16:
        return double(floatFromHalf(reinterpret_cast<const uint16_t*>(row)[index]));
    case SampleType::F32:
        return double(reinterpret_cast<const float*>(row)[index]);
    }
    return 0;
}

} // namespace

std::array<double, 4> linearPixel(const Bitmap& bitmap, int x, int y)
{
    const bool isGrey = bitmap.channels() < 3;
    const bool isInteger = bitmap.type() == SampleType::U8 || bitmap.type() == SampleType::U16;
    std::array<double, 3> rgb{};
    for (size_t c = 0; c < 3; ++c) {
        const double stored = storedSample(bitmap, x, y, isGrey ? 0 : int(c));
        const auto& given = bitmap.conversion.curves[isGrey ? 0 : c];
        rgb[c] = !isInteger ? stored
            : given         ? double(given->at(size_t(stored)))
                            : double(srgbDecodingTable(bitmap.type())->at(size_t(stored)));
    }
    std::array<double, 4> pixel{rgb[0], rgb[1], rgb[2], 1};
    if (const auto& m = bitmap.conversion.matrix)
        for (size_t c = 0; c < 3; ++c)
            pixel[c] = double((*m)[c * 3]) * rgb[0] + double((*m)[c * 3 + 1]) * rgb[1]
                + double((*m)[c * 3 + 2]) * rgb[2];
    if (bitmap.hasAlpha()) {
        const double highest = bitmap.type() == SampleType::U8 ? 255
            : bitmap.type() == SampleType::U16                 ? 65535
                                                               : 1;
        pixel[3] = storedSample(bitmap, x, y, bitmap.channels() - 1) / highest;
    }
    return pixel;
}

double sampleOf(int channel, int x, int y)
{
    switch (channel) {
    case 0:
        return double(x) / (pictureWidth - 1);
    case 1:
        return double(y) / (pictureHeight - 1);
    case 2:
        return 0.25;
    default:
        return 1 - double(x) / pictureWidth;
    }
}

uint32_t sampleOf(int channel, int x, int y, uint32_t highest)
{
    return uint32_t(std::lround(sampleOf(channel, x, y) * highest));
}

template <class Sample> static std::vector<Sample> interleaved(int channels, uint32_t highest)
{
    std::vector<Sample> samples;
    for (int y = 0; y < pictureHeight; ++y)
        for (int x = 0; x < pictureWidth; ++x)
            for (int c = 0; c < channels; ++c)
                samples.push_back(Sample(sampleOf(channels == 2 && c == 1 ? 3 : c, x, y, highest)));
    return samples;
}

std::vector<uint8_t> samples8(int channels)
{
    return interleaved<uint8_t>(channels, 255);
}

std::vector<uint16_t> samples16(int channels, uint32_t highest)
{
    return interleaved<uint16_t>(channels, highest);
}

static File withPrefix(const std::string& prefix, const uint8_t* data, size_t size)
{
    File block(prefix.begin(), prefix.end());
    block.insert(block.end(), data, data + size);
    return block;
}

static void writeJpegMarkers(jpeg_compress_struct* info, const JpegOptions& options)
{
    const auto marker = [&](int number, const File& block) {
        jpeg_write_marker(info, number, block.data(), unsigned(block.size()));
    };
    if (!options.exif.empty())
        marker(0xe1,
               withPrefix(std::string("Exif\0\0", 6), options.exif.data(), options.exif.size()));
    if (!options.xmp.empty())
        marker(0xe1,
               withPrefix(std::string("http://ns.adobe.com/xap/1.0/\0", 29),
                          reinterpret_cast<const uint8_t*>(options.xmp.data()),
                          options.xmp.size()));
    const size_t chunks = (options.icc.size() + 99) / 100;
    for (size_t i = 0; i < chunks; ++i) {
        std::string prefix("ICC_PROFILE\0", 12);
        prefix += char(i + 1);
        prefix += char(chunks);
        marker(0xe2,
               withPrefix(prefix, options.icc.data() + i * 100,
                          std::min<size_t>(100, options.icc.size() - i * 100)));
    }
    if (!options.iptc.empty()) {
        // A resource of another number ahead of it, with a name and an odd size.
        std::string prefix("Photoshop 3.0\0"
                           "8BIM\x03\xed\x03"
                           "abc\0\0\0\x01Z\0"
                           "8BIM\x04\x04\0\0\0\0\0",
                           14 + 6 + 4 + 4 + 2 + 11);
        prefix += char(options.iptc.size());
        marker(0xed, withPrefix(prefix, options.iptc.data(), options.iptc.size()));
    }
}

File jpeg(const JpegOptions& options, int width, int height)
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = JDIMENSION(width);
    info.image_height = JDIMENSION(height);
    info.input_components = options.channels;
    info.in_color_space = options.channels == 1 ? JCS_GRAYSCALE
        : options.channels == 3                 ? JCS_RGB
                                                : JCS_CMYK;
    jpeg_set_defaults(&info);
    if (options.channels == 4 && !options.isInverted)
        info.write_Adobe_marker = FALSE;
    jpeg_set_quality(&info, options.quality, TRUE);
    info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    if (options.isProgressive)
        jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    writeJpegMarkers(&info, options);
    std::vector<uint8_t> row(size_t(width) * size_t(options.channels));
    for (int y = 0; y < height; ++y) {
        for (size_t i = 0; i < row.size(); ++i) {
            const int x = int(i) / options.channels % pictureWidth;
            const int c = int(i) % options.channels;
            const uint32_t value = sampleOf(c, x, y % pictureHeight, 255);
            row[i] = uint8_t(options.isInverted ? 255 - value : value);
        }
        uint8_t* rows[] = {row.data()};
        jpeg_write_scanlines(&info, rows, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const File file(data, data + size);
    std::free(data);
    return file;
}

static std::vector<uint8_t> pngRow(const PngOptions& options, int y)
{
    const int channels = options.colorType == PNG_COLOR_TYPE_GRAY ? 1
        : options.colorType == PNG_COLOR_TYPE_PALETTE             ? 1
        : options.colorType == PNG_COLOR_TYPE_GRAY_ALPHA          ? 2
        : options.colorType == PNG_COLOR_TYPE_RGB                 ? 3
                                                                  : 4;
    const uint32_t highest = (1u << options.depth) - 1;
    std::vector<uint8_t> row;
    for (int x = 0; x < pictureWidth; ++x) {
        for (int c = 0; c < channels; ++c) {
            const uint32_t value = options.colorType == PNG_COLOR_TYPE_PALETTE
                ? uint32_t(x) % (highest + 1)
                : sampleOf(channels == 2 && c == 1 ? 3 : c, x, y, highest);
            if (options.depth == 16)
                row.push_back(uint8_t(value >> 8));
            row.push_back(uint8_t(value));
        }
    }
    return row;
}

File png(const PngOptions& options)
{
    File file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp writer, png_bytep data, size_t size) {
            auto& target = *static_cast<File*>(png_get_io_ptr(writer));
            target.insert(target.end(), data, data + size);
        },
        nullptr);
    png_set_IHDR(png, info, pictureWidth, pictureHeight, options.depth, options.colorType,
                 options.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
    if (options.describe)
        options.describe(png, info);
    png_write_info(png, info);
    if (options.depth < 8)
        png_set_packing(png);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass)
        for (int y = 0; y < pictureHeight; ++y)
            png_write_row(png, pngRow(options, y).data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

void appendNumber(File& file, size_t number)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        file.push_back(uint8_t(number >> shift));
}

File pngChunk(const std::string& name, const File& data)
{
    File chunk;
    appendNumber(chunk, data.size());
    chunk.insert(chunk.end(), name.begin(), name.end());
    chunk.insert(chunk.end(), data.begin(), data.end());
    appendNumber(chunk, crc32(0, chunk.data() + 4, uInt(chunk.size() - 4)));
    return chunk;
}

File deflated(const File& data)
{
    File target(compressBound(data.size()));
    uLongf size = target.size();
    compress2(target.data(), &size, data.data(), data.size(), 9);
    target.resize(size);
    return target;
}

File pngWith(File file, const std::vector<File>& chunks)
{
    constexpr ptrdiff_t headerEnd = 8 + 25;
    File more;
    for (const File& chunk : chunks)
        more.insert(more.end(), chunk.begin(), chunk.end());
    file.insert(file.begin() + headerEnd, more.begin(), more.end());
    return file;
}

static void appendTiffSample(std::vector<uint8_t>& row, const TiffOptions& options, int c, int x,
                             int y)
{
    const bool isAlpha = options.extraSample >= 0 && c == options.samples - 1;
    const double value = options.sample ? options.sample(c, x, y) : sampleOf(isAlpha ? 3 : c, x, y);
    const auto append = [&row](const auto& number) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(&number);
        row.insert(row.end(), bytes, bytes + sizeof number);
    };
    if (options.sampleFormat == SAMPLEFORMAT_IEEEFP) {
        if (options.bits == 16)
            append(halfOf(value));
        else if (options.bits == 32)
            append(float(value));
        else
            append(value);
    } else if (options.bits == 8)
        append(uint8_t(options.sample ? std::lround(value) : std::lround(value * 255)));
    else if (options.bits == 16)
        append(uint16_t(options.sample ? std::lround(value) : std::lround(value * 65535)));
    else
        append(uint32_t(std::llround(value * 4294967295.0)));
}

static void packBits(std::vector<uint8_t>& row, const TiffOptions& options, int y)
{
    const uint32_t highest = (1u << options.bits) - 1;
    uint32_t gathered = 0;
    int count = 0;
    for (int x = 0; x < pictureWidth; ++x) {
        gathered = gathered << options.bits | sampleOf(0, x, y, highest);
        for (count += options.bits; count >= 8; count -= 8)
            row.push_back(uint8_t(gathered >> (count - 8)));
    }
    if (count > 0)
        row.push_back(uint8_t(gathered << (8 - count)));
}

/// The samples from firstX on of one row, all channels or one.
static std::vector<uint8_t> tiffRow(const TiffOptions& options, int y, int plane, int firstX,
                                    int endX)
{
    std::vector<uint8_t> row;
    if (options.bits < 8 || options.bits == 12) {
        packBits(row, options, y);
        return row;
    }
    for (int x = firstX; x < endX; ++x)
        for (int c = 0; c < options.samples; ++c)
            if (!options.isPlanar || c == plane)
                appendTiffSample(row, options, c, std::min(x, pictureWidth - 1),
                                 std::min(y, pictureHeight - 1));
    return row;
}

static void writeTiles(TIFF* tiff, const TiffOptions& options)
{
    constexpr int side = 16;
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, side);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, side);
    for (int plane = 0; plane < (options.isPlanar ? options.samples : 1); ++plane)
        for (int x = 0; x < pictureWidth; x += side) {
            std::vector<uint8_t> tile;
            for (int y = 0; y < side; ++y) {
                const auto row = tiffRow(options, y, plane, x, x + side);
                tile.insert(tile.end(), row.begin(), row.end());
            }
            TIFFWriteTile(tiff, tile.data(), uint32_t(x), 0, 0, uint16_t(plane));
        }
}

File tiff(const TiffOptions& options)
{
    const int memory = memfd_create("tiff", 0);
    TIFF* tiff = TIFFFdOpen(dup(memory), "tiff", options.mode);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, pictureWidth);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, pictureHeight);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, options.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, options.samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, options.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, options.compression);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, options.sampleFormat);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
                 options.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if (options.compression == COMPRESSION_JPEG)
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    if (options.extraSample >= 0) {
        const uint16_t kind = uint16_t(options.extraSample);
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    if (options.describe)
        options.describe(tiff);
    if (options.isTiled)
        writeTiles(tiff, options);
    else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, options.compression == COMPRESSION_JPEG ? 16 : 5);
        for (int plane = 0; plane < (options.isPlanar ? options.samples : 1); ++plane)
            for (int y = 0; y < pictureHeight; ++y)
                TIFFWriteScanline(tiff, tiffRow(options, y, plane, 0, pictureWidth).data(),
                                  uint32_t(y), uint16_t(plane));
    }
    TIFFClose(tiff);
    File file(size_t(lseek(memory, 0, SEEK_END)));
    const ssize_t count = pread(memory, file.data(), file.size(), 0);
    file.resize(size_t(std::max<ssize_t>(count, 0)));
    close(memory);
    return file;
}

File webp(bool hasAlpha, const File& icc, const File& exif, const std::string& xmp)
{
    const auto samples = samples8(hasAlpha ? 4 : 3);
    uint8_t* coded = nullptr;
    const size_t size = hasAlpha ? WebPEncodeLosslessRGBA(samples.data(), pictureWidth,
                                                          pictureHeight, pictureWidth * 4, &coded)
                                 : WebPEncodeLosslessRGB(samples.data(), pictureWidth,
                                                         pictureHeight, pictureWidth * 3, &coded);
    const WebPData picture = {coded, size};
    WebPMux* mux = WebPMuxCreate(&picture, 1);
    const auto chunk = [&](const char* name, const uint8_t* data, size_t bytes) {
        const WebPData content = {data, bytes};
        if (bytes > 0)
            WebPMuxSetChunk(mux, name, &content, 1);
    };
    chunk("ICCP", icc.data(), icc.size());
    chunk("EXIF", exif.data(), exif.size());
    chunk("XMP ", reinterpret_cast<const uint8_t*>(xmp.data()), xmp.size());
    WebPData assembled;
    WebPMuxAssemble(mux, &assembled);
    const File file(assembled.bytes, assembled.bytes + assembled.size);
    WebPDataClear(&assembled);
    WebPMuxDelete(mux);
    WebPFree(coded);
    return file;
}

} // namespace orvane::test
