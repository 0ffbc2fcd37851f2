#include "EncoderBase.h"
#include "SrgbProfile.h"

#include <bit>
#include <csetjmp>

#include <png.h>
#include <zlib.h>

namespace orvane {

namespace {

// 20 megapixels of a photograph (nuthatch, edited), one thread of a 2.5 GHz Xeon, time and size:
//                          8 bits              16 bits
//   level 6, Paeth         9.4 s, 23.9 MB      12.0 s, 83.8 MB     the library's usual choice
//   level 1, Sub           1.5 s, 28.0 MB       4.1 s, 82.3 MB
//   level 1, Paeth, runs   1.8 s, 23.4 MB       3.6 s, 84.1 MB
//   level 1, Sub, runs     1.6 s, 25.3 MB       2.2 s, 84.8 MB
//   level 1, Sub, Huffman  1.0 s, 26.4 MB       2.3 s, 86.3 MB
// Photographs have next to no repeated strings: looking for runs only (Z_RLE) loses nothing and
// saves the search, and still folds the flat parts of drawings and frames.
constexpr int compressionLevel = 1;
constexpr int compressionStrategy = Z_RLE;
constexpr int filterFor8Bits = PNG_FILTER_PAETH;
constexpr int filterFor16Bits = PNG_FILTER_SUB;

class PngEncoder final : public EncoderBase {
public:
    PngEncoder(const EncodeSettings& settings, ByteSink& bytes)
        : EncoderBase(settings, bytes)
    {
    }
    ~PngEncoder() override { png_destroy_write_struct(&m_png, &m_info); }

    Result<void> begin() { return start() ? Result<void>() : failure(); }

protected:
    Result<void> encodeRows(const uint8_t* rows, int count, size_t rowBytes) override
    {
        return writeScanlines(rows, count, rowBytes) ? Result<void>() : failure();
    }
    Result<void> complete() override { return end() ? Result<void>() : failure(); }

private:
    Error failure() const { return m_sinkFailed ? sinkFailure() : codingFailure(); }
    static void fail(png_structp png, const char*);
    static void ignore(png_structp, const char*) { }
    static void write(png_structp png, png_bytep data, size_t size);
    static void flush(png_structp) { }

    // The three that call the library hold nothing that a jump past their end would leave
    // undestroyed.
    bool start();
    bool writeScanlines(const uint8_t* rows, int count, size_t rowBytes);
    bool end();
    void setMetadata();

    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    bool m_sinkFailed = false;
};

void PngEncoder::fail(png_structp png, const char*)
{
    png_longjmp(png, 1);
}

void PngEncoder::write(png_structp png, png_bytep data, size_t size)
{
    auto* self = static_cast<PngEncoder*>(png_get_io_ptr(png));
    if (!self->sink().write(data, size)) {
        self->m_sinkFailed = true;
        png_longjmp(png, 1);
    }
}

bool PngEncoder::start()
{
    m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, fail, ignore);
    m_info = m_png != nullptr ? png_create_info_struct(m_png) : nullptr;
    if (m_info == nullptr)
        return false;
    if (setjmp(png_jmpbuf(m_png)) != 0)
        return false;
    png_set_write_fn(m_png, this, write, flush);
    png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(m_png, m_info, png_uint_32(settings().width), png_uint_32(settings().height),
                 settings().bits, settings().alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(m_png, compressionLevel);
    png_set_compression_strategy(m_png, compressionStrategy);
    png_set_compression_buffer_size(m_png, size_t(1) << 17);
    png_set_filter(m_png, 0, settings().bits == 16 ? filterFor16Bits : filterFor8Bits);
    setMetadata();
    png_write_info(m_png, m_info);
    if (settings().bits == 16 && std::endian::native == std::endian::little)
        png_set_swap(m_png);
    return true;
}

// PNG allows either iCCP or sRGB; the profile is what every reader takes. IPTC has no chunk of its
// own; its readers look into XMP.
void PngEncoder::setMetadata()
{
    const std::vector<uint8_t>& profile = srgbProfile();
    png_set_iCCP(m_png, m_info, "sRGB", PNG_COMPRESSION_TYPE_BASE, profile.data(),
                 png_uint_32(profile.size()));
    const ImageProperties& properties = settings().properties;
    if (!properties.exif.empty())
        png_set_eXIf_1(m_png, m_info, png_uint_32(properties.exif.size()),
                       const_cast<png_bytep>(properties.exif.data()));
    if (!properties.xmp.empty()) {
        png_text text = {};
        text.compression = PNG_ITXT_COMPRESSION_NONE;
        text.key = const_cast<png_charp>("XML:com.adobe.xmp");
        text.text = const_cast<png_charp>(properties.xmp.c_str());
        text.itxt_length = properties.xmp.size();
        text.lang = const_cast<png_charp>("");
        text.lang_key = const_cast<png_charp>("");
        png_set_text(m_png, m_info, &text, 1);
    }
}

bool PngEncoder::writeScanlines(const uint8_t* rows, int count, size_t rowBytes)
{
    if (setjmp(png_jmpbuf(m_png)) != 0)
        return false;
    for (int i = 0; i < count; ++i)
        png_write_row(m_png, rows + size_t(i) * rowBytes);
    return true;
}

bool PngEncoder::end()
{
    if (setjmp(png_jmpbuf(m_png)) != 0)
        return false;
    png_write_end(m_png, nullptr); // everything but the pixels went ahead of them
    return true;
}

} // namespace

Result<std::unique_ptr<PictureEncoder>> makePngEncoder(const EncodeSettings& settings,
                                                       ByteSink& bytes)
{
    return begun<PngEncoder>(settings, bytes);
}

} // namespace orvane
