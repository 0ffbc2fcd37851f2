#include "PictureDecoder.h"

#include "ColorProfile.h"
#include "ExifReader.h"
#include "FormatDecoders.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane {

namespace {

struct Signature {
    size_t offset;
    std::string_view text;
    PictureFormat format;
};

// In the order of looking. What begins as TIFF may yet be RAW: see detectPictureFormat().
constexpr Signature signatures[] = {
    {0, std::string_view("\xff\xd8\xff", 3), PictureFormat::Jpeg},
    {0, std::string_view("\x89PNG\r\n\x1a\n", 8), PictureFormat::Png},
    {0, std::string_view("II*\0", 4), PictureFormat::Tiff},
    {0, std::string_view("MM\0*", 4), PictureFormat::Tiff},
    {0, std::string_view("II+\0\x08\0", 6), PictureFormat::Tiff}, // BigTIFF
    {0, std::string_view("MM\0+\0\x08", 6), PictureFormat::Tiff},
    {8, std::string_view("WEBP"), PictureFormat::WebP},
    {0, std::string_view("FUJIFILMCCD-RAW"), PictureFormat::Raw}, // raf
    {0, std::string_view("IIRO"), PictureFormat::Raw}, // orf
    {0, std::string_view("IIRS"), PictureFormat::Raw},
    {0, std::string_view("MMOR"), PictureFormat::Raw},
    {0, std::string_view("IIU\0", 4), PictureFormat::Raw}, // rw2, raw
    {6, std::string_view("HEAPCCDR"), PictureFormat::Raw}, // crw
    {0, std::string_view("\0MRM", 4), PictureFormat::Raw}, // mrw
};

struct Brand {
    std::string_view name;
    PictureFormat format;
};

constexpr Brand brands[] = {
    {"avif", PictureFormat::Avif}, {"avis", PictureFormat::Avif}, {"crx ", PictureFormat::Raw},
    {"heic", PictureFormat::Heif}, {"heix", PictureFormat::Heif}, {"heim", PictureFormat::Heif},
    {"heis", PictureFormat::Heif}, {"hevc", PictureFormat::Heif}, {"hevx", PictureFormat::Heif},
    {"mif1", PictureFormat::Heif}, {"msf1", PictureFormat::Heif},
};

/// The brands of an ISO base media file: the major one, then the compatible ones. The general
/// "mif1" counts only when none of a codec is named.
PictureFormat formatOfBrands(Bytes bytes)
{
    const ByteReader reader(bytes, true);
    const Bytes box = reader.range(0, std::min<uint32_t>(reader.u32(0), 1024));
    PictureFormat general = PictureFormat::Unknown;
    for (size_t at = 8; at + 4 <= box.size(); at += at == 8 ? 8 : 4) {
        for (const Brand& brand : brands) {
            if (!startsWith(box.subspan(at), brand.name))
                continue;
            if (brand.name != "mif1" && brand.name != "msf1")
                return brand.format;
            general = brand.format;
        }
    }
    return general;
}

struct Decoder {
    PictureFormat format;
    Result<DecoderOutput> (*decode)(Bytes bytes);
};

constexpr Decoder decoders[] = {
    {PictureFormat::Jpeg, decodeJpeg}, {PictureFormat::Png, decodePng},
    {PictureFormat::Tiff, decodeTiff}, {PictureFormat::Heif, decodeHeif},
    {PictureFormat::Avif, decodeHeif}, {PictureFormat::WebP, decodeWebP},
    {PictureFormat::Raw, decodeRaw},
};

Result<DecodedPicture> finished(DecoderOutput output, PictureFormat format)
{
    DecodedPicture picture;
    const ExifSummary exif = takeOrientation(output.properties.exif);
    neutralizeOrientation(output.properties.xmp);
    picture.orientation = output.orientation != 0 ? output.orientation : exif.orientation;
    auto bitmap = applyColor(output, exif.isAdobeRgb);
    if (!bitmap)
        return bitmap.error();
    picture.bitmap = std::move(*bitmap);
    picture.properties = std::move(output.properties);
    picture.format = format;
    picture.note = std::move(output.note);
    return picture;
}

class FileDescriptor {
public:
    explicit FileDescriptor(int number)
        : m_number(number)
    {
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor()
    {
        if (m_number >= 0)
            close(m_number);
    }
    int number() const { return m_number; }

private:
    int m_number;
};

Error systemFailure(int code)
{
    switch (code) {
    case ENOENT:
        return Error{"The file is no longer there."};
    case EACCES:
    case EPERM:
        return Error{"You do not have the right to read this file."};
    default:
        return Error{std::string("The file cannot be read: ") + std::strerror(code) + "."};
    }
}

/// Reads on until `size` bytes are filled or the file ends.
Result<void> readUpTo(int file, uint8_t* bytes, size_t size, size_t& filled)
{
    while (filled < size) {
        const ssize_t count = read(file, bytes + filled, size - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return systemFailure(errno);
        if (count == 0)
            break;
        filled += size_t(count);
    }
    return {};
}

} // namespace

PictureFormat detectPictureFormat(std::span<const uint8_t> bytes)
{
    if (bytes.size() >= 12 && startsWith(bytes.subspan(4), "ftyp"))
        return formatOfBrands(bytes);
    for (const Signature& signature : signatures) {
        if (bytes.size() <= signature.offset
            || !startsWith(bytes.subspan(signature.offset), signature.text))
            continue;
        if (signature.format == PictureFormat::WebP && !startsWith(bytes, "RIFF"))
            continue;
        if (signature.format == PictureFormat::Tiff && holdsMosaic(bytes))
            return PictureFormat::Raw;
        return signature.format;
    }
    return PictureFormat::Unknown;
}

Result<DecodedPicture> decodePicture(std::span<const uint8_t> bytes)
{
    if (bytes.empty())
        return Error{sentence::empty};
    try {
        const PictureFormat format = detectPictureFormat(bytes);
        for (const Decoder& decoder : decoders) {
            if (decoder.format != format)
                continue;
            auto output = decoder.decode(bytes);
            if (!output)
                return output.error();
            return finished(std::move(*output), format);
        }
        return Error{sentence::notAPicture};
    } catch (const std::bad_alloc&) {
        return Error{sentence::noMemory};
    } catch (const std::exception&) {
        return Error{sentence::damaged};
    }
}

Result<DecodedPicture> decodePictureFile(const std::filesystem::path& path)
{
    // Not blocking: a named pipe under a picture's name must not hold the editor.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.number() < 0)
        return systemFailure(errno);
    struct stat status { };
    if (fstat(file.number(), &status) != 0)
        return systemFailure(errno);
    if (!S_ISREG(status.st_mode))
        return Error{sentence::notAPicture};
    const size_t size = size_t(status.st_size);
    // The first bytes tell what needs no more reading.
    std::vector<uint8_t> start(std::min(size, size_t(1) << 16));
    size_t filled = 0;
    if (auto done = readUpTo(file.number(), start.data(), start.size(), filled); !done)
        return done.error();
    if (filled > 0 && detectPictureFormat({start.data(), filled}) == PictureFormat::Unknown)
        return Error{sentence::notAPicture};
    if (size > memoryBudget())
        return Error{"The file is larger than this computer's memory can hold."};
    // Read, not mapped: a mapped file that another program shortens ends this one.
    const std::unique_ptr<uint8_t[]> bytes(new (std::nothrow) uint8_t[size + 1]);
    if (!bytes)
        return Error{sentence::noMemory};
    std::copy_n(start.begin(), filled, bytes.get());
    if (auto done = readUpTo(file.number(), bytes.get(), size, filled); !done)
        return done.error();
    return decodePicture({bytes.get(), filled});
}

} // namespace orvane
