#include "TilePlanes.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr size_t lineFloats = 16;
constexpr size_t pageFloats = 1024;
constexpr size_t largestRow = 8192;

} // namespace

float* TileArena::floats(size_t count)
{
    // Whole cache lines, and room for a kernel's last vector to write past the end.
    const size_t size = (count + rowPadding + lineFloats - 1) / lineFloats * lineFloats;
    // Rows and planes are kept apart: a row would take a plane's piece, and a plane find none.
    const bool plane = size > largestRow;
    Piece* best = nullptr;
    Piece* tooSmall = nullptr;
    for (Piece& piece : m_pieces) {
        if (piece.used || (piece.size > largestRow) != plane)
            continue;
        if (piece.size >= size)
            best = !best || piece.takenBack > best->takenBack ? &piece : best;
        else
            tooSmall = &piece;
    }
    if (!best) {
        // One that is too small grows: there are never more pieces than are in use at once.
        best = tooSmall ? tooSmall : &m_pieces.emplace_back();
        grow(*best, size);
    }
    best->used = true;
    best->holders = 0;
    return best->start;
}

void TileArena::grow(Piece& piece, size_t size)
{
    piece.memory.reset();
    piece.memory.reset(new float[size + lineFloats + pageFloats]);
    piece.size = size;
    // Each piece begins on another line of a page: a pixel program walks through many planes side
    // by side, and they must not all fall into the same few places of the first-level cache.
    const size_t past =
        reinterpret_cast<uintptr_t>(piece.memory.get()) / sizeof(float) % pageFloats;
    const size_t line = size_t(&piece - m_pieces.data()) * 11 % (pageFloats / lineFloats);
    piece.start = piece.memory.get() + (line * lineFloats + pageFloats - past) % pageFloats;
}

TileArena::Piece* TileArena::pieceOf(const float* address)
{
    const auto piece = std::find_if(m_pieces.begin(), m_pieces.end(), [&](const Piece& p) {
        return address >= p.start && address < p.start + p.size;
    });
    return piece == m_pieces.end() ? nullptr : &*piece;
}

void TileArena::hold(const TilePlanes& planes)
{
    for (const float* plane : planes.plane) {
        if (Piece* piece = plane ? pieceOf(plane) : nullptr)
            ++piece->holders;
    }
}

void TileArena::letGo(const TilePlanes& planes)
{
    for (const float* plane : planes.plane) {
        if (Piece* piece = plane ? pieceOf(plane) : nullptr)
            --piece->holders;
    }
}

void TileArena::sweep()
{
    ++m_sweeps;
    for (Piece& piece : m_pieces) {
        if (piece.used && piece.holders <= 0) {
            piece.used = false;
            piece.takenBack = m_sweeps;
        }
    }
}

void TileArena::reset()
{
    for (Piece& piece : m_pieces)
        piece.holders = 0;
    sweep();
}

TilePlanes TileArena::planes(const PixelRect& rect, bool opaque)
{
    TilePlanes planes;
    planes.rect = rect;
    // An odd number of cache lines, so that the rows above one another do not share their places.
    planes.stride = (rect.width() + 15) / 16 * 16;
    planes.stride += planes.stride / 16 % 2 == 0 ? 16 : 0;
    const size_t size = size_t(planes.stride) * size_t(rect.height());
    for (int c = 0; c < (opaque ? 3 : 4); ++c)
        planes.plane[c] = floats(size);
    return planes;
}

TilePlanes TileArena::rowPlanes(const PixelRect& rect, bool opaque)
{
    TilePlanes planes;
    planes.rect = rect;
    for (int c = 0; c < (opaque ? 3 : 4); ++c)
        planes.plane[c] = floats(size_t(rect.width()));
    return planes;
}

size_t planeSize(const TilePlanes& planes)
{
    const PixelRect& r = planes.rect;
    return planes.stride == 0 ? size_t(r.width()) : size_t(planes.stride) * size_t(r.height());
}

void addOpaqueAlpha(TilePlanes& planes, TileArena& arena)
{
    if (!planes.opaque())
        return;
    const size_t size = planeSize(planes);
    planes.plane[3] = arena.floats(size);
    std::fill_n(planes.plane[3], size, 1.0f);
}

TilePlanes coveringPlanes(const TilePlanes& planes, const PixelRect& rect, TileArena& arena)
{
    if (planes.rect.contains(rect))
        return planes;
    TilePlanes copy = arena.planes(rect, false);
    const PixelRect shared = planes.rect.intersection(rect);
    for (int c = 0; c < 4; ++c) {
        for (int y = rect.y0; y < rect.y1; ++y) {
            float* to = copy.row(c, y);
            if (shared.isEmpty() || y < shared.y0 || y >= shared.y1) {
                std::fill(to, to + rect.width(), 0.0f);
                continue;
            }
            float* first = to + (shared.x0 - rect.x0);
            std::fill(to, first, 0.0f);
            if (c == 3 && planes.opaque())
                std::fill(first, first + shared.width(), 1.0f);
            else
                std::copy_n(planes.at(c, shared.x0, y), shared.width(), first);
            std::fill(first + shared.width(), to + rect.width(), 0.0f);
        }
    }
    return copy;
}

TilePlanes edgeRepeatedPlanes(const TilePlanes& planes, const PixelRect& rect, TileArena& arena)
{
    if (planes.rect.contains(rect))
        return planes;
    const PixelRect& e = planes.rect;
    TilePlanes copy = arena.planes(rect, planes.opaque());
    const int first = std::clamp(rect.x0, e.x0, e.x1 - 1);
    const int last = std::clamp(rect.x1, e.x0 + 1, e.x1);
    const int left = std::clamp(e.x0 - rect.x0, 0, rect.width());
    const int copied = std::max(0, std::min(rect.x1, e.x1) - std::max(rect.x0, e.x0));
    for (int c = 0; c < planes.channels(); ++c) {
        for (int y = rect.y0; y < rect.y1; ++y) {
            const int source = std::clamp(y, e.y0, e.y1 - 1);
            float* to = copy.row(c, y);
            const int start = copied > 0 ? left : (rect.x0 >= e.x1 ? 0 : rect.width());
            std::fill(to, to + start, *planes.at(c, first, source));
            if (copied > 0)
                std::copy_n(planes.at(c, std::max(rect.x0, e.x0), source), copied, to + start);
            std::fill(to + start + copied, to + rect.width(), *planes.at(c, last - 1, source));
        }
    }
    return copy;
}

} // namespace orvane
