#include "ColorProfile.h"
#include "ColorSpaces.h"
#include "ExifReader.h"
#include "FormatDecoders.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <libheif/heif.h>

namespace orvane {

namespace {

// Video codecs skip flat blocks almost for nothing: 64 x 64 samples in a few bits, many times over.
constexpr double mostPixelsPerByte = 1 << 20;

template <auto Release> struct Deleter {
    template <class T> void operator()(T* object) const { Release(object); }
};
using Context = std::unique_ptr<heif_context, Deleter<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Deleter<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Deleter<heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options, Deleter<heif_decoding_options_free>>;
using Nclx = std::unique_ptr<heif_color_profile_nclx, Deleter<heif_nclx_color_profile_free>>;

Error failure(const heif_error& error)
{
    if (error.subcode == heif_suberror_End_of_data)
        return Error{sentence::endsEarly};
    if (error.code == heif_error_Unsupported_feature
        || error.code == heif_error_Unsupported_filetype
        || error.subcode == heif_suberror_Unsupported_color_conversion)
        return Error{"This HEIF or AVIF file has a feature that Orvane cannot read."};
    if (error.code == heif_error_Memory_allocation_error)
        return Error{sentence::noMemory};
    return Error{sentence::damaged};
}

std::optional<Primaries> primariesOf(heif_color_primaries code)
{
    // ITU-T H.273, table 2.
    constexpr Chromaticity whiteC{0.310, 0.316};
    switch (int(code)) {
    case 1:
        return srgbPrimaries;
    case 4:
        return Primaries{{0.67, 0.33}, {0.21, 0.71}, {0.14, 0.08}, whiteC};
    case 5:
        return Primaries{{0.64, 0.33}, {0.29, 0.60}, {0.15, 0.06}, whiteD65};
    case 6:
    case 7:
        return Primaries{{0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}, whiteD65};
    case 8:
        return Primaries{{0.681, 0.319}, {0.243, 0.692}, {0.145, 0.049}, whiteC};
    case 9:
        return rec2020Primaries;
    case 11:
        return Primaries{{0.68, 0.32}, {0.265, 0.69}, {0.15, 0.06}, {0.314, 0.351}};
    case 12:
        return displayP3Primaries;
    default:
        return std::nullopt;
    }
}

double fromRec709(double v)
{
    return v < 0.0812428583 ? v / 4.5 : std::pow((v + 0.0992968268) / 1.0992968268, 1 / 0.45);
}

/// SMPTE ST 2084, with the reference white of 203 cd/m2 (ITU-R BT.2408) as 1.
double fromPq(double v)
{
    constexpr double m1 = 2610.0 / 16384, m2 = 2523.0 / 32, c1 = 3424.0 / 4096, c2 = 2413.0 / 128,
                     c3 = 2392.0 / 128;
    const double p = std::pow(std::max(v, 0.0), 1 / m2);
    return std::pow(std::max(p - c1, 0.0) / (c2 - c3 * p), 1 / m1) * 10000 / 203;
}

/// ITU-R BT.2100 HLG for a display of 1000 cd/m2, whose system gamma of 1.2 is applied to each
/// channel; a signal of 0.75 is then the reference white of 203 cd/m2.
double fromHlg(double v)
{
    constexpr double a = 0.17883277, b = 0.28466892, c = 0.55991073;
    const double scene = v <= 0.5 ? v * v / 3 : (std::exp((v - c) / a) + b) / 12;
    return std::pow(scene, 1.2) * 1000 / 203;
}

TransferFunction transferOf(heif_transfer_characteristics code)
{
    // ITU-T H.273, table 3.
    switch (int(code)) {
    case 1:
    case 6:
    case 14:
    case 15:
        return fromRec709;
    case 4:
        return [](double v) { return std::pow(v, 2.2); };
    case 5:
        return [](double v) { return std::pow(v, 2.8); };
    case 8:
        return [](double v) { return v; };
    case 16:
        return fromPq;
    case 17:
        return [](double v) { return std::pow(v, 2.6) * 52.37 / 48; };
    case 18:
        return fromHlg;
    default:
        return srgbToLinear;
    }
}

/// The profile in codes, from the container or else from the coded picture itself.
Nclx codedColors(const heif_image_handle* handle, const heif_image* image)
{
    heif_color_profile_nclx* found = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle, &found).code == heif_error_Ok && found)
        return Nclx(found);
    found = nullptr;
    if (heif_image_get_nclx_color_profile(image, &found).code == heif_error_Ok && found)
        return Nclx(found);
    return nullptr;
}

void readProfile(const heif_image_handle* handle, std::vector<uint8_t>& icc)
{
    const heif_color_profile_type type = heif_image_handle_get_color_profile_type(handle);
    if (type != heif_color_profile_type_rICC && type != heif_color_profile_type_prof)
        return;
    const size_t size = heif_image_handle_get_raw_color_profile_size(handle);
    if (size == 0 || size > largestProfileBytes)
        return;
    icc.resize(size);
    if (heif_image_handle_get_raw_color_profile(handle, icc.data()).code != heif_error_Ok
        || !ColorProfile::parsed(icc))
        icc.clear();
}

/// The codes are read beside a profile too: it may yet turn out to be of no use.
void readColors(const heif_image_handle* handle, const heif_image* image, DecoderOutput& output)
{
    readProfile(handle, output.icc);
    const Nclx nclx = codedColors(handle, image);
    if (!nclx)
        return;
    const int transfer = int(nclx->transfer_characteristics);
    output.described = conversionFrom(transferOf(nclx->transfer_characteristics),
                                      primariesOf(nclx->color_primaries).value_or(srgbPrimaries),
                                      output.bitmap->type());
    if (output.icc.empty() && (transfer == 16 || transfer == 18))
        output.note = "This is a high dynamic range picture; its white is taken as 203 cd/m².";
}

void readMetadata(const heif_image_handle* handle, ImageProperties& properties)
{
    constexpr int mostBlocks = 16;
    heif_item_id ids[mostBlocks];
    const int count =
        heif_image_handle_get_list_of_metadata_block_IDs(handle, nullptr, ids, mostBlocks);
    for (int i = 0; i < count; ++i) {
        const size_t size = heif_image_handle_get_metadata_size(handle, ids[i]);
        if (size == 0 || size > largestExifBytes)
            continue;
        std::vector<uint8_t> block(size);
        if (heif_image_handle_get_metadata(handle, ids[i], block.data()).code != heif_error_Ok)
            continue;
        const std::string_view type = heif_image_handle_get_metadata_type(handle, ids[i]);
        const char* contentType = heif_image_handle_get_metadata_content_type(handle, ids[i]);
        const ByteReader reader(block, true);
        // Exif begins with the distance to its TIFF stream, counted from behind that number.
        if (type == "Exif")
            keepBlock(properties.exif,
                      withoutExifPrefix(reader.range(4 + uint64_t(reader.u32(0)), size)),
                      largestExifBytes);
        else if (type == "mime" && contentType
                 && std::string_view(contentType) == "application/rdf+xml")
            keepXmp(properties, block);
    }
}

/// One row of libheif's 16-bit words, `bits` of each in use, spread over the full 16.
void widenRow(const uint8_t* source, uint16_t* target, size_t count, int bits)
{
    const uint32_t highest = (uint32_t(1) << bits) - 1;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t value = uint32_t(source[2 * i] | source[2 * i + 1] << 8);
        target[i] = uint16_t((std::min(value, highest) * 65535 + highest / 2) / highest);
    }
}

std::shared_ptr<Bitmap> bitmapOf(const heif_image* image, bool hasAlpha)
{
    int stride = 0;
    const uint8_t* plane = heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    const int width = heif_image_get_width(image, heif_channel_interleaved);
    const int height = heif_image_get_height(image, heif_channel_interleaved);
    const int bits = heif_image_get_bits_per_pixel_range(image, heif_channel_interleaved);
    if (!plane || width < 1 || height < 1 || bits < 1 || bits > 16)
        return nullptr;
    const int channels = hasAlpha ? 4 : 3;
    auto bitmap = std::make_shared<Bitmap>(width, height, channels,
                                           bits > 8 ? SampleType::U16 : SampleType::U8,
                                           hasAlpha ? AlphaKind::Straight : AlphaKind::None);
    if (size_t(stride) < bitmap->rowBytes())
        return nullptr;
    for (int y = 0; y < height; ++y) {
        const uint8_t* source = plane + size_t(y) * size_t(stride);
        if (bits > 8)
            widenRow(source, reinterpret_cast<uint16_t*>(bitmap->row(y)),
                     size_t(width) * size_t(channels), bits);
        else
            std::memcpy(bitmap->row(y), source, bitmap->rowBytes());
    }
    return bitmap;
}

heif_chroma chromaFor(bool deep, bool hasAlpha)
{
    if (deep)
        return hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
    return hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
}

/// Whether a box at the top level goes on behind the end of the file: libheif tells only of some.
bool endsWithinBox(Bytes bytes)
{
    const ByteReader reader(bytes, true);
    uint64_t at = 0;
    while (at < bytes.size()) {
        const uint64_t shortSize = reader.u32(at);
        const uint64_t size = shortSize == 1 ? reader.number(at + 8, 8) : shortSize;
        if (size == 0)
            return false; // the last box goes to the end
        if (size < 8 || size > bytes.size() - at)
            return size >= 8;
        at += size;
    }
    return false;
}

Result<DecoderOutput> decodeComplete(Bytes bytes)
{
    const Context context(heif_context_alloc());
    if (!context)
        return Error{sentence::noMemory};
    heif_error error = heif_context_read_from_memory_without_copy(context.get(), bytes.data(),
                                                                  bytes.size(), nullptr);
    if (error.code != heif_error_Ok)
        return failure(error);
    heif_image_handle* primary = nullptr;
    error = heif_context_get_primary_image_handle(context.get(), &primary);
    if (error.code != heif_error_Ok)
        return failure(error);
    const Handle handle(primary);
    const bool hasAlpha = heif_image_handle_has_alpha_channel(handle.get()) != 0;
    const bool deep = heif_image_handle_get_luma_bits_per_pixel(handle.get()) > 8;
    const int width = heif_image_handle_get_width(handle.get());
    const int height = heif_image_handle_get_height(handle.get());
    if (width < 1 || height < 1)
        return Error{sentence::damaged};
    // libheif holds the coded planes and the interleaved picture at once.
    if (auto fits = checkPictureSize(uint64_t(width), uint64_t(height), deep ? 24 : 12,
                                     bytes.size(), mostPixelsPerByte);
        !fits)
        return fits.error();

    const Options options(heif_decoding_options_alloc());
    if (options)
        options->strict_decoding = 1;
    heif_image* decoded = nullptr;
    error = heif_decode_image(handle.get(), &decoded, heif_colorspace_RGB,
                              chromaFor(deep, hasAlpha), options.get());
    if (error.code != heif_error_Ok)
        return failure(error);
    const Image image(decoded);
    DecoderOutput output;
    output.bitmap = bitmapOf(image.get(), hasAlpha);
    if (!output.bitmap)
        return Error{sentence::damaged};
    if (hasAlpha && heif_image_is_premultiplied_alpha(image.get()))
        unpremultiply(*output.bitmap);
    output.orientation = 1; // turned by libheif, whatever the Exif block still says
    readColors(handle.get(), image.get(), output);
    readMetadata(handle.get(), output.properties);
    return output;
}

} // namespace

Result<DecoderOutput> decodeHeif(Bytes bytes)
{
    auto output = decodeComplete(bytes);
    if (!output && endsWithinBox(bytes))
        return Error{sentence::endsEarly};
    return output;
}

} // namespace orvane
