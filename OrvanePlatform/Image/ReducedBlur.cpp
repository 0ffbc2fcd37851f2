#include "ReducedBlur.h"

#include "PlaneConversion.h"

#include <algorithm>

namespace orvane {

void averageCells(const TilePlanes& planes, const PixelRect& cells, int factor, StoredImage& coarse,
                  TileArena& arena)
{
    const PixelRect full{cells.x0 * factor, cells.y0 * factor, cells.x1 * factor,
                         cells.y1 * factor};
    TilePlanes from = coveringPlanes(planes, full, arena);
    if (!coarse.opaque())
        addOpaqueAlpha(from, arena);
    const float share = 1.0f / float(factor * factor);
    float* sums = arena.floats(size_t(full.width()));
    for (int c = 0; c < (coarse.opaque() ? 3 : 4); ++c) {
        for (int j = cells.y0; j < cells.y1; ++j) {
            std::fill_n(sums, full.width(), 0.0f);
            for (int y = j * factor; y < (j + 1) * factor; ++y) {
                const float* row = from.at(c, full.x0, y);
                for (int i = 0; i < full.width(); ++i)
                    sums[i] += row[i];
            }
            float* to = coarse.floatRow(c, j) + (cells.x0 - coarse.rect().x0);
            for (int i = 0; i < cells.width(); ++i) {
                float sum = 0;
                for (int k = 0; k < factor; ++k)
                    sum += sums[i * factor + k];
                to[i] = sum * share;
            }
        }
    }
}

namespace {

/// Cells [first, last) of a row, with what lies around the image.
void copyCells(const StoredImage& coarse, int channel, int y, int first, int last,
               CoarseEdges edges, float* to)
{
    const PixelRect& held = coarse.rect();
    const bool repeated = edges == CoarseEdges::Repeated;
    if (!repeated && (y < held.y0 || y >= held.y1)) {
        std::fill_n(to, last - first, 0.0f);
        return;
    }
    const float* row = coarse.floatRow(channel, std::clamp(y, held.y0, held.y1 - 1)) - held.x0;
    const int inner = std::clamp(held.x0, first, last);
    const int outer = std::clamp(held.x1, inner, last);
    std::fill(to, to + (inner - first), repeated ? row[held.x0] : 0.0f);
    if (outer > inner)
        std::copy(row + inner, row + outer, to + (inner - first));
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
    // Whole vectors are read past the end of a row.
    float* row = arena.floats(size_t(cells.width() + 2 * reach + 4 * rowPadding));
    for (int c = 0; c < out.channels(); ++c) {
        for (int y = tall.y0; y < tall.y1; ++y) {
            copyCells(averages, c, y, cells.x0 - reach, cells.x1 + reach, edges, row);
            convolveAcross(row + reach, across.row(c, y), cells.width(), weights.data(), reach);
        }
        for (int y = cells.y0; y < cells.y1; ++y)
            convolveDown(across.row(c, y), across.stride, out.row(c, y), cells.width(),
                         weights.data(), reach);
    }
    blurred.write(out, cells);
}

TilePlanes enlargedBlur(const StoredImage& coarse, int factor, const PixelRect& rect,
                        TileArena& arena)
{
    TilePlanes out = arena.planes(rect, coarse.opaque());
    const PixelRect& held = coarse.rect();
    const int half = factor / 2;
    const auto cellBelow = [&](int position) { return floorDivided(position - half, factor); };
    const int firstCell = cellBelow(rect.x0);
    const int lastCell = cellBelow(rect.x1 - 1) + 1;
    float* blended = arena.floats(size_t(lastCell - firstCell + 1));
    for (int y = rect.y0; y < rect.y1; ++y) {
        const int j = cellBelow(y);
        const float v = (float(y - half - j * factor) + 0.5f) / float(factor);
        for (int c = 0; c < out.channels(); ++c) {
            const float* low = coarse.floatRow(c, j) + (firstCell - held.x0);
            const float* high = coarse.floatRow(c, j + 1) + (firstCell - held.x0);
            for (int i = 0; i <= lastCell - firstCell; ++i)
                blended[i] = low[i] + (high[i] - low[i]) * v;
            float* to = out.row(c, y) - rect.x0;
            for (int i = firstCell; i < lastCell; ++i) {
                const int start = i * factor + half;
                const float from = blended[i - firstCell];
                const float slope = (blended[i - firstCell + 1] - from) / float(factor);
                const int end = std::min(start + factor, rect.x1);
                for (int x = std::max(start, rect.x0); x < end; ++x)
                    to[x] = from + slope * (float(x - start) + 0.5f);
            }
        }
    }
    return out;
}

} // namespace orvane
