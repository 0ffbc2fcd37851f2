#pragma once

#include "PixelKernels.h"
#include "PixelRect.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace orvane {

/// Planar float pixels of a rectangle within a tile's scratch memory: a borrowed view. Row 0 is the
/// rectangle's lowest. A rectangle of an opaque picture has no alpha plane.
struct TilePlanes {
    PixelRect rect;
    float* plane[4] = {};
    std::ptrdiff_t stride = 0;

    bool opaque() const { return plane[3] == nullptr; }
    int channels() const { return opaque() ? 3 : 4; }
    float* row(int channel, int y) const { return plane[channel] + (y - rect.y0) * stride; }
    float* at(int channel, int x, int y) const { return row(channel, y) + (x - rect.x0); }
};

/// Scratch memory of one worker, handed out front to back and taken back all at once. Blocks are
/// kept from tile to tile, so drawing allocates nothing once the first tiles are through.
class TileArena {
public:
    TilePlanes planes(const PixelRect& rect, bool opaque);
    float* floats(size_t count);
    double* doubles(size_t count);
    void reset();

private:
    struct Block {
        std::unique_ptr<float[]> memory;
        size_t size = 0;
        size_t used = 0;
    };
    std::vector<Block> m_blocks;
};

/// An alpha plane of ones for planes that have none.
void addOpaqueAlpha(TilePlanes& planes, TileArena& arena);

/// `planes` seen as the rectangle `rect`: itself where it covers the rectangle, otherwise a copy
/// with zeros around it. Zeros are transparent, so such a copy always has an alpha plane.
TilePlanes coveringPlanes(const TilePlanes& planes, const PixelRect& rect, TileArena& arena);

/// The same with the edge pixels of `planes` repeated around it; `planes` must not be empty.
TilePlanes edgeRepeatedPlanes(const TilePlanes& planes, const PixelRect& rect, TileArena& arena);

} // namespace orvane
