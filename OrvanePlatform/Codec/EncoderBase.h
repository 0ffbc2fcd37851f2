#pragma once

#include "PictureEncoder.h"

namespace orvane {

/// What every format's encoder does alike: it counts the rows, remembers the first failure, refuses
/// to go on after one, and flushes the sink at the end.
class EncoderBase : public PictureEncoder {
public:
    EncoderBase(const EncodeSettings& settings, ByteSink& sink);

    PixelFormat format() const final { return m_format; }
    Result<void> writeRows(const uint8_t* rows, int count, size_t rowBytes) final;
    Result<void> finish() final;

protected:
    /// Rows that are known to lie inside the picture.
    virtual Result<void> encodeRows(const uint8_t* rows, int count, size_t rowBytes) = 0;
    /// Called once, after the last row.
    virtual Result<void> complete() = 0;

    const EncodeSettings& settings() const { return m_settings; }
    int channels() const;
    size_t pixelBytes() const;
    ByteSink& sink() { return m_sink; }
    /// The format's library could not do it; its own words are not for users.
    Error codingFailure() const;
    /// The sink's own reason.
    Error sinkFailure() const { return Error{m_sink.failure()}; }

private:
    Result<void> remembered(Result<void> result);

    EncodeSettings m_settings;
    ByteSink& m_sink;
    PixelFormat m_format;
    int m_rowsWritten = 0;
    bool m_finished = false;
    Result<void> m_state;
};

/// The four formats. Settings are valid when they come here: see makePictureEncoder. Each has
/// written everything ahead of the pixels, or failed, when it returns.
Result<std::unique_ptr<PictureEncoder>> makeJpegEncoder(const EncodeSettings&, ByteSink&);
Result<std::unique_ptr<PictureEncoder>> makePngEncoder(const EncodeSettings&, ByteSink&);
Result<std::unique_ptr<PictureEncoder>> makeTiffEncoder(const EncodeSettings&, ByteSink&);
Result<std::unique_ptr<PictureEncoder>> makeHeifEncoder(const EncodeSettings&, ByteSink&);

/// Makes an encoder that has a `Result<void> begin()`.
template <class Encoder>
Result<std::unique_ptr<PictureEncoder>> begun(const EncodeSettings& settings, ByteSink& sink)
{
    auto encoder = std::make_unique<Encoder>(settings, sink);
    if (Result<void> result = encoder->begin(); !result)
        return result.error();
    return std::unique_ptr<PictureEncoder>(std::move(encoder));
}

} // namespace orvane
