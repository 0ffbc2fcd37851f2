#pragma once

#include "CIImage.h"
#include "PixelMemory.h"
#include "Result.h"
#include "RowSink.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// Asked between the rows of a tile by a running draw; cancel() may come from any thread.
class CancellationToken {
public:
    void cancel() { m_cancelled.store(true, std::memory_order_relaxed); }
    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_cancelled = false;
};

/// A drawn picture: rows from the top, 8 bits a channel.
struct CGImage {
    int width = 0;
    int height = 0;
    PixelFormat format = PixelFormat::BGRX8;
    size_t rowBytes = 0;
    PixelMemory pixels;
};

/// One walk over an image, as a draw saw it.
struct PassStatistics {
    std::string operations; ///< in the order of drawing
    double megapixels = 0; ///< drawn; of a reduced blur, cells
    double storedMegabytes = 0; ///< of the window that it draws into
    double milliseconds = 0; ///< of all workers, summed
};

/// What one draw did: for tests, benchmarks and the curious.
struct DrawStatistics {
    int passes = 0; ///< fused walks over an image; the blurs of reduced ones are not counted
    int storedImages = 0; ///< intermediates drawn into memory; averages are not counted
    int reusedImages = 0; ///< intermediates taken from the cache
    size_t peakStoredBytes = 0;
    std::vector<PassStatistics> passTimes;
    double drawMilliseconds = 0; ///< the whole draw, wall time
    double sinkMilliseconds = 0; ///< of it, within the sink; other workers go on drawing meanwhile
};

struct DrawOptions {
    const CancellationToken* cancellation = nullptr;
    /// Keep drawn intermediates for later draws (previews), or free each after its last use
    /// (exports).
    bool keepIntermediates = false;
    DrawStatistics* statistics = nullptr;
};

/// Draws recipes with the tiled renderer. May be used from several threads at once.
class CIContext {
public:
    struct Options {
        int threads = 0; ///< 0: as many as the machine has
        int tileWidth = 0; ///< 0: chosen by the planner
        int tileHeight = 0;
        size_t cacheBytes = size_t(768) << 20; ///< budget of the kept intermediates
        uint64_t shuffleSeed = 0; ///< not 0: tiles in a random order, which must not matter
    };

    CIContext();
    explicit CIContext(const Options& options);
    ~CIContext();
    CIContext(const CIContext&) = delete;
    CIContext& operator=(const CIContext&) = delete;

    /// The image over `rect` (its edges rounded to whole pixels) into a bitmap, BGRX8 where the
    /// image is opaque and BGRA8Premultiplied otherwise. Absent when the rectangle is infinite or
    /// empty, or the draw was cancelled.
    std::optional<CGImage> createCGImage(const CIImage& image, const CGRect& rect,
                                         const DrawOptions& options = {}) const;

    /// `bounds` of the image into a caller's buffer, rows from the top. The origin of the bounds is
    /// floored; what lies outside the image reads as zeros. False when cancelled.
    bool render(const CIImage& image, void* bitmap, size_t rowBytes, const CGRect& bounds,
                PixelFormat format, const DrawOptions& options = {}) const;

    /// The rows of `rect` into the sink, from the top, as they become finished.
    /// Fails with the sink's own error, or with "Cancelled.".
    Result<void> render(const CIImage& image, const CGRect& rect, RowSink& sink,
                        const DrawOptions& options = {}) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace orvane
