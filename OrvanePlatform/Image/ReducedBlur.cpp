#include "ReducedBlur.h"

#include "RowSums.h"

#include <algorithm>

namespace orvane {

namespace {

/// Room past the end of a row for the vectors that read and write two at a time.
constexpr int rowSlack = 4 * rowPadding;

/// Cells [first, last) of a row, with what lies around the image.
void copyCells(const StoredImage& cells, int channel, int y, int first, int last, CoarseEdges edges,
               float* to)
{
    const PixelRect& held = cells.rect();
    const bool repeated = edges == CoarseEdges::Repeated;
    if (!repeated && (y < held.y0 || y >= held.y1)) {
        std::fill_n(to, last - first, 0.0f);
        return;
    }
    const float* row = cells.floatRow(channel, std::clamp(y, held.y0, held.y1 - 1)) - held.x0;
    const int inner = std::clamp(held.x0, first, last);
    const int outer = std::clamp(held.x1, inner, last);
    std::fill(to, to + (inner - first), repeated ? row[held.x0] : 0.0f);
    if (outer > inner)
        std::copy(row + inner, row + outer, to + (inner - first));
    std::fill(to + (outer - first), to + (last - first), repeated ? row[held.x1 - 1] : 0.0f);
}

TilePlanes cellPlanes(const StoredImage& image, CoarseEdges edges, const PixelRect& rect,
                      TileArena& arena)
{
    const TilePlanes planes = arena.planes(rect, image.opaque());
    for (int c = 0; c < planes.channels(); ++c) {
        for (int y = rect.y0; y < rect.y1; ++y)
            copyCells(image, c, y, rect.x0, rect.x1, edges, planes.row(c, y));
    }
    return planes;
}

/// One level coarser; `from` covers all that the cells are made of.
TilePlanes halvedPlanes(const TilePlanes& from, const PixelRect& cells, TileArena& arena)
{
    const TilePlanes out = arena.planes(cells, from.opaque());
    const PixelRect behind = finerCells(cells, 1);
    float* row = arena.floats(size_t(behind.width() + rowSlack));
    for (int c = 0; c < out.channels(); ++c) {
        for (int j = cells.y0; j < cells.y1; ++j) {
            halveDown(from.at(c, behind.x0, 2 * j - 1), from.stride, row, behind.width());
            halveAcross(row, out.row(c, j), cells.width());
        }
    }
    return out;
}

/// Rows of cells with twice as many columns; `from` covers all that the rectangle is interpolated
/// from, and the result is as high. It covers the rectangle and up to a pixel more on each side.
TilePlanes widenedPlanes(const TilePlanes& from, const PixelRect& rect, TileArena& arena)
{
    const PixelRect cells = coarserCells(rect, 1);
    // A row may be written past its end: the next one is written after it, the last has rowSlack.
    TilePlanes out = arena.planes(
        {2 * (cells.x0 + 1), cells.y0, 2 * (cells.x1 - 1) + rowSlack, cells.y1}, from.opaque());
    out.rect.x1 -= rowSlack;
    for (int c = 0; c < out.channels(); ++c) {
        for (int y = cells.y0; y < cells.y1; ++y)
            doubleAcross(from.at(c, cells.x0 + 1, y), out.row(c, y), cells.width() - 2);
    }
    return out;
}

TilePlanes doubledPlanes(const TilePlanes& from, const PixelRect& rect, TileArena& arena)
{
    const TilePlanes wide = widenedPlanes(from, rect, arena);
    const TilePlanes out =
        arena.planes({wide.rect.x0, rect.y0, wide.rect.x1, rect.y1}, from.opaque());
    for (int y = rect.y0; y < rect.y1; ++y)
        drawEnlargedRow(wide, y, out);
    return out;
}

void storeAverages(TilePlanes planes, const PixelRect& cells, int levels, StoredImage& averages,
                   TileArena& arena)
{
    for (; levels > 0; --levels)
        planes = halvedPlanes(planes, finerCells(cells, levels - 1), arena);
    averages.write(planes, cells);
}

} // namespace

void averageCells(const TilePlanes& planes, const PixelRect& cells, int levels,
                  StoredImage& averages, TileArena& arena)
{
    TilePlanes from = coveringPlanes(planes, finerCells(cells, levels), arena);
    if (!averages.opaque())
        addOpaqueAlpha(from, arena);
    storeAverages(from, cells, levels, averages, arena);
}

void averageCells(const StoredImage& finer, CoarseEdges edges, const PixelRect& cells, int levels,
                  StoredImage& averages, TileArena& arena)
{
    storeAverages(cellPlanes(finer, edges, finerCells(cells, levels), arena), cells, levels,
                  averages, arena);
}

void blurCells(const StoredImage& averages, const std::vector<float>& weights,
               const PixelRect& cells, CoarseEdges edges, StoredImage& blurred, TileArena& arena)
{
    const int reach = int(weights.size()) - 1;
    const PixelRect tall{cells.x0, cells.y0 - reach, cells.x1, cells.y1 + reach};
    const TilePlanes across = arena.planes(tall, blurred.opaque());
    const TilePlanes out = arena.planes(cells, blurred.opaque());
    float* row = arena.floats(size_t(cells.width() + 2 * reach + rowSlack));
    for (int c = 0; c < out.channels(); ++c) {
        for (int y = tall.y0; y < tall.y1; ++y) {
            copyCells(averages, c, y, cells.x0 - reach, cells.x1 + reach, edges, row);
            convolveAcross(row + reach, across.row(c, y), cells.width(), weights.data(), reach);
        }
        convolveDown({across.row(c, cells.y0), across.stride}, {out.row(c, cells.y0), out.stride},
                     cells.width(), cells.height(), weights.data(), reach);
    }
    blurred.write(out, cells);
}

TilePlanes widenedBlur(const StoredImage& blurred, int factor, const PixelRect& rect,
                       TileArena& arena)
{
    const int levels = levelsBetween(1, factor);
    TilePlanes planes = blurred.read(coarserCells(rect, levels), arena);
    for (int level = levels - 1; level > 0; --level)
        planes = doubledPlanes(planes, coarserCells(rect, level), arena);
    return widenedPlanes(planes, rect, arena);
}

void drawEnlargedRow(const TilePlanes& widened, int y, const TilePlanes& planes)
{
    const int near = floorDivided(y, 2);
    const int far = y == 2 * near ? near - 1 : near + 1;
    const int x = planes.rect.x0;
    for (int c = 0; c < planes.channels(); ++c)
        doubleDown(widened.at(c, x, near), widened.at(c, x, far), planes.row(c, y),
                   planes.rect.width());
}

TilePlanes enlargedBlur(const StoredImage& blurred, int factor, const PixelRect& rect,
                        TileArena& arena)
{
    const TilePlanes widened = widenedBlur(blurred, factor, rect, arena);
    const TilePlanes planes = arena.planes(rect, blurred.opaque());
    for (int y = rect.y0; y < rect.y1; ++y)
        drawEnlargedRow(widened, y, planes);
    return planes;
}

} // namespace orvane
