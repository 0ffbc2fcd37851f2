#include "Baker.h"

#include "Metadata.h"

namespace orvane::Baker {

namespace {

struct Named {
    Metadata metadata;
    std::string_view rawValue;
};
constexpr Named names[] = {
    {Metadata::keep, "keep"},
    {Metadata::stripLocation, "stripLocation"},
    {Metadata::stripAll, "stripAll"},
};

bool isDrawable(const CIImage& image)
{
    return !image.extent().isInfinite() && !image.extent().isEmpty();
}

/// Whether a pixel within the image's extent may have an alpha below 1.
bool hasTransparency(const CIImage& image)
{
    return !image.isOpaque();
}

int bitsPerSample(const FileSettings& settings)
{
    const bool sixteen = settings.format == EncodedFormat::Tiff
        || (settings.format == EncodedFormat::Png && settings.sixteenBit);
    return sixteen ? 16 : 8;
}

/// Hands rows on to an encoder and counts them.
class CountedRows final : public RowSink {
public:
    CountedRows(PictureEncoder& encoder, int height, const Progress& progress)
        : m_encoder(encoder)
        , m_height(height)
        , m_progress(progress)
    {
    }
    PixelFormat format() const override { return m_encoder.format(); }
    Result<void> writeRows(const uint8_t* rows, int count, size_t rowBytes) override
    {
        Result<void> written = m_encoder.writeRows(rows, count, rowBytes);
        m_done += count;
        if (written && m_progress)
            m_progress(double(m_done) / m_height);
        return written;
    }

private:
    PictureEncoder& m_encoder;
    int m_height;
    int m_done = 0;
    const Progress& m_progress;
};

Bytes encodedBytes(const CIImage& image, const FileSettings& settings)
{
    MemoryByteSink bytes;
    if (!encode(image, settings, bytes))
        return {};
    return bytes.take();
}

} // namespace

std::string_view rawValue(Metadata metadata)
{
    for (const Named& named : names) {
        if (named.metadata == metadata)
            return named.rawValue;
    }
    return {};
}

std::optional<Metadata> metadataWithRawValue(std::string_view text)
{
    for (const Named& named : names) {
        if (named.rawValue == text)
            return named.metadata;
    }
    return {};
}

CIContext& context()
{
    static CIContext shared;
    return shared;
}

std::optional<CGImage> cgImage(const CIImage& image, const DrawOptions& options)
{
    if (!isDrawable(image))
        return {};
    return context().createCGImage(image, image.extent(), options);
}

CIImage apply(const CIImage& image, Metadata metadata)
{
    switch (metadata) {
    case Metadata::keep:
        return image;
    case Metadata::stripLocation:
        return image.settingProperties(withoutLocation(image.properties()));
    case Metadata::stripAll:
        return image.settingProperties({});
    }
    return image;
}

Result<void> encode(const CIImage& image, const FileSettings& settings, ByteSink& bytes,
                    const DrawOptions& options, const Progress& progress)
{
    if (!isDrawable(image))
        return Error{"The image has no pixels to write."};
    const CGRect extent = image.extent();
    EncodeSettings file;
    file.format = settings.format;
    file.width = int(extent.width());
    file.height = int(extent.height());
    file.alpha = settings.format != EncodedFormat::Jpeg && hasTransparency(image);
    file.bits = bitsPerSample(settings);
    file.quality = settings.quality;
    file.properties = image.properties();

    auto encoder = makePictureEncoder(file, bytes);
    if (!encoder)
        return encoder.error();
    CountedRows rows(**encoder, file.height, progress);
    if (const Result<void> drawn = context().render(image, extent, rows, options); !drawn)
        return drawn;
    return (*encoder)->finish();
}

Bytes pngData(const CIImage& image, bool sixteenBit)
{
    return encodedBytes(image, {.format = EncodedFormat::Png, .sixteenBit = sixteenBit});
}

Bytes jpegData(const CIImage& image, double quality)
{
    return encodedBytes(image, {.format = EncodedFormat::Jpeg, .quality = quality});
}

Bytes heifData(const CIImage& image, double quality)
{
    return encodedBytes(image, {.format = EncodedFormat::Heif, .quality = quality});
}

Bytes tiff16Data(const CIImage& image)
{
    return encodedBytes(image, {.format = EncodedFormat::Tiff});
}

} // namespace orvane::Baker
