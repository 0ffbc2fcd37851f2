#include "ColorSpaces.h"
#include "ExifReader.h"
#include "FormatDecoders.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <libraw/libraw.h>

namespace orvane {

namespace {

// Lossless coding of a sensor's noise needs several bits a pixel; 64 pixels a byte is generous.
constexpr double mostPixelsPerByte = 64;

/// libraw counts turns in its own way: 3 is half a turn, 5 a quarter to the left, 6 to the right.
int orientationOf(int flip)
{
    return flip == 3 ? 3 : flip == 5 ? 8 : flip == 6 ? 6 : 1;
}

/// Why there is no picture from the sensor, when there is none.
enum class SensorState { Known, Unknown, Damaged };

struct SensorPicture {
    std::shared_ptr<Bitmap> bitmap; ///< null unless Known, or Damaged in parts only
    SensorState state = SensorState::Unknown;
    int orientation = 1;
};

/// Throws std::bad_alloc when it was the memory that was short.
SensorState stateOf(int status)
{
    switch (status) {
    case LIBRAW_SUCCESS:
        return SensorState::Known;
    case LIBRAW_UNSUFFICIENT_MEMORY:
    case LIBRAW_TOO_BIG:
    case LIBRAW_MEMPOOL_OVERFLOW:
        throw std::bad_alloc();
    case LIBRAW_DATA_ERROR:
    case LIBRAW_IO_ERROR:
    case LIBRAW_BAD_CROP:
        return SensorState::Damaged;
    default:
        return SensorState::Unknown;
    }
}

/// The sensor's picture, developed: camera white balance, linear sRGB, 16 bits.
void develop(LibRaw& raw, SensorPicture& picture)
{
    libraw_output_params_t& settings = raw.imgdata.params;
    settings.use_camera_wb = 1;
    settings.output_bps = 16;
    settings.output_color = 1;
    settings.gamm[0] = settings.gamm[1] = 1;
    settings.no_auto_bright = 1;
    settings.user_flip = 0;
    picture.state = stateOf(raw.unpack());
    if (picture.state == SensorState::Known)
        picture.state = stateOf(raw.dcraw_process());
    if (picture.state != SensorState::Known)
        return;
    picture.state = SensorState::Unknown;
    int width = 0, height = 0, colors = 0, bits = 0;
    raw.get_mem_image_format(&width, &height, &colors, &bits);
    if (width < 1 || height < 1 || (colors != 1 && colors != 3) || bits != 16)
        return;
    auto bitmap = std::make_shared<Bitmap>(width, height, colors, SampleType::U16, AlphaKind::None);
    picture.state = stateOf(raw.copy_mem_image(bitmap->row(0), int(bitmap->rowBytes()), 0));
    if (picture.state != SensorState::Known)
        return;
    picture.bitmap = std::move(bitmap);
    // libraw goes on where samples make no sense or are missing, and counts them.
    if (raw.error_count() > 0)
        picture.state = SensorState::Damaged;
}

/// The largest JPEG that lies whole within the bytes.
std::optional<DecoderOutput> embeddedPreview(Bytes bytes)
{
    constexpr int mostCandidates = 16;
    std::optional<DecoderOutput> best;
    int candidates = 0;
    for (size_t at = 0; at + 4 < bytes.size() && candidates < mostCandidates; ++at) {
        const auto* found = static_cast<const uint8_t*>(
            std::memchr(bytes.data() + at, 0xff, bytes.size() - at - 3));
        if (!found)
            break;
        at = size_t(found - bytes.data());
        if (bytes[at + 1] != 0xd8 || bytes[at + 2] != 0xff || bytes[at + 3] < 0xc0)
            continue;
        ++candidates;
        auto decoded = decodeJpeg(bytes.subspan(at));
        if (decoded && (!best || decoded->bitmap->byteSize() > best->bitmap->byteSize()))
            best = std::move(*decoded);
    }
    return best;
}

/// The sensor's picture and its state, or why it may not be decoded at all.
Result<SensorPicture> decodeSensor(Bytes bytes)
{
    SensorPicture picture;
    // An object of half a megabyte: not one for the stack.
    const auto raw = std::make_unique<LibRaw>(LIBRAW_OPIONS_NO_MEMERR_CALLBACK
                                              | LIBRAW_OPIONS_NO_DATAERR_CALLBACK);
    picture.state = stateOf(raw->open_buffer(const_cast<uint8_t*>(bytes.data()), bytes.size()));
    if (picture.state != SensorState::Known)
        return picture;
    const libraw_image_sizes_t& sizes = raw->imgdata.sizes;
    // Beside the result lie the raw samples, four channels of 16 bits, and the demosaicing's tiles.
    if (auto fits = checkPictureSize(std::max(sizes.raw_width, sizes.width),
                                     std::max(sizes.raw_height, sizes.height), 20, bytes.size(),
                                     mostPixelsPerByte);
        !fits)
        return fits.error();
    picture.orientation = orientationOf(sizes.flip);
    develop(*raw, picture);
    return picture;
}

} // namespace

Result<DecoderOutput> decodeRaw(Bytes bytes)
{
    DecoderOutput output;
    SensorPicture sensor;
    try {
        auto decoded = decodeSensor(bytes);
        if (!decoded)
            return decoded.error();
        sensor = std::move(*decoded);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        // libraw's own exceptions are of many types; without a picture the preview serves.
        sensor.state = SensorState::Damaged;
    }
    const bool isDamaged = sensor.state == SensorState::Damaged;
    output.properties.exif = exifFromTiffFile(bytes);
    if (sensor.bitmap) {
        output.bitmap = std::move(sensor.bitmap);
        output.described = linearConversion(SampleType::U16);
        output.orientation = sensor.orientation;
        if (isDamaged)
            output.note = sentence::partlyDamaged;
        return output;
    }
    auto preview = embeddedPreview(bytes);
    if (!preview)
        return Error{isDamaged ? sentence::damaged
                               : "This camera's raw format is one that Orvane cannot read."};
    if (!output.properties.exif.empty())
        preview->properties.exif = std::move(output.properties.exif);
    preview->note = isDamaged
        ? "The sensor's data is damaged; the picture is shown from its embedded preview."
        : "Orvane does not know this camera's sensor; the picture is shown from its embedded "
          "preview.";
    return std::move(*preview);
}

} // namespace orvane
