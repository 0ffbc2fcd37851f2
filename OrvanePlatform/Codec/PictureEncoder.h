#pragma once

#include "ImageProperties.h"
#include "Result.h"
#include "RowSink.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace orvane {

/// Where encoded bytes go. Seeking is needed by TIFF only.
class ByteSink {
public:
    virtual ~ByteSink() = default;
    virtual bool write(const void* data, size_t size) = 0;
    virtual bool seek(uint64_t position) = 0;
    virtual uint64_t position() const = 0;
    virtual uint64_t size() const = 0;
    /// Reads back what was written, from the position on; the number of bytes read.
    virtual size_t read(void* data, size_t size) = 0;
    /// Hands on what is still buffered; false when that, or any write before it, failed.
    virtual bool flush() { return true; }
    /// Why the sink refused, as one sentence.
    virtual std::string failure() const { return "The file could not be written."; }
};

/// Bytes in memory.
class MemoryByteSink final : public ByteSink {
public:
    bool write(const void* data, size_t size) override;
    bool seek(uint64_t position) override;
    uint64_t position() const override { return m_position; }
    uint64_t size() const override { return m_bytes.size(); }
    size_t read(void* data, size_t size) override;
    std::vector<uint8_t> take() { return std::move(m_bytes); }

private:
    std::vector<uint8_t> m_bytes;
    uint64_t m_position = 0;
};

/// Bytes in a file that is open for reading and writing; the caller owns it. The first byte goes to
/// the start of the file. What was not flushed when the sink is destroyed is lost: the caller may
/// have closed the file by then, and its number may belong to another.
class FileByteSink final : public ByteSink {
public:
    explicit FileByteSink(int fileDescriptor);
    bool write(const void* data, size_t size) override;
    bool seek(uint64_t position) override;
    uint64_t position() const override { return m_position; }
    uint64_t size() const override { return m_size; }
    size_t read(void* data, size_t size) override;
    bool flush() override;
    std::string failure() const override;

private:
    bool writeOut(const uint8_t* data, size_t size, uint64_t position);

    int m_fileDescriptor;
    int m_error = 0; // errno of the first failure; nothing is written after it
    uint64_t m_position = 0;
    uint64_t m_size = 0;
    uint64_t m_bufferPosition = 0;
    std::vector<uint8_t> m_buffer;
};

enum class EncodedFormat { Jpeg, Png, Heif, Tiff };

struct EncodeSettings {
    EncodedFormat format = EncodedFormat::Jpeg;
    int width = 0;
    int height = 0;
    bool alpha = false; ///< the picture has transparent pixels; JPEG ignores it
    int bits = 8; ///< 8 or 16; JPEG and HEIF take 8 only
    double quality = 0.9; ///< 0..1, JPEG and HEIF
    ImageProperties properties = {}; ///< written as preparedForExport makes them
};

/// Takes the rows of a picture and writes a file of it, sRGB embedded. JPEG, PNG and TIFF are
/// written as the rows come, so memory does not grow with the picture. HEIF is coded as a whole:
/// its encoder holds every row (3 or 4 bytes a pixel, and about as much again inside the coder)
/// until finish().
class PictureEncoder : public RowSink {
public:
    /// After the last row; flushes the sink. Without it the file is not complete.
    /// Fails when rows are missing, or when the sink refused any byte.
    virtual Result<void> finish() = 0;
};

/// The encoder writes into `bytes`, which must outlive it. Fails when the format cannot hold the
/// picture (a JPEG of more than 65,500 pixels a side, or 16 bits in a format of 8, say).
Result<std::unique_ptr<PictureEncoder>> makePictureEncoder(const EncodeSettings& settings,
                                                           ByteSink& bytes);

} // namespace orvane
