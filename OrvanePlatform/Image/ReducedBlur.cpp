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
    // The outermost cells are looked at by those that need them alone: for others they may be on
    // their way still.
    if (inner > first)
        std::fill(to, to + (inner - first), repeated ? row[held.x0] : 0.0f);
    if (outer > inner)
        std::copy(row + inner, row + outer, to + (inner - first));
    if (last > outer)
        std::fill(to + (outer - first), to + (last - first), repeated ? row[held.x1 - 1] : 0.0f);
}

} // namespace

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

} // namespace orvane
