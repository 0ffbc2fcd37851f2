#pragma once

#include "CIImage.h"
#include "Result.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace orvane {

/// The image drawn once, at its working values, into memory of its own: what is made of the copy
/// does not go back to the sources. The image itself when its extent is infinite or empty.
CIImage drawnCopy(const CIImage& image);

/// A drawn copy whose long edge measures `longEdge` at most: Geometry::resized(), but a large image
/// is averaged down to some four times that size first. 20 megapixels to 64 pixels took 120 ms on
/// two cores, beside other work, where the resampling alone took 500; noise differs by three levels
/// at most.
CIImage reducedCopy(const CIImage& image, int longEdge);

/// The untouched pixels of one image of the open set: orientation applied, extent from (0, 0).
///
/// What is kept is the encoded file, and a copy of 64 pixels. The decoded picture lives as long as
/// somebody holds it and is decoded again when it is asked for after that: a hundred open images
/// take the memory of their files and of the one on screen. The file itself is not looked at again;
/// it may be on a card that is pulled.
///
/// Shared, and safe to use from any thread.
class SourcePixels {
public:
    using Bytes = std::vector<uint8_t>;
    struct Decoded {
        std::shared_ptr<const SourcePixels> pixels;
        CIImage image; ///< what pixels->image() gives without decoding, while this is held
    };
    /// Decodes, and fails with one sentence when the bytes are no picture.
    static Result<Decoded> decoded(Bytes bytes);

    /// The picture at its full size. Empty when there is no memory left to decode it again.
    CIImage image() const;
    /// The picture with a long edge of 64 pixels at most, for thumbnails.
    const CIImage& thumbBase() const { return m_thumbBase; }
    CGSize size() const { return m_size; }
    /// Bytes that the decoded picture takes.
    size_t decodedSize() const { return m_decodedSize; }
    /// What the user should know of the decoding; often empty.
    const std::string& note() const { return m_note; }

    SourcePixels(const SourcePixels&) = delete;
    SourcePixels& operator=(const SourcePixels&) = delete;

private:
    explicit SourcePixels(Bytes bytes)
        : m_bytes(std::move(bytes))
    {
    }

    const Bytes m_bytes;
    CIImage m_thumbBase;
    CGSize m_size;
    size_t m_decodedSize = 0;
    std::string m_note;
    mutable std::mutex m_mutex; ///< guards what follows
    mutable std::weak_ptr<const Node> m_decoded;
};

} // namespace orvane
