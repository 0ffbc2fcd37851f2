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
    RowsOfCells rows{y, 0, 0};
    float middle = 1;
    for (; levels > 0; --levels) {
        const float below = rows.below;
        const float above = rows.above;
        // The nearer neighbour of a pair's lower row lies below, that of its upper row above.
        if (rows.middle % 2 == 0) {
            rows.below = 0.75f * below + 0.25f * middle;
            rows.above = 0.25f * above;
            middle = 0.25f * below + 0.75f * middle + 0.75f * above;
        } else {
            rows.below = 0.25f * below;
            rows.above = 0.25f * middle + 0.75f * above;
            middle = 0.75f * below + 0.75f * middle + 0.25f * above;
        }
        rows.middle = floorDivided(rows.middle, 2);
    }
    return rows;
}

} // namespace

EnlargedBlur::EnlargedBlur(const StoredImage& blurred, int factor, const PixelRect& rect,
                           TileArena& arena)
    : m_blurred(&blurred)
    , m_levels(levelsBetween(1, factor))
    , m_rect(rect)
    , m_cells(coarserCells(rect, m_levels))
    , m_half((rect.width() / 2 + 4 * rowSlack) / rowPadding * rowPadding)
    , m_scratch(arena.rowPlanes({0, 0, 2 * m_half, 1}, blurred.opaque()))
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

// All channels are taken through one doubling after the other: a row that was written a moment ago
// can only be read at once as it was written, and the next doubling reads it between.
void EnlargedBlur::drawRow(int y, const TilePlanes& planes) const
{
    const RowsOfCells rows = rowsOfCells(y, m_levels);
    const int left = m_cells.x0 - m_blurred->rect().x0;
    const float* middle = m_blurred->floatRow(0, rows.middle) + left;
    // A neighbour without weight may not be there.
    const float* below = rows.below != 0 ? m_blurred->floatRow(0, rows.middle - 1) + left : middle;
    const float* above = rows.above != 0 ? m_blurred->floatRow(0, rows.middle + 1) + left : middle;
    for (int c = 0; c < planes.channels(); ++c) {
        const std::ptrdiff_t plane = c * m_blurred->channelStride();
        blendRows({below + plane, middle + plane, above + plane}, rows.below, rows.above,
                  m_scratch.plane[c], m_cells.width());
    }
    int from = 0;
    int to = m_half;
    for (int i = 0; i + 1 < m_levels; ++i) {
        for (int c = 0; c < planes.channels(); ++c)
            doubleAcross(m_scratch.plane[c] + from + m_doublings[i].skipped,
                         m_scratch.plane[c] + to, m_doublings[i].count);
        std::swap(from, to);
    }
    const Doubling& last = m_doublings[m_levels - 1];
    for (int c = 0; c < planes.channels(); ++c)
        doubleAcross(m_scratch.plane[c] + from + last.skipped, planes.row(c, y) - (m_rect.x0 & 1),
                     last.count);
}

} // namespace orvane
