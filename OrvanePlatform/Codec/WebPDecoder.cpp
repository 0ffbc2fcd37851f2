#include "ExifReader.h"
#include "FormatDecoders.h"

#include <cstring>

#include <webp/decode.h>
#include <webp/demux.h>

namespace orvane {

namespace {

// A lossless picture of one colour takes no bits for its pixels, so nothing can be told from the
// file's size; WebP's own limit of 16,383 pixels a side bounds the work.
constexpr double mostPixelsPerByte = 1e9;

struct DemuxerDeleter {
    void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};
struct AnimationDeleter {
    void operator()(WebPAnimDecoder* decoder) const { WebPAnimDecoderDelete(decoder); }
};

std::vector<uint8_t> chunk(const WebPDemuxer* demuxer, const char* name, size_t limit)
{
    std::vector<uint8_t> block;
    WebPChunkIterator iterator;
    if (WebPDemuxGetChunk(demuxer, name, 1, &iterator))
        keepBlock(block, {iterator.chunk.bytes, iterator.chunk.size}, limit);
    WebPDemuxReleaseChunkIterator(&iterator);
    return block;
}

Error failure(VP8StatusCode status)
{
    switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY:
        return Error{sentence::noMemory};
    case VP8_STATUS_SUSPENDED:
    case VP8_STATUS_NOT_ENOUGH_DATA:
        return Error{sentence::endsEarly};
    case VP8_STATUS_UNSUPPORTED_FEATURE:
        return Error{"This WebP file has a feature that Orvane cannot read."};
    default:
        return Error{sentence::damaged};
    }
}

VP8StatusCode decodeStill(Bytes bytes, WebPDecoderConfig& config, Bitmap& bitmap)
{
    config.options.use_threads = 1;
    config.output.colorspace = bitmap.hasAlpha() ? MODE_RGBA : MODE_RGB;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {bitmap.row(0), int(bitmap.rowBytes()), bitmap.byteSize()};
    return WebPDecode(bytes.data(), bytes.size(), &config);
}

/// The first frame of an animation, on its canvas.
VP8StatusCode decodeFirstFrame(Bytes bytes, Bitmap& bitmap)
{
    WebPAnimDecoderOptions options;
    if (!WebPAnimDecoderOptionsInit(&options))
        return VP8_STATUS_INVALID_PARAM;
    options.color_mode = MODE_RGBA;
    options.use_threads = 1;
    const WebPData data = {bytes.data(), bytes.size()};
    const std::unique_ptr<WebPAnimDecoder, AnimationDeleter> decoder(
        WebPAnimDecoderNew(&data, &options));
    uint8_t* canvas = nullptr;
    int timestamp = 0;
    if (!decoder || !WebPAnimDecoderGetNext(decoder.get(), &canvas, &timestamp))
        return VP8_STATUS_BITSTREAM_ERROR;
    std::memcpy(bitmap.row(0), canvas, bitmap.byteSize());
    return VP8_STATUS_OK;
}

} // namespace

Result<DecoderOutput> decodeWebP(Bytes bytes)
{
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        return Error{sentence::damaged};
    if (const auto status = WebPGetFeatures(bytes.data(), bytes.size(), &config.input);
        status != VP8_STATUS_OK)
        return failure(status);
    const bool animated = config.input.has_animation != 0;
    if (auto fits = checkPictureSize(uint64_t(config.input.width), uint64_t(config.input.height),
                                     animated ? 12 : 8, bytes.size(), mostPixelsPerByte);
        !fits)
        return fits.error();
    const bool hasAlpha = animated || config.input.has_alpha != 0;
    DecoderOutput output;
    output.bitmap =
        std::make_shared<Bitmap>(config.input.width, config.input.height, hasAlpha ? 4 : 3,
                                 SampleType::U8, hasAlpha ? AlphaKind::Straight : AlphaKind::None);
    const VP8StatusCode status = animated ? decodeFirstFrame(bytes, *output.bitmap)
                                          : decodeStill(bytes, config, *output.bitmap);
    if (status != VP8_STATUS_OK)
        return failure(status);
    if (animated)
        output.note = "This file is an animation; its first picture is shown.";

    const WebPData data = {bytes.data(), bytes.size()};
    WebPDemuxState state = WEBP_DEMUX_PARSE_ERROR;
    const std::unique_ptr<WebPDemuxer, DemuxerDeleter> demuxer(WebPDemuxPartial(&data, &state));
    if (demuxer) {
        output.icc = chunk(demuxer.get(), "ICCP", largestProfileBytes);
        keepBlock(output.properties.exif,
                  withoutExifPrefix(chunk(demuxer.get(), "EXIF", largestExifBytes)),
                  largestExifBytes);
        keepXmp(output.properties, chunk(demuxer.get(), "XMP ", largestXmpBytes));
    }
    return output;
}

} // namespace orvane
