#include "ColorSpaces.h"
#include "ExifReader.h"
#include "FormatDecoders.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstring>

#include <png.h>
#include <zlib.h>

namespace orvane {

namespace {

/// What outlives a jump out of libpng; see JpegDecoder.cpp.
struct Session {
    png_structp png = nullptr;
    png_infop info = nullptr;
    Bytes bytes;
    size_t position = 0;
    bool ranOut = false;

    png_uint_32 width = 0;
    png_uint_32 height = 0;
    int depth = 0;
    int colorType = 0;
    int fileSamples = 0; ///< a pixel's, before a palette or a transparent colour is resolved
    int channels = 0;
    int outputDepth = 0;
    int passes = 1;
    std::unique_ptr<Bitmap> bitmap;

    ~Session() { png_destroy_read_struct(&png, &info, nullptr); }
};

void onRead(png_structp png, png_bytep target, size_t count)
{
    Session& session = *static_cast<Session*>(png_get_io_ptr(png));
    if (count > session.bytes.size() - session.position) {
        session.ranOut = true;
        png_error(png, "end of data");
    }
    std::memcpy(target, session.bytes.data() + session.position, count);
    session.position += count;
}

[[noreturn]] void onError(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) { }

bool readHeader(Session& session)
{
    if (setjmp(png_jmpbuf(session.png)))
        return false;
    png_structp png = session.png;
    png_infop info = session.info;
    png_set_read_fn(png, &session, onRead);
    // The sides are judged by checkPictureSize(), with a sentence of its own.
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_chunk_malloc_max(png, largestProfileBytes);
    // Texts and palettes may come any number of times, each inflated to the limit above; and a
    // profile that libpng refuses takes gAMA and cHRM with it. See readChunks().
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER,
                                reinterpret_cast<png_const_bytep>("tEXt\0zTXt\0iTXt\0sPLT\0iCCP"),
                                5);
    png_read_info(png, info);
    session.fileSamples = png_get_channels(png, info);
    session.width = png_get_image_width(png, info);
    session.height = png_get_image_height(png, info);
    session.depth = png_get_bit_depth(png, info);
    session.colorType = png_get_color_type(png, info);
    if (session.colorType == PNG_COLOR_TYPE_PALETTE)
        png_set_palette_to_rgb(png);
    if (session.colorType == PNG_COLOR_TYPE_GRAY && session.depth < 8)
        png_set_expand_gray_1_2_4_to_8(png);
    if (png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_tRNS_to_alpha(png);
    if (session.depth == 16)
        png_set_swap(png); // big-endian in the file; this program runs on little-endian machines
    session.passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    session.channels = png_get_channels(png, info);
    session.outputDepth = png_get_bit_depth(png, info);
    return true;
}

bool readRows(Session& session)
{
    if (setjmp(png_jmpbuf(session.png)))
        return false;
    for (int pass = 0; pass < session.passes; ++pass)
        for (png_uint_32 y = 0; y < session.height; ++y)
            png_read_row(session.png, session.bitmap->row(int(y)), nullptr);
    return true;
}

/// What stands after the pixels; a file that lost only this is whole enough.
void readEnd(Session& session)
{
    if (setjmp(png_jmpbuf(session.png)))
        return;
    png_read_end(session.png, session.info);
}

/// The most that deflate packs into a byte is 1032; a row begins with its filter's byte.
double mostPixelsPerByte(const Session& session)
{
    return 1032.0 * 8 / (session.depth * session.fileSamples);
}

/// gAMA and cHRM, in the absence of sRGB; they count when there is no profile to use.
std::optional<SampleConversion> describedColors(const Session& session, SampleType type)
{
    double fileGamma = 0;
    if (png_get_valid(session.png, session.info, PNG_INFO_sRGB))
        return SampleConversion{};
    const bool hasGamma = png_get_gAMA(session.png, session.info, &fileGamma) != 0;
    Primaries p = srgbPrimaries;
    const bool hasPrimaries =
        png_get_cHRM(session.png, session.info, &p.white.x, &p.white.y, &p.red.x, &p.red.y,
                     &p.green.x, &p.green.y, &p.blue.x, &p.blue.y)
        != 0;
    if (!hasGamma && !hasPrimaries)
        return std::nullopt;
    TransferFunction curve = srgbToLinear;
    // 1/2.2 is what writers of sRGB files put here in place of sRGB's curve.
    if (hasGamma && fileGamma > 0.01 && fileGamma < 10 && std::abs(fileGamma - 0.45455) > 0.005)
        curve = [exponent = 1 / fileGamma](double v) { return std::pow(v, exponent); };
    return conversionFrom(curve, hasPrimaries ? p : srgbPrimaries, type);
}

/// Empty when the bytes are no whole zlib stream or hold more than the limit.
std::vector<uint8_t> inflated(Bytes bytes, size_t limit)
{
    for (size_t room = std::min(limit, size_t(1) << 16);; room = std::min(limit, room * 8)) {
        std::vector<uint8_t> target(room);
        uLongf length = room;
        const int status = uncompress(target.data(), &length, bytes.data(), uLong(bytes.size()));
        if (status == Z_OK) {
            target.resize(length);
            return target;
        }
        if (status != Z_BUF_ERROR || room == limit)
            return {};
    }
}

/// What stands before the next NUL, which is taken off with it.
std::string_view takeText(Bytes& bytes)
{
    const auto end = std::find(bytes.begin(), bytes.end(), uint8_t(0));
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()),
                                size_t(end - bytes.begin()));
    bytes = bytes.subspan(std::min(text.size() + 1, bytes.size()));
    return text;
}

void readProfile(Bytes chunk, DecoderOutput& output)
{
    takeText(chunk);
    if (!chunk.empty() && chunk[0] == 0)
        output.icc = inflated(chunk.subspan(1), largestProfileBytes);
}

void readInternationalText(Bytes chunk, ImageProperties& properties)
{
    if (takeText(chunk) != "XML:com.adobe.xmp" || chunk.size() < 2)
        return;
    const bool isCompressed = chunk[0] == 1;
    chunk = chunk.subspan(2);
    takeText(chunk); // language
    takeText(chunk); // the keyword in it
    if (isCompressed)
        keepXmp(properties, inflated(chunk, largestXmpBytes));
    else
        keepXmp(properties, chunk);
}

/// The first profile and the first XMP packet, from the chunks that libpng is told to pass over.
void readChunks(Bytes bytes, DecoderOutput& output)
{
    const ByteReader reader(bytes, true);
    uint64_t at = 8;
    while (at + 12 <= bytes.size()) {
        const uint64_t length = reader.u32(at);
        if (length > bytes.size() - at - 12)
            return;
        const Bytes named = reader.range(at + 4, length + 4);
        const Bytes chunk = named.subspan(4);
        const bool isProfile = startsWith(named, "iCCP") && output.icc.empty();
        const bool isText = startsWith(named, "iTXt") && output.properties.xmp.empty();
        if ((isProfile || isText)
            && crc32(0, named.data(), uInt(named.size())) == reader.u32(at + 8 + length)) {
            if (isProfile)
                readProfile(chunk, output);
            else
                readInternationalText(chunk, output.properties);
        }
        at += length + 12;
    }
}

void readMetadata(Session& session, DecoderOutput& output)
{
    output.described = describedColors(session, output.bitmap->type());
    png_uint_32 length = 0;
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(session.png, session.info, &length, &exif) && exif)
        keepBlock(output.properties.exif, withoutExifPrefix({exif, length}), largestExifBytes);
    readChunks(session.bytes, output);
}

} // namespace

Result<DecoderOutput> decodePng(Bytes bytes)
{
    Session session;
    session.bytes = bytes;
    session.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning);
    session.info = session.png ? png_create_info_struct(session.png) : nullptr;
    if (!session.info)
        return Error{sentence::noMemory};
    const auto failure = [&] {
        return Error{session.ranOut ? sentence::endsEarly : sentence::damaged};
    };
    if (!readHeader(session))
        return failure();
    const size_t sampleBytes = session.outputDepth == 16 ? 2 : 1;
    if (auto fits =
            checkPictureSize(session.width, session.height, size_t(session.channels) * sampleBytes,
                             bytes.size(), mostPixelsPerByte(session));
        !fits)
        return fits.error();
    const bool hasAlpha = session.channels == 2 || session.channels == 4;
    session.bitmap =
        std::make_unique<Bitmap>(int(session.width), int(session.height), session.channels,
                                 sampleBytes == 2 ? SampleType::U16 : SampleType::U8,
                                 hasAlpha ? AlphaKind::Straight : AlphaKind::None);
    if (!readRows(session))
        return failure();
    readEnd(session);

    DecoderOutput output;
    output.bitmap = std::move(session.bitmap);
    readMetadata(session, output);
    return output;
}

} // namespace orvane
