#include "ColorSpaces.h"
#include "ExifReader.h"
#include "FormatDecoders.h"

#include <cmath>
#include <csetjmp>
#include <cstring>

#include <png.h>

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
    png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
    png_read_info(png, info);
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
    const int samples = png_get_channels(session.png, session.info);
    const int fileSamples = session.colorType == PNG_COLOR_TYPE_PALETTE ? 1 : samples;
    return 1032.0 * 8 / (session.depth * fileSamples);
}

/// gAMA and cHRM, in the absence of iCCP and sRGB.
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

void readText(Session& session, ImageProperties& properties)
{
    png_textp texts = nullptr;
    const int count = png_get_text(session.png, session.info, &texts, nullptr);
    for (int i = 0; i < count; ++i) {
        const png_text& text = texts[i];
        if (std::string_view(text.key) != "XML:com.adobe.xmp" || !text.text)
            continue;
        const size_t length =
            text.compression >= PNG_ITXT_COMPRESSION_NONE ? text.itxt_length : text.text_length;
        keepXmp(properties, {reinterpret_cast<const uint8_t*>(text.text), length});
    }
}

void readMetadata(Session& session, DecoderOutput& output)
{
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 length = 0;
    if (png_get_iCCP(session.png, session.info, &name, &compression, &profile, &length))
        keepBlock(output.icc, {profile, length}, largestProfileBytes);
    else
        output.described = describedColors(session, output.bitmap->type());
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(session.png, session.info, &length, &exif) && exif)
        keepBlock(output.properties.exif, withoutExifPrefix({exif, length}), largestExifBytes);
    readText(session, output.properties);
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
