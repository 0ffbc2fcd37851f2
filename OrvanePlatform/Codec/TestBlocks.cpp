// Test files that no library writes: Exif blocks, a DNG, HEIF in its variants.
#include "TestPictures.h"

#include <algorithm>
#include <cmath>

#include <libheif/heif.h>

namespace orvane::test {

namespace {

/// Numbers appended in one byte order.
struct Writer {
    File file;
    bool bigEndian = false;

    void number(uint32_t value, int bytes)
    {
        for (int i = 0; i < bytes; ++i)
            file.push_back(uint8_t(value >> 8 * (bigEndian ? bytes - 1 - i : i)));
    }
    /// A directory's entry whose value fits into four bytes.
    void entry(int tag, int type, uint32_t count, uint32_t value)
    {
        number(uint32_t(tag), 2);
        number(uint32_t(type), 2);
        number(count, 4);
        if (type == 3 && count == 1) {
            number(value, 2);
            number(0, 2);
        } else
            number(value, 4);
    }
};

} // namespace

File exifBlock(int orientation, int colorSpace, bool isR03, bool bigEndian)
{
    constexpr uint32_t exifAt = 8 + 2 + 2 * 12 + 4;
    constexpr uint32_t interoperabilityAt = exifAt + 2 + 2 * 12 + 4;
    Writer w{{}, bigEndian};
    w.number(bigEndian ? 0x4d4d : 0x4949, 2);
    w.number(42, 2);
    w.number(8, 4);
    w.number(2, 2);
    w.entry(0x0112, 3, 1, uint32_t(orientation));
    w.entry(0x8769, 4, 1, exifAt);
    w.number(0, 4);
    w.number(2, 2);
    w.entry(0xa001, 3, 1, uint32_t(colorSpace));
    w.entry(0xa005, 4, 1, interoperabilityAt);
    w.number(0, 4);
    w.number(1, 2);
    w.number(1, 2);
    w.number(2, 2);
    w.number(4, 4);
    const char index[] = {'R', isR03 ? '0' : '9', isR03 ? '3' : '8', 0};
    w.file.insert(w.file.end(), index, index + 4);
    w.number(0, 4);
    return w.file;
}

File dng(int red, int green, int blue, int orientation)
{
    constexpr uint32_t width = 64, height = 48, entries = 18;
    constexpr uint32_t extraAt = 8 + 2 + entries * 12 + 4; // "Maker\0" and padding, then numbers
    constexpr uint32_t matrixAt = extraAt + 8, neutralAt = matrixAt + 9 * 8,
                       dataAt = neutralAt + 3 * 8;
    Writer w;
    w.number(0x4949, 2);
    w.number(42, 2);
    w.number(8, 4);
    w.number(entries, 2);
    w.entry(0x00fe, 4, 1, 0);
    w.entry(0x0100, 4, 1, width);
    w.entry(0x0101, 4, 1, height);
    w.entry(0x0102, 3, 1, 16);
    w.entry(0x0103, 3, 1, 1);
    w.entry(0x0106, 3, 1, 32803);
    w.entry(0x010f, 2, 6, extraAt);
    w.entry(0x0110, 2, 6, extraAt);
    w.entry(0x0111, 4, 1, dataAt);
    w.entry(0x0112, 3, 1, uint32_t(orientation));
    w.entry(0x0115, 3, 1, 1);
    w.entry(0x0117, 4, 1, width * height * 2);
    w.entry(0x828d, 3, 2, 2 | 2 << 16);
    w.entry(0x828e, 1, 4, 0 | 1 << 8 | 1 << 16 | 2 << 24); // red green, green blue
    w.entry(0xc612, 1, 4, 1 | 4 << 8);
    w.entry(0xc61d, 4, 1, 65535);
    w.entry(0xc621, 10, 9, matrixAt);
    w.entry(0xc628, 5, 3, neutralAt);
    w.number(0, 4);
    const char maker[] = "Maker\0";
    w.file.insert(w.file.end(), maker, maker + 6);
    w.number(0, 2);
    // XYZ (D65) to the camera: the inverse of sRGB's matrix, so that the camera sees sRGB.
    constexpr int matrix[9] = {32404542, -15371385, -4985314, -9692660, 18760108,
                               415560,   556434,    -2040259, 10572252};
    for (int value : matrix) {
        w.number(uint32_t(value), 4);
        w.number(10000000, 4);
    }
    for (int i = 0; i < 3; ++i) {
        w.number(1, 4);
        w.number(1, 4);
    }
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            w.number(
                uint32_t(y % 2 == 0 ? (x % 2 == 0 ? red : green) : (x % 2 == 0 ? green : blue)), 2);
    return w.file;
}

static void fillHeif(heif_image* image, const std::array<double, 3>& color, int bits)
{
    int stride = 0;
    uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    const int highest = (1 << bits) - 1;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 96; ++x)
            for (int c = 0; c < 3; ++c) {
                const int value = int(std::lround(color[size_t(c)] * highest));
                uint8_t* row = plane + y * stride;
                if (bits > 8) {
                    row[(x * 3 + c) * 2] = uint8_t(value);
                    row[(x * 3 + c) * 2 + 1] = uint8_t(value >> 8);
                } else
                    row[x * 3 + c] = uint8_t(value);
            }
}

static heif_error appendToFile(heif_context*, const void* data, size_t size, void* user)
{
    auto& file = *static_cast<File*>(user);
    const auto* bytes = static_cast<const uint8_t*>(data);
    file.insert(file.end(), bytes, bytes + size);
    return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

static void describeHeif(heif_image* image, const HeifOptions& options)
{
    if (!options.icc.empty())
        heif_image_set_raw_color_profile(image, "prof", options.icc.data(), options.icc.size());
    if (options.transfer == 0)
        return;
    heif_color_profile_nclx* nclx = heif_nclx_color_profile_alloc();
    nclx->color_primaries = heif_color_primaries(options.primaries);
    nclx->transfer_characteristics = heif_transfer_characteristics(options.transfer);
    nclx->matrix_coefficients = heif_matrix_coefficients_ITU_R_BT_709_5;
    nclx->full_range_flag = 1;
    heif_image_set_nclx_color_profile(image, nclx);
    heif_nclx_color_profile_free(nclx);
}

File heif(const std::array<double, 3>& color, const HeifOptions& options)
{
    heif_context* context = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    File file;
    if (heif_context_get_encoder_for_format(
            context, options.isAvif ? heif_compression_AV1 : heif_compression_HEVC, &encoder)
            .code
        == heif_error_Ok) {
        heif_encoder_set_lossy_quality(encoder, 100);
        // One colour loses nothing in reduced chroma.
        heif_encoder_set_parameter_string(encoder, "chroma", options.isAvif ? "420" : "444");
        heif_image* image = nullptr;
        heif_image_create(96, 64, heif_colorspace_RGB,
                          options.bits > 8 ? heif_chroma_interleaved_RRGGBB_LE
                                           : heif_chroma_interleaved_RGB,
                          &image);
        heif_image_add_plane(image, heif_channel_interleaved, 96, 64, options.bits);
        fillHeif(image, color, options.bits);
        describeHeif(image, options);
        heif_encoding_options* encoding = heif_encoding_options_alloc();
        encoding->macOS_compatibility_workaround_no_nclx_profile = 0;
        encoding->save_two_colr_boxes_when_ICC_and_nclx_available = 1;
        encoding->image_orientation = heif_orientation(options.orientation);
        heif_image_handle* handle = nullptr;
        if (heif_context_encode_image(context, image, encoder, encoding, &handle).code
            == heif_error_Ok) {
            if (!options.exif.empty())
                heif_context_add_exif_metadata(context, handle, options.exif.data(),
                                               int(options.exif.size()));
            heif_writer writer{1, appendToFile};
            heif_context_write(context, &writer, &file);
            heif_image_handle_release(handle);
        }
        heif_encoding_options_free(encoding);
        heif_image_release(image);
        heif_encoder_release(encoder);
    }
    heif_context_free(context);
    return file;
}

} // namespace orvane::test
