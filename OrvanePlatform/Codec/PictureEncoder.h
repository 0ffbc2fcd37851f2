#pragma once

#include "ImageProperties.h"
#include "Result.h"
#include "RowSink.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
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

/// Bytes in a file that is open for reading and writing; the caller owns it.
class FileByteSink final : public ByteSink {
public:
    explicit FileByteSink(int fileDescriptor);
    ~FileByteSink() override;
    bool write(const void* data, size_t size) override;
    bool seek(uint64_t position) override;
    uint64_t position() const override { return m_position; }
    uint64_t size() const override { return m_size; }
    size_t read(void* data, size_t size) override;
    /// Writes out what is buffered; false when the disk refused it. Call it before closing the file.
    bool flush();

private:
    int m_fileDescriptor;
    uint64_t m_position = 0;
    uint64_t m_size = 0;
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
    ImageProperties properties;
};

/// Takes the rows of a picture and writes a file of it, sRGB embedded.
class PictureEncoder : public RowSink {
public:
    /// After the last row. Without it the file is not complete.
    virtual Result<void> finish() = 0;
};

/// The encoder writes into `bytes`, which must outlive it. Fails when the format cannot hold the
/// picture (a JPEG of more than 65,500 pixels a side, say).
Result<std::unique_ptr<PictureEncoder>> makePictureEncoder(const EncodeSettings& settings,
                                                           ByteSink& bytes);

} // namespace orvane
