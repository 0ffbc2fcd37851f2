#include "ExifReader.h"
#include "FormatDecoders.h"
#include "TiffSamples.h"

#include <algorithm>
#include <cstring>

#include <tiffio.h>

namespace orvane {

namespace {

constexpr size_t mostStripBytes = size_t(1) << 30;
constexpr int mostSamples = 16;
/// Tiles of up to this are let pass, however small the picture.
constexpr uint64_t usualTileBytes = uint64_t(8) << 20;

constexpr const char* largePieces =
    "This TIFF file stores its picture in pieces of more than 1 GB, which Orvane cannot read.";

struct Source {
    Bytes bytes;
    uint64_t position = 0;
    bool ranOut = false;
};

tmsize_t onRead(thandle_t handle, void* target, tmsize_t count)
{
    Source& source = *static_cast<Source*>(handle);
    const uint64_t left =
        source.position < source.bytes.size() ? source.bytes.size() - source.position : 0;
    const size_t taken = size_t(std::min<uint64_t>(left, uint64_t(std::max<tmsize_t>(count, 0))));
    source.ranOut = source.ranOut || tmsize_t(taken) < count;
    if (taken > 0)
        std::memcpy(target, source.bytes.data() + source.position, taken);
    source.position += taken;
    return tmsize_t(taken);
}

tmsize_t onWrite(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t onSeek(thandle_t handle, toff_t offset, int whence)
{
    Source& source = *static_cast<Source*>(handle);
    source.position = whence == SEEK_CUR ? source.position + offset
        : whence == SEEK_END             ? source.bytes.size() + offset
                                         : offset;
    return source.position;
}

int onClose(thandle_t)
{
    return 0;
}

toff_t onSize(thandle_t handle)
{
    return static_cast<Source*>(handle)->bytes.size();
}

int quiet(TIFF*, void*, const char*, const char*, va_list)
{
    return 1; // handled: nothing goes to the standard error
}

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, TiffCloser>;

Tiff openTiff(Source& source)
{
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (!options)
        return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options, quiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, quiet, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, tmsize_t(mostStripBytes));
    // "m": no mapping, so that every read past the end is seen.
    Tiff tiff(TIFFClientOpenExt("picture", "rm", &source, onRead, onWrite, onSeek, onClose, onSize,
                                nullptr, nullptr, options));
    TIFFOpenOptionsFree(options);
    return tiff;
}

template <class T> T field(TIFF* tiff, uint32_t tag, T fallback)
{
    T value = fallback;
    return TIFFGetFieldDefaulted(tiff, tag, &value) == 1 ? value : fallback;
}

/// The most pixels that a byte of the coding can stand for.
double mostPixelsPerByte(uint16_t compression, double bitsPerPixel)
{
    const double ratio = compression == COMPRESSION_NONE ? 1
        : compression == COMPRESSION_PACKBITS            ? 64
        : compression == COMPRESSION_JPEG                ? 1024
        : compression == COMPRESSION_LZW ? 2800 // 12 bits for a run of 4096 bytes at best
        : compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE ? 1032
                                                                                         : 20000;
    return ratio * 8 / bitsPerPixel;
}

void readPalette(TIFF* tiff, TiffLayout& layout)
{
    uint16_t* columns[3] = {};
    if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, &columns[0], &columns[1], &columns[2]))
        return;
    const size_t entries = size_t(1) << layout.bits;
    for (const uint16_t* column : columns)
        layout.palette.insert(layout.palette.end(), column, column + entries);
    // Old writers put 8-bit values here.
    if (std::all_of(layout.palette.begin(), layout.palette.end(),
                    [](uint16_t v) { return v < 256; }))
        for (uint16_t& value : layout.palette)
            value = uint16_t(value * 257);
}

/// Alpha is the first extra sample that is said to be it. True when it multiplies the colours.
bool findAlpha(TIFF* tiff, TiffLayout& layout)
{
    uint16_t count = 0;
    uint16_t* kinds = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) || layout.colors == 4)
        return false;
    for (int i = 0; i < count && layout.colors + i < layout.samples; ++i) {
        if (kinds[i] != EXTRASAMPLE_ASSOCALPHA && kinds[i] != EXTRASAMPLE_UNASSALPHA)
            continue;
        layout.alphaSample = layout.colors + i;
        return kinds[i] == EXTRASAMPLE_ASSOCALPHA;
    }
    return false;
}

struct Description {
    TiffLayout layout;
    bool isAssociated = false;
    bool needsFallback = false; ///< left to libtiff's own conversion to 8-bit RGBA
    bool isSupported = true;
};

void describeColors(TIFF* tiff, Description& description)
{
    TiffLayout& layout = description.layout;
    switch (field<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK)) {
    case PHOTOMETRIC_MINISWHITE:
        layout.isInverted = true;
        break;
    case PHOTOMETRIC_MINISBLACK:
        break;
    case PHOTOMETRIC_RGB:
        layout.colors = 3;
        break;
    case PHOTOMETRIC_PALETTE:
        if (!layout.isFloat && layout.bits <= 8)
            readPalette(tiff, layout);
        description.isSupported = !layout.palette.empty();
        break;
    case PHOTOMETRIC_SEPARATED:
        layout.colors = 4;
        description.isSupported =
            !layout.isFloat && field<uint16_t>(tiff, TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK;
        break;
    case PHOTOMETRIC_YCBCR:
        layout.colors = 3;
        // The JPEG codec converts as it decodes; for the others libtiff does it at 8 bits.
        if (field<uint16_t>(tiff, TIFFTAG_COMPRESSION, 1) == COMPRESSION_JPEG)
            TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        else
            description.needsFallback = true;
        break;
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
        layout.colors = 3;
        layout.lab = field<uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_CIELAB);
        description.isSupported = !layout.isFloat && (layout.bits == 8 || layout.bits == 16);
        break;
    default:
        description.needsFallback = true;
    }
}

Description describe(TIFF* tiff)
{
    Description description;
    TiffLayout& layout = description.layout;
    layout.bits = field<uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    layout.samples = field<uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.isPlanar = layout.samples > 1
        && field<uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG)
            == PLANARCONFIG_SEPARATE;
    const uint16_t format = field<uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    layout.isFloat = format == SAMPLEFORMAT_IEEEFP;
    describeColors(tiff, description);
    const bool knownBits = layout.isFloat
        ? layout.bits == 16 || layout.bits == 32 || layout.bits == 64
        : (layout.bits >= 1 && layout.bits <= 16) || layout.bits == 32;
    const bool knownFormat = layout.isFloat || layout.lab != 0 || format == SAMPLEFORMAT_UINT
        || format == SAMPLEFORMAT_VOID;
    if (!description.needsFallback)
        description.isSupported = description.isSupported && knownBits && knownFormat
            && layout.samples >= layout.colors && layout.samples <= mostSamples;
    description.isAssociated = findAlpha(tiff, layout);
    return description;
}

uint32_t rowsPerStrip(TIFF* tiff, const TiffLayout& layout)
{
    return std::clamp(field<uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, UINT32_MAX), uint32_t(1),
                      uint32_t(layout.height));
}

/// Whether a strip or a tile is of a size to read, asked before anything is allocated for it.
Result<void> checkPieces(TIFF* tiff, const TiffLayout& layout)
{
    if (!TIFFIsTiled(tiff)) {
        const uint64_t rowBytes = layout.rowBytes(layout.width);
        if (TIFFScanlineSize64(tiff) != rowBytes)
            return Error{sentence::damaged};
        if (rowBytes * rowsPerStrip(tiff, layout) > mostStripBytes)
            return Error{largePieces};
        return {};
    }
    const uint64_t width = field<uint32_t>(tiff, TIFFTAG_TILEWIDTH, 0);
    const uint64_t height = field<uint32_t>(tiff, TIFFTAG_TILELENGTH, 0);
    if (width == 0 || height == 0 || width > 65536 || height > 65536)
        return Error{sentence::damaged};
    const uint64_t tileBytes = layout.rowBytes(int(width)) * height;
    if (TIFFTileSize64(tiff) != tileBytes)
        return Error{sentence::damaged};
    const uint64_t pictureBytes = layout.rowBytes(layout.width) * uint64_t(layout.height);
    if (tileBytes > usualTileBytes && tileBytes / 4 > pictureBytes)
        return Error{"This TIFF file's tiles are far larger than its picture, which Orvane does "
                     "not read."};
    if (tileBytes > mostStripBytes)
        return Error{largePieces};
    return {};
}

bool readStrips(TIFF* tiff, const TiffLayout& layout, Bitmap& bitmap)
{
    const uint32_t stripRows = rowsPerStrip(tiff, layout);
    const size_t rowBytes = layout.rowBytes(layout.width);
    const int planes = layout.isPlanar ? layout.samples : 1;
    std::vector<uint8_t> strip(layout.isPlainCopy() ? 0 : rowBytes * stripRows);
    for (int plane = 0; plane < planes; ++plane) {
        for (uint32_t y = 0; y < uint32_t(layout.height); y += stripRows) {
            const uint32_t rows = std::min(stripRows, uint32_t(layout.height) - y);
            uint8_t* const target = strip.empty() ? bitmap.row(int(y)) : strip.data();
            const tmsize_t wanted = tmsize_t(rowBytes * rows);
            const uint32_t number = TIFFComputeStrip(tiff, y, uint16_t(plane));
            if (TIFFReadEncodedStrip(tiff, number, target, wanted) != wanted)
                return false;
            for (uint32_t row = 0; !strip.empty() && row < rows; ++row)
                placeTiffSamples(layout, target + rowBytes * row, bitmap, 0, int(y + row),
                                 layout.width, plane);
        }
    }
    return true;
}

bool readTiles(TIFF* tiff, const TiffLayout& layout, Bitmap& bitmap)
{
    const uint32_t tileWidth = field<uint32_t>(tiff, TIFFTAG_TILEWIDTH, 0);
    const uint32_t tileHeight = field<uint32_t>(tiff, TIFFTAG_TILELENGTH, 0);
    const size_t rowBytes = layout.rowBytes(int(tileWidth));
    const size_t tileBytes = rowBytes * tileHeight;
    const int planes = layout.isPlanar ? layout.samples : 1;
    std::vector<uint8_t> tile(tileBytes);
    for (int plane = 0; plane < planes; ++plane) {
        for (uint32_t y = 0; y < uint32_t(layout.height); y += tileHeight) {
            for (uint32_t x = 0; x < uint32_t(layout.width); x += tileWidth) {
                const uint32_t number = TIFFComputeTile(tiff, x, y, 0, uint16_t(plane));
                if (TIFFReadEncodedTile(tiff, number, tile.data(), tmsize_t(tileBytes))
                    != tmsize_t(tileBytes))
                    return false;
                const int columns = int(std::min(tileWidth, uint32_t(layout.width) - x));
                const int rows = int(std::min(tileHeight, uint32_t(layout.height) - y));
                for (int row = 0; row < rows; ++row)
                    placeTiffSamples(layout, tile.data() + rowBytes * size_t(row), bitmap, int(x),
                                     int(y) + row, columns, plane);
            }
        }
    }
    return true;
}

/// What libtiff itself makes of rare kinds: 8 bits, premultiplied. Null when it cannot.
std::shared_ptr<Bitmap> readAsRgba(TIFF* tiff, int width, int height)
{
    char message[1024];
    TIFFRGBAImage image;
    if (!TIFFRGBAImageOK(tiff, message) || !TIFFRGBAImageBegin(&image, tiff, 1, message))
        return nullptr;
    image.req_orientation = image.orientation; // no turning here
    auto bitmap = std::make_shared<Bitmap>(width, height, 4, SampleType::U8, AlphaKind::Straight);
    const bool read = TIFFRGBAImageGet(&image, reinterpret_cast<uint32_t*>(bitmap->row(0)),
                                       uint32_t(width), uint32_t(height))
        != 0;
    const bool hasAlpha = image.alpha != 0;
    TIFFRGBAImageEnd(&image);
    if (!read)
        return nullptr;
    if (hasAlpha) {
        unpremultiply(*bitmap);
        return bitmap;
    }
    auto opaque = std::make_shared<Bitmap>(width, height, 3, SampleType::U8, AlphaKind::None);
    const uint8_t* source = bitmap->row(0);
    uint8_t* target = opaque->row(0);
    for (size_t i = 0; i < size_t(width) * size_t(height); ++i, source += 4, target += 3)
        std::copy(source, source + 3, target);
    return opaque;
}

void readMetadata(TIFF* tiff, Bytes bytes, DecoderOutput& output)
{
    uint32_t count = 0;
    const uint8_t* data = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &count, &data) && data)
        keepBlock(output.icc, {data, count}, largestProfileBytes);
    if (TIFFGetField(tiff, TIFFTAG_XMLPACKET, &count, &data) && data)
        keepXmp(output.properties, {data, count});
    if (TIFFGetField(tiff, TIFFTAG_RICHTIFFIPTC, &count, &data) && data && count > 0
        && count < largestIptcBytes / 4) {
        // Often declared as 32-bit numbers: then it is counted and, in the other byte order, turned
        // in those.
        const TIFFField* const kind = TIFFFindField(tiff, TIFFTAG_RICHTIFFIPTC, TIFF_ANY);
        std::vector<uint8_t> records(
            data, data + size_t(count) * (kind && TIFFFieldDataType(kind) == TIFF_LONG ? 4 : 1));
        if (records[0] != 0x1c && records.size() >= 4 && TIFFIsByteSwapped(tiff))
            for (size_t i = 0; i + 4 <= records.size(); i += 4)
                std::reverse(records.begin() + ptrdiff_t(i), records.begin() + ptrdiff_t(i) + 4);
        output.properties.iptc = std::move(records);
    }
    output.properties.exif = exifFromTiffFile(bytes);
    const int orientation = field<uint16_t>(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    output.orientation = orientation >= 1 && orientation <= 8 ? orientation : 1;
}

/// The first full picture: some files begin with a thumbnail.
void goToPicture(TIFF* tiff)
{
    constexpr uint16_t mostDirectories = 16;
    for (uint16_t i = 0; i < mostDirectories; ++i) {
        if ((field<uint32_t>(tiff, TIFFTAG_SUBFILETYPE, 0) & FILETYPE_REDUCEDIMAGE) == 0)
            return;
        if (!TIFFReadDirectory(tiff))
            break;
    }
    TIFFSetDirectory(tiff, 0);
}

} // namespace

Result<DecoderOutput> decodeTiff(Bytes bytes)
{
    Source source{bytes};
    const Tiff tiff = openTiff(source);
    const auto failure = [&] {
        return Error{source.ranOut ? sentence::endsEarly : sentence::damaged};
    };
    if (!tiff)
        return failure();
    goToPicture(tiff.get());
    const uint32_t width = field<uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH, 0);
    const uint32_t height = field<uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH, 0);
    const uint16_t compression = field<uint16_t>(tiff.get(), TIFFTAG_COMPRESSION, 1);
    if (!TIFFIsCODECConfigured(compression))
        return Error{"This TIFF file is compressed in a way that Orvane cannot read."};
    Description description = describe(tiff.get());
    TiffLayout& layout = description.layout;
    const double bitsPerPixel = std::max(1, layout.bits * layout.samples);
    const size_t outputBytes = description.needsFallback
        ? 7
        : size_t(layout.outputChannels()) * sampleSize(layout.outputType());
    if (auto fits = checkPictureSize(width, height, outputBytes + size_t(bitsPerPixel / 8),
                                     bytes.size(), mostPixelsPerByte(compression, bitsPerPixel));
        !fits)
        return fits.error();
    if (!description.isSupported)
        return Error{"This TIFF file stores its samples in a way that Orvane cannot read."};

    layout.width = int(width);
    layout.height = int(height);
    DecoderOutput output;
    if (description.needsFallback) {
        output.bitmap = readAsRgba(tiff.get(), layout.width, layout.height);
        if (!output.bitmap)
            return source.ranOut
                ? failure()
                : Error{"This TIFF file stores its samples in a way that Orvane cannot read."};
    } else {
        if (auto readable = checkPieces(tiff.get(), layout); !readable)
            return readable.error();
        output.bitmap = std::make_shared<Bitmap>(
            layout.width, layout.height, layout.outputChannels(), layout.outputType(),
            layout.alphaSample >= 0 ? AlphaKind::Straight : AlphaKind::None);
        const bool read = TIFFIsTiled(tiff.get()) ? readTiles(tiff.get(), layout, *output.bitmap)
                                                  : readStrips(tiff.get(), layout, *output.bitmap);
        if (!read)
            return failure();
        if (description.isAssociated && layout.lab == 0)
            unpremultiply(*output.bitmap);
        output.model = layout.colors == 4 ? SampleModel::Cmyk
            : layout.lab != 0             ? SampleModel::Lab
                                          : SampleModel::Color;
    }
    readMetadata(tiff.get(), bytes, output);
    return output;
}

} // namespace orvane
