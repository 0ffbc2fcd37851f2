#include "EncoderBase.h"
#include "ExifBlock.h"
#include "IfdWriter.h"
#include "SrgbProfile.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

#include <tiffio.h>

namespace orvane {

namespace {

// 20 megapixels of 16 bits, one thread of a 2.5 GHz Xeon, time and size:
//   none                           0.16 s, 123 MB
//   LZW, differences               2.2 s,   93 MB
//   Deflate level 1, differences   4.8 s,   89 MB   (more at higher levels: up to 6.6 s)
// The low bytes of real pictures do not compress, so a quarter of the size costs fourteen times the
// time; uncompressed is also what every program reads.
constexpr uint16_t compression = COMPRESSION_NONE;

// Rows of one strip make about this many bytes: few strips, and little memory.
constexpr size_t stripBytes = size_t(1) << 20;

// Offsets of a classic file end at 4 GB; the rest is for the directory and the metadata.
constexpr uint64_t classicLimit = 3'900'000'000;

tmsize_t readBytes(thandle_t handle, void* data, tmsize_t size)
{
    return tmsize_t(static_cast<ByteSink*>(handle)->read(data, size_t(size)));
}

tmsize_t writeBytes(thandle_t handle, void* data, tmsize_t size)
{
    return static_cast<ByteSink*>(handle)->write(data, size_t(size)) ? size : -1;
}

toff_t seekBytes(thandle_t handle, toff_t offset, int from)
{
    auto& sink = *static_cast<ByteSink*>(handle);
    if (from == SEEK_CUR)
        offset += sink.position();
    else if (from == SEEK_END)
        offset += sink.size();
    return sink.seek(offset) ? offset : toff_t(-1);
}

int closeBytes(thandle_t)
{
    return 0;
}

toff_t sizeOfBytes(thandle_t handle)
{
    return static_cast<ByteSink*>(handle)->size();
}

// The groups of the parser that become directories of their own, less what only makes sense at its
// old place: the maker's notes with their own offsets, and the pointer to interoperability.
std::vector<IfdEntry> directoryEntries(const Exiv2::ExifData& data, const char* group)
{
    std::vector<IfdEntry> entries;
    for (const Exiv2::Exifdatum& datum : data) {
        if (datum.groupName() != group || datum.tag() == 0x927c || datum.tag() == 0xa005)
            continue;
        IfdEntry entry;
        entry.tag = datum.tag();
        entry.type = uint16_t(datum.typeId());
        entry.count = datum.count();
        entry.value.resize(size_t(datum.size()));
        datum.copy(entry.value.data(), Exiv2::littleEndian);
        if (entry.type >= 1 && entry.type <= 13 && entry.count > 0)
            entries.push_back(std::move(entry));
    }
    return entries;
}

struct TextTag {
    const char* key;
    uint32_t tag;
};

// What a first directory says in words; the rest of it describes pixels, and the encoder writes
// that.
constexpr std::array<TextTag, 9> textTags = {{
    {"Exif.Image.DocumentName", TIFFTAG_DOCUMENTNAME},
    {"Exif.Image.ImageDescription", TIFFTAG_IMAGEDESCRIPTION},
    {"Exif.Image.Make", TIFFTAG_MAKE},
    {"Exif.Image.Model", TIFFTAG_MODEL},
    {"Exif.Image.Software", TIFFTAG_SOFTWARE},
    {"Exif.Image.DateTime", TIFFTAG_DATETIME},
    {"Exif.Image.Artist", TIFFTAG_ARTIST},
    {"Exif.Image.HostComputer", TIFFTAG_HOSTCOMPUTER},
    {"Exif.Image.Copyright", TIFFTAG_COPYRIGHT},
}};

class TiffEncoder final : public EncoderBase {
public:
    TiffEncoder(const EncodeSettings& settings, ByteSink& bytes)
        : EncoderBase(settings, bytes)
    {
    }
    ~TiffEncoder() override
    {
        // Without the directory, which an unfinished file has no use for.
        if (m_tiff != nullptr)
            TIFFCleanup(m_tiff);
    }

    Result<void> begin();

protected:
    Result<void> encodeRows(const uint8_t* rows, int count, size_t rowBytes) override;
    Result<void> complete() override;

private:
    static int ignore(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    bool isBig() const;
    bool open();
    void describePixels();
    void writeBlocks();
    void setResolution(double x, double y, uint16_t unit);
    void adoptResolution(const Exiv2::ExifData& data);
    Result<void> writeExif();
    Result<void> flushStrip();

    TIFF* m_tiff = nullptr;
    std::vector<uint8_t> m_strip;
    size_t m_stripCapacity = 0;
    uint32_t m_stripIndex = 0;
};

bool TiffEncoder::isBig() const
{
    return uint64_t(settings().width) * uint64_t(settings().height) * pixelBytes() > classicLimit;
}

bool TiffEncoder::open()
{
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, ignore, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, ignore, nullptr);
    m_tiff = TIFFClientOpenExt("picture", isBig() ? "wl8" : "wl", &sink(), readBytes, writeBytes,
                               seekBytes, closeBytes, sizeOfBytes, nullptr, nullptr, options);
    TIFFOpenOptionsFree(options);
    return m_tiff != nullptr;
}

Result<void> TiffEncoder::begin()
{
    if (!open())
        return sinkFailure();
    describePixels();
    writeBlocks();
    return writeExif();
}

void TiffEncoder::describePixels()
{
    const size_t rowBytes = size_t(settings().width) * pixelBytes();
    const size_t rows = std::clamp<size_t>(stripBytes / rowBytes, 1, size_t(settings().height));
    m_stripCapacity = rows * rowBytes;
    TIFFSetField(m_tiff, TIFFTAG_IMAGEWIDTH, uint32_t(settings().width));
    TIFFSetField(m_tiff, TIFFTAG_IMAGELENGTH, uint32_t(settings().height));
    TIFFSetField(m_tiff, TIFFTAG_BITSPERSAMPLE, settings().bits);
    TIFFSetField(m_tiff, TIFFTAG_SAMPLESPERPIXEL, channels());
    TIFFSetField(m_tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    TIFFSetField(m_tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(m_tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(m_tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(m_tiff, TIFFTAG_ROWSPERSTRIP, uint32_t(rows));
    TIFFSetField(m_tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    setResolution(72, 72, RESUNIT_INCH); // the format asks for one
    if (settings().alpha) {
        const uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(m_tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
}

void TiffEncoder::writeBlocks()
{
    const ImageProperties& properties = settings().properties;
    TIFFSetField(m_tiff, TIFFTAG_ICCPROFILE, uint32_t(srgbProfile().size()), srgbProfile().data());
    if (!properties.xmp.empty())
        TIFFSetField(m_tiff, TIFFTAG_XMLPACKET, uint32_t(properties.xmp.size()),
                     properties.xmp.data());
    if (!properties.iptc.empty()) {
        // Versions of the library count the tag in 32-bit words or in bytes; readers pass over
        // zeros.
        std::vector<uint8_t> padded = properties.iptc;
        padded.resize((padded.size() + 3) / 4 * 4);
        const TIFFField* field = TIFFFieldWithTag(m_tiff, TIFFTAG_RICHTIFFIPTC);
        const bool words = field != nullptr && TIFFFieldDataType(field) == TIFF_LONG;
        TIFFSetField(m_tiff, TIFFTAG_RICHTIFFIPTC, uint32_t(padded.size() / (words ? 4 : 1)),
                     padded.data());
    }
}

// The directories go between the file's header and its pixels. They are written here and not by the
// library's custom directories, which would turn exact fractions ("1/8000 s") into floats and back.
Result<void> TiffEncoder::writeExif()
{
    const std::optional<ExifBlock> exif = parsedExif(settings().properties.exif);
    if (!exif)
        return {};
    for (const TextTag& text : textTags) {
        const auto at = exif->data.findKey(Exiv2::ExifKey(text.key));
        if (at != exif->data.end() && at->count() > 0)
            TIFFSetField(m_tiff, text.tag, at->toString().c_str());
    }
    adoptResolution(exif->data);
    const TiffKind kind = isBig() ? TiffKind::Big : TiffKind::Classic;
    for (const auto& [group, tag] : {std::pair{"Photo", uint32_t(TIFFTAG_EXIFIFD)},
                                     std::pair{"GPSInfo", uint32_t(TIFFTAG_GPSIFD)}}) {
        std::vector<IfdEntry> entries = directoryEntries(exif->data, group);
        if (entries.empty())
            continue;
        const auto offset = appendIfd(sink(), std::move(entries), kind);
        if (!offset)
            return sinkFailure();
        TIFFSetField(m_tiff, tag, *offset);
    }
    return {};
}

// Dots an inch or a centimetre, as the old file had them.
void TiffEncoder::adoptResolution(const Exiv2::ExifData& data)
{
    const auto number = [&](const char* key) {
        const auto at = data.findKey(Exiv2::ExifKey(key));
        return at != data.end() && at->count() > 0 ? double(at->toFloat()) : 0.0;
    };
    const double x = number("Exif.Image.XResolution");
    const double y = number("Exif.Image.YResolution");
    const double unit = number("Exif.Image.ResolutionUnit");
    if (!(x > 0) || !(y > 0) || (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER))
        return;
    setResolution(x, y, uint16_t(unit));
}

void TiffEncoder::setResolution(double x, double y, uint16_t unit)
{
    TIFFSetField(m_tiff, TIFFTAG_XRESOLUTION, x);
    TIFFSetField(m_tiff, TIFFTAG_YRESOLUTION, y);
    TIFFSetField(m_tiff, TIFFTAG_RESOLUTIONUNIT, unit);
}

Result<void> TiffEncoder::encodeRows(const uint8_t* rows, int count, size_t rowBytes)
{
    const size_t size = size_t(settings().width) * pixelBytes();
    for (int i = 0; i < count; ++i) {
        const uint8_t* row = rows + size_t(i) * rowBytes;
        m_strip.insert(m_strip.end(), row, row + size);
        if (m_strip.size() < m_stripCapacity)
            continue;
        if (Result<void> result = flushStrip(); !result)
            return result;
    }
    return {};
}

Result<void> TiffEncoder::flushStrip()
{
    const tmsize_t size = tmsize_t(m_strip.size());
    if (TIFFWriteEncodedStrip(m_tiff, m_stripIndex++, m_strip.data(), size) != size)
        return sinkFailure();
    m_strip.clear();
    return {};
}

Result<void> TiffEncoder::complete()
{
    if (!m_strip.empty())
        if (Result<void> result = flushStrip(); !result)
            return result;
    if (TIFFWriteDirectory(m_tiff) != 1)
        return sinkFailure();
    TIFFCleanup(m_tiff);
    m_tiff = nullptr;
    return {};
}

} // namespace

Result<std::unique_ptr<PictureEncoder>> makeTiffEncoder(const EncodeSettings& settings,
                                                        ByteSink& bytes)
{
    return begun<TiffEncoder>(settings, bytes);
}

} // namespace orvane
