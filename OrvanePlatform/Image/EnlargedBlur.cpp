#include "EnlargedBlur.h"

#include "BlurGrid.h"
#include "RowSums.h"

#include <utility>

namespace orvane {

namespace {

/// Room past the end of a row that doubling may write to.
constexpr int rowSlack = 2 * rowPadding;

/// The rows of cells behind a row of pixels: `middle`, and its two neighbours with their weights.
struct RowsOfCells {
    int middle = 0;
    float below = 0;
    float above = 0;
};

/// Row y is 3/4 of row floor(y / 2) of the next coarser level and 1/4 of its nearer neighbour, and
/// so on up the levels. Three rows are always enough: parents of three rows side by side are three
/// rows side by side, two of them shared.
RowsOfCells rowsOfCells(int y, int levels)
{
    int middle = y;
    float weights[3] = {0, 1, 0}; // of middle - 1, middle and middle + 1
    for (; levels > 0; --levels) {
        const int parent = floorDivided(middle, 2);
        float coarser[3] = {};
        for (int i = 0; i < 3; ++i) {
            const int row = middle + i - 1;
            const int near = floorDivided(row, 2);
            const int far = row == 2 * near ? near - 1 : near + 1;
            if (weights[i] == 0)
                continue;
            coarser[near - parent + 1] += 0.75f * weights[i];
            coarser[far - parent + 1] += 0.25f * weights[i];
        }
        std::copy(coarser, coarser + 3, weights);
        middle = parent;
    }
    return {middle, weights[0], weights[2]};
}

} // namespace

EnlargedBlur::EnlargedBlur(const StoredImage& blurred, int factor, const PixelRect& rect,
                           TileArena& arena)
    : m_blurred(&blurred)
    , m_levels(levelsBetween(1, factor))
    , m_rect(rect)
    , m_cells(coarserCells(rect, m_levels))
    , m_scratch(arena.rowPlanes({0, 0, rect.width() + 4 * rowSlack, 1}, true))
{
    int first = m_cells.x0;
    for (int i = 0; i < m_levels; ++i) {
        const PixelRect wanted = coarserCells(rect, m_levels - 1 - i);
        const int start = floorDivided(wanted.x0, 2);
        m_doublings[i] = {start - first, floorDivided(wanted.x1 - 1, 2) + 1 - start};
        first = 2 * start;
    }
}

/// Doubling begins at an even pixel and ends with a whole vector.
PixelRect EnlargedBlur::writtenRect() const
{
    return {2 * floorDivided(m_rect.x0, 2), m_rect.y0, m_rect.x1 + rowSlack, m_rect.y1};
}

TilePlanes EnlargedBlur::shifted(TilePlanes planes) const
{
    for (int c = 0; c < planes.channels(); ++c)
        planes.plane[c] += m_rect.x0 - planes.rect.x0;
    planes.rect = m_rect;
    return planes;
}

TilePlanes EnlargedBlur::planes(TileArena& arena) const
{
    return shifted(arena.planes(writtenRect(), m_blurred->opaque()));
}

TilePlanes EnlargedBlur::rowPlanes(TileArena& arena) const
{
    return shifted(arena.rowPlanes(writtenRect(), m_blurred->opaque()));
}

void EnlargedBlur::drawRow(int y, const TilePlanes& planes) const
{
    const RowsOfCells rows = rowsOfCells(y, m_levels);
    const int left = m_cells.x0 - m_blurred->rect().x0;
    for (int c = 0; c < planes.channels(); ++c) {
        const float* middle = m_blurred->floatRow(c, rows.middle) + left;
        // A neighbour without weight may not be there.
        const float* below =
            rows.below != 0 ? m_blurred->floatRow(c, rows.middle - 1) + left : middle;
        const float* above =
            rows.above != 0 ? m_blurred->floatRow(c, rows.middle + 1) + left : middle;
        float* from = m_scratch.plane[0];
        float* to = m_scratch.plane[1];
        blendRows({below, middle, above}, rows.below, rows.above, from, m_cells.width());
        for (int i = 0; i + 1 < m_levels; ++i) {
            doubleAcross(from + m_doublings[i].skipped, to, m_doublings[i].count);
            std::swap(from, to);
        }
        const Doubling& last = m_doublings[m_levels - 1];
        doubleAcross(from + last.skipped, planes.row(c, y) - (m_rect.x0 & 1), last.count);
    }
}

} // namespace orvane
