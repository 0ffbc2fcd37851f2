#include "PictureEncoder.h"

#include "EncoderBase.h"
#include "Metadata.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orvane {

namespace {

struct FormatRow {
    EncodedFormat format;
    const char* name;
    int longestSide;
    bool deep; // takes 16 bits
    bool alpha;
    Result<std::unique_ptr<PictureEncoder>> (*make)(const EncodeSettings&, ByteSink&);
};

// JPEG's own limit is 65,535, its library's 65,500. HEIF's readers commonly refuse more than
// 16,384. PNG's is the format's, 2^31 - 1, which TIFF passes.
constexpr int unlimited = std::numeric_limits<int>::max();
constexpr std::array<FormatRow, 4> formats = {{
    {EncodedFormat::Jpeg, "JPEG", 65500, false, false, makeJpegEncoder},
    {EncodedFormat::Png, "PNG", unlimited, true, true, makePngEncoder},
    {EncodedFormat::Heif, "HEIC", 16384, false, true, makeHeifEncoder},
    {EncodedFormat::Tiff, "TIFF", unlimited, true, true, makeTiffEncoder},
}};

// 65500 as "65,500".
std::string grouped(int number)
{
    std::string digits = std::to_string(number);
    for (int at = int(digits.size()) - 3; at > 0; at -= 3)
        digits.insert(size_t(at), ",");
    return digits;
}

PixelFormat pixelFormat(bool alpha, int bits)
{
    if (bits == 16)
        return alpha ? PixelFormat::RGBA16 : PixelFormat::RGB16;
    return alpha ? PixelFormat::RGBA8 : PixelFormat::RGB8;
}

} // namespace

Result<std::unique_ptr<PictureEncoder>> makePictureEncoder(const EncodeSettings& settings,
                                                           ByteSink& bytes)
{
    const auto row = std::find_if(formats.begin(), formats.end(), [&](const FormatRow& candidate) {
        return candidate.format == settings.format;
    });
    if (row == formats.end())
        return Error{"This picture format is not known."};
    const std::string name = row->name;
    if (settings.width < 1 || settings.height < 1)
        return Error{"The picture is empty."};
    if (std::max(settings.width, settings.height) > row->longestSide)
        return Error{"A " + name + " file holds at most " + grouped(row->longestSide)
                     + " pixels a side."};
    if (settings.bits != 8 && settings.bits != 16)
        return Error{"A picture is written with 8 or 16 bits a channel."};
    if (settings.bits == 16 && !row->deep)
        return Error{name + " files hold 8 bits a channel, not 16."};

    EncodeSettings adopted = settings;
    adopted.alpha = settings.alpha && row->alpha;
    adopted.quality = std::isnan(settings.quality) ? 0.9 : std::clamp(settings.quality, 0.0, 1.0);
    adopted.properties = preparedForExport(settings.properties, settings.width, settings.height);
    return row->make(adopted, bytes);
}

EncoderBase::EncoderBase(const EncodeSettings& settings, ByteSink& sink)
    : m_settings(settings)
    , m_sink(sink)
    , m_format(pixelFormat(settings.alpha, settings.bits))
{
}

int EncoderBase::channels() const
{
    return m_settings.alpha ? 4 : 3;
}

size_t EncoderBase::pixelBytes() const
{
    return size_t(channels()) * size_t(m_settings.bits / 8);
}

Result<void> EncoderBase::remembered(Result<void> result)
{
    if (!result)
        m_state = result;
    return result;
}

Result<void> EncoderBase::writeRows(const uint8_t* rows, int count, size_t rowBytes)
{
    if (!m_state)
        return m_state;
    if (m_finished || count < 0 || count > m_settings.height - m_rowsWritten)
        return remembered(Error{"More rows came than the picture has."});
    m_rowsWritten += count;
    return remembered(encodeRows(rows, count, rowBytes));
}

Result<void> EncoderBase::finish()
{
    if (!m_state || m_finished)
        return m_state;
    m_finished = true;
    if (m_rowsWritten != m_settings.height)
        return remembered(Error{"The picture is not complete: rows are missing."});
    if (Result<void> result = complete(); !result)
        return remembered(result);
    if (!m_sink.flush())
        return remembered(Error{m_sink.failure()});
    return {};
}

Error EncoderBase::codingFailure() const
{
    const auto row = std::find_if(formats.begin(), formats.end(), [&](const FormatRow& candidate) {
        return candidate.format == m_settings.format;
    });
    const std::string depth =
        m_settings.format == EncodedFormat::Tiff && m_settings.bits == 16 ? " (16-bit)" : "";
    return Error{"The image couldn't be encoded as " + std::string(row->name) + depth + "."};
}

} // namespace orvane
