#pragma once

#include "PixelKernels.h"
#include "PixelMemory.h"
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
    /// Where the memory is from: pieces of a TileArena, or elsewhere.
    static constexpr int noPiece = -1;
    int piece[4] = {noPiece, noPiece, noPiece, noPiece};

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
    /// Memory for a plane that has none yet.
    void addPlane(TilePlanes& planes, int channel);
    float* floats(size_t count) { return m_pieces[take(count)].start; }

    /// The memory of the planes outlives `sweep` until it has been let go as often as held.
    void hold(const TilePlanes& planes);
    void letGo(const TilePlanes& planes);
    /// Takes back what nobody holds.
    void sweep();
    /// Takes back everything.
    void reset();

private:
    struct Piece {
        PixelMemory memory;
        float* start = nullptr; ///< on a cache line
        size_t size = 0;
        int holders = 0;
    };

    size_t take(size_t count);
    void grow(size_t piece, size_t size);

    std::vector<Piece> m_pieces;
    std::vector<size_t> m_used;
    /// The last taken back is the last. Rows and planes are kept apart: a row would take a plane's
    /// piece, and a plane find none.
    std::vector<size_t> m_freeRows;
    std::vector<size_t> m_freePlanes;
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
