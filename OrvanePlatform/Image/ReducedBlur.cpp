#include "ReducedBlur.h"

#include "BlurWeights.h"
#include "PlaneConversion.h"

#include <algorithm>
#include <cmath>
#include <functional>

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

/// Rows handed out at a time.
constexpr int rowsAtOnce = 16;

void forEachRow(ThreadPool& pool, int rows, const std::function<void(int row)>& body)
{
    pool.forEach((rows + rowsAtOnce - 1) / rowsAtOnce, [&](int block, int) {
        for (int row = block * rowsAtOnce; row < std::min(rows, (block + 1) * rowsAtOnce); ++row)
            body(row);
    });
}

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

std::shared_ptr<StoredImage> blurredCells(const StoredImage& coarse, double sigma,
                                          const PixelRect& region, CoarseEdges edges,
                                          ThreadPool& pool)
{
    const std::vector<double> exact = gaussianWeights(sigma);
    const std::vector<float> weights(exact.begin(), exact.end());
    const int reach = int(weights.size()) - 1;
    const PixelRect tall{region.x0, region.y0 - reach, region.x1, region.y1 + reach};
    StoredImage across(tall, coarse.opaque(), StoredFormat::Float);
    auto result = std::make_shared<StoredImage>(region, coarse.opaque(), StoredFormat::Float);
    const int channels = coarse.opaque() ? 3 : 4;
    forEachRow(pool, tall.height(), [&](int index) {
        const int y = tall.y0 + index;
        // Whole vectors are read past the end of a row.
        std::vector<float> row(size_t(region.width() + 2 * reach + 4 * rowPadding));
        for (int c = 0; c < channels; ++c) {
            copyCells(coarse, c, y, region.x0 - reach, region.x1 + reach, edges, row.data());
            convolveAcross(row.data() + reach, across.floatRow(c, y), region.width(),
                           weights.data(), reach);
        }
    });
    forEachRow(pool, region.height(), [&](int index) {
        const int y = region.y0 + index;
        for (int c = 0; c < channels; ++c)
            convolveDown(across.floatRow(c, y), across.stride(), result->floatRow(c, y),
                         region.width(), weights.data(), reach);
    });
    return result;
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
