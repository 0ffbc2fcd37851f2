#pragma once

#include "PixelKernels.h"
#include "PixelRect.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace orvane {

/// Planar float pixels of a rectangle within a tile's scratch memory: a borrowed view. Row 0 is the
/// rectangle's lowest. A rectangle of an opaque picture has no alpha plane. With a stride of 0 all
/// rows are one: the row that is being drawn.
struct TilePlanes {
    PixelRect rect;
    float* plane[4] = {};
    std::ptrdiff_t stride = 0;

    bool opaque() const { return plane[3] == nullptr; }
    int channels() const { return opaque() ? 3 : 4; }
    float* row(int channel, int y) const { return plane[channel] + (y - rect.y0) * stride; }
    float* at(int channel, int x, int y) const { return row(channel, y) + (x - rect.x0); }
};

/// Scratch memory of one worker. Pieces are kept from tile to tile, so drawing allocates nothing
/// once the first tiles are through; and a piece that nobody holds any more is the first to be
/// handed out again, so a long chain of steps stays within a few pieces, in the second-level cache.
class TileArena {
public:
    TilePlanes planes(const PixelRect& rect, bool opaque);
    /// Planes of one row that stands for all of them.
    TilePlanes rowPlanes(const PixelRect& rect, bool opaque);
    float* floats(size_t count);

    /// The memory of the planes outlives `sweep` until it has been let go as often as held.
    void hold(const TilePlanes& planes);
    void letGo(const TilePlanes& planes);
    /// Takes back what nobody holds.
    void sweep();
    /// Takes back everything.
    void reset();

private:
    struct Piece {
        std::unique_ptr<float[]> memory;
        float* start = nullptr; ///< on a cache line
        size_t size = 0;
        int holders = 0;
        bool used = false;
        uint64_t takenBack = 0; ///< when, in sweeps
    };

    void grow(Piece& piece, size_t size);
    Piece* pieceOf(const float* address);

    std::vector<Piece> m_pieces;
    uint64_t m_sweeps = 0;
};

/// Floats of one of its planes.
size_t planeSize(const TilePlanes& planes);

/// An alpha plane of ones for planes that have none.
void addOpaqueAlpha(TilePlanes& planes, TileArena& arena);

/// `planes` seen as the rectangle `rect`: itself where it covers the rectangle, otherwise a copy
/// with zeros around it. Zeros are transparent, so such a copy always has an alpha plane.
TilePlanes coveringPlanes(const TilePlanes& planes, const PixelRect& rect, TileArena& arena);

/// The same with the edge pixels of `planes` repeated around it; `planes` must not be empty.
TilePlanes edgeRepeatedPlanes(const TilePlanes& planes, const PixelRect& rect, TileArena& arena);

} // namespace orvane
