#include "EncoderBase.h"

#ifdef ORVANE_HEIF_EXPORT

#include "SrgbProfile.h"

#include <cmath>
#include <cstring>

#include <libheif/heif.h>

namespace orvane {

namespace {

// 20 megapixels at quality 0.9, 4:4:4, two 2.5 GHz Xeon cores, time and size:
//   fast                       59 s, 12.2 MB
//   superfast                  45 s, 11.0 MB
//   ultrafast                  12 s, 10.9 MB
//   ultrafast, shallow trees   8 to 12 s, 11.1 MB
// For a single frame the slower presets search for what only moving pictures repay.
constexpr const char* preset = "ultrafast";
constexpr int transformTreeDepth = 1;

template <class T, void (*release)(T*)> struct Releaser {
    void operator()(T* object) const { release(object); }
};
template <class T, void (*release)(T*)> using Owned = std::unique_ptr<T, Releaser<T, release>>;

void releaseImage(heif_image* image)
{
    heif_image_release(image);
}

void releaseHandle(heif_image_handle* handle)
{
    heif_image_handle_release(handle);
}

class HeifEncoder final : public EncoderBase {
public:
    HeifEncoder(const EncodeSettings& settings, ByteSink& bytes)
        : EncoderBase(settings, bytes)
    {
    }

    Result<void> begin();

protected:
    Result<void> encodeRows(const uint8_t* rows, int count, size_t rowBytes) override;
    Result<void> complete() override;

private:
    heif_error prepareCoder(heif_context* context, heif_encoder** coder) const;
    heif_error addMetadata(heif_context* context, const heif_image_handle* handle) const;
    static heif_error write(heif_context*, const void* data, size_t size, void* sink);

    Owned<heif_image, releaseImage> m_image;
    int m_rows = 0;
};

constexpr heif_error success = {heif_error_Ok, heif_suberror_Unspecified, ""};

Result<void> HeifEncoder::begin()
{
    if (!heif_have_encoder_for_format(heif_compression_HEVC))
        return Error{"This system's HEIF library cannot write HEIC files (x265 is missing)."};
    heif_image* image = nullptr;
    const heif_chroma chroma =
        settings().alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
    heif_error error =
        heif_image_create(settings().width, settings().height, heif_colorspace_RGB, chroma, &image);
    m_image.reset(image);
    if (error.code == heif_error_Ok)
        error = heif_image_add_plane(image, heif_channel_interleaved, settings().width,
                                     settings().height, 8);
    if (error.code == heif_error_Ok)
        error = heif_image_set_raw_color_profile(image, "prof", srgbProfile().data(),
                                                 srgbProfile().size());
    return error.code == heif_error_Ok ? Result<void>() : codingFailure();
}

Result<void> HeifEncoder::encodeRows(const uint8_t* rows, int count, size_t rowBytes)
{
    int stride = 0;
    uint8_t* plane = heif_image_get_plane(m_image.get(), heif_channel_interleaved, &stride);
    for (int i = 0; i < count; ++i)
        std::memcpy(plane + size_t(m_rows + i) * size_t(stride), rows + size_t(i) * rowBytes,
                    size_t(settings().width) * pixelBytes());
    m_rows += count;
    return {};
}

heif_error HeifEncoder::prepareCoder(heif_context* context, heif_encoder** coder) const
{
    heif_error error = heif_context_get_encoder_for_format(context, heif_compression_HEVC, coder);
    if (error.code != heif_error_Ok)
        return error;
    heif_encoder_set_logging_level(*coder, 0);
    error = heif_encoder_set_lossy_quality(*coder, int(std::lround(settings().quality * 100)));
    if (error.code == heif_error_Ok)
        error = heif_encoder_set_parameter_string(*coder, "chroma",
                                                  settings().quality >= 0.9 ? "444" : "420");
    if (error.code == heif_error_Ok)
        error = heif_encoder_set_parameter_string(*coder, "preset", preset);
    if (error.code == heif_error_Ok)
        error = heif_encoder_set_parameter_integer(*coder, "tu-intra-depth", transformTreeDepth);
    return error;
}

heif_error HeifEncoder::addMetadata(heif_context* context, const heif_image_handle* handle) const
{
    const ImageProperties& properties = settings().properties;
    heif_error error = success;
    if (!properties.exif.empty())
        error = heif_context_add_exif_metadata(context, handle, properties.exif.data(),
                                               int(properties.exif.size()));
    if (error.code == heif_error_Ok && !properties.xmp.empty())
        error = heif_context_add_XMP_metadata(context, handle, properties.xmp.data(),
                                              int(properties.xmp.size()));
    return error;
}

heif_error HeifEncoder::write(heif_context*, const void* data, size_t size, void* sink)
{
    if (static_cast<ByteSink*>(sink)->write(data, size))
        return success;
    return {heif_error_Encoding_error, heif_suberror_Cannot_write_output_data, "write"};
}

Result<void> HeifEncoder::complete()
{
    const Owned<heif_context, heif_context_free> context(heif_context_alloc());
    heif_encoder* coder = nullptr;
    heif_error error = prepareCoder(context.get(), &coder);
    const Owned<heif_encoder, heif_encoder_release> ownedCoder(coder);
    heif_image_handle* handle = nullptr;
    if (error.code == heif_error_Ok)
        error = heif_context_encode_image(context.get(), m_image.get(), coder, nullptr, &handle);
    const Owned<heif_image_handle, releaseHandle> ownedHandle(handle);
    m_image.reset();
    if (error.code == heif_error_Ok)
        error = addMetadata(context.get(), handle);
    if (error.code != heif_error_Ok)
        return codingFailure();
    heif_writer writer = {1, write};
    error = heif_context_write(context.get(), &writer, &sink());
    if (error.code == heif_error_Ok)
        return {};
    return error.subcode == heif_suberror_Cannot_write_output_data ? sinkFailure()
                                                                   : codingFailure();
}

} // namespace

Result<std::unique_ptr<PictureEncoder>> makeHeifEncoder(const EncodeSettings& settings,
                                                        ByteSink& bytes)
{
    return begun<HeifEncoder>(settings, bytes);
}

} // namespace orvane

#else

namespace orvane {

Result<std::unique_ptr<PictureEncoder>> makeHeifEncoder(const EncodeSettings&, ByteSink&)
{
    return Error{"This build of Orvane does not write HEIC files."};
}

} // namespace orvane

#endif
