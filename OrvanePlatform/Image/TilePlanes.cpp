#include "TilePlanes.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr size_t lineFloats = 16;
constexpr size_t pageFloats = 1024;
constexpr size_t largestRow = 8192;

} // namespace

size_t TileArena::take(size_t count)
{
    // Whole cache lines, and room for a kernel's last vector to write past the end.
    const size_t size = (count + rowPadding + lineFloats - 1) / lineFloats * lineFloats;
    std::vector<size_t>& free = size > largestRow ? m_freePlanes : m_freeRows;
    size_t piece = 0;
    const auto large = std::find_if(free.rbegin(), free.rend(),
                                    [&](size_t index) { return m_pieces[index].size >= size; });
    if (large != free.rend()) {
        piece = *large;
        free.erase(std::next(large).base());
    } else if (!free.empty()) {
        // One that is too small grows: there are never more pieces than are in use at once.
        piece = free.back();
        free.pop_back();
        grow(piece, size);
    } else {
        piece = m_pieces.size();
        m_pieces.emplace_back();
        grow(piece, size);
    }
    m_used.push_back(piece);
    return piece;
}

void TileArena::grow(size_t piece, size_t size)
{
    PixelMemory& memory = m_pieces[piece].memory;
    memory = {};
    memory = PixelMemory((size + lineFloats + pageFloats) * sizeof(float));
    auto* start = static_cast<float*>(static_cast<void*>(memory.data()));
    m_pieces[piece].size = size;
    // Each piece begins on another line of a page: a pixel program walks through many planes side
    // by side, and they must not all fall into the same few places of the first-level cache.
    const size_t past = reinterpret_cast<uintptr_t>(start) / sizeof(float) % pageFloats;
    const size_t line = piece * 11 % (pageFloats / lineFloats);
    m_pieces[piece].start = start + (line * lineFloats + pageFloats - past) % pageFloats;
}

void TileArena::hold(const TilePlanes& planes)
{
    for (int c = 0; c < 4; ++c) {
        if (planes.plane[c] && planes.piece[c] != TilePlanes::noPiece)
            ++m_pieces[size_t(planes.piece[c])].holders;
    }
}

void TileArena::letGo(const TilePlanes& planes)
{
    for (int c = 0; c < 4; ++c) {
        if (planes.plane[c] && planes.piece[c] != TilePlanes::noPiece)
            --m_pieces[size_t(planes.piece[c])].holders;
    }
}

void TileArena::sweep()
{
    size_t kept = 0;
    for (const size_t index : m_used) {
        if (m_pieces[index].holders > 0)
            m_used[kept++] = index;
        else
            (m_pieces[index].size > largestRow ? m_freePlanes : m_freeRows).push_back(index);
    }
    m_used.resize(kept);
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
    for (int c = 0; c < (opaque ? 3 : 4); ++c)
        addPlane(planes, c);
    return planes;
}

void TileArena::addPlane(TilePlanes& planes, int channel)
{
    const size_t piece = take(planeSize(planes));
    planes.piece[channel] = int(piece);
    planes.plane[channel] = m_pieces[piece].start;
}

TilePlanes TileArena::rowPlanes(const PixelRect& rect, bool opaque)
{
    TilePlanes planes;
    planes.rect = rect;
    for (int c = 0; c < (opaque ? 3 : 4); ++c)
        addPlane(planes, c);
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
    arena.addPlane(planes, 3);
    std::fill_n(planes.plane[3], planeSize(planes), 1.0f);
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
