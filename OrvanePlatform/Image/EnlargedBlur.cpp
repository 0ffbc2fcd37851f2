#include "EnlargedBlur.h"

#include "BlurGrid.h"
#include "RowSums.h"

#include <utility>

namespace orvane {

namespace {

/// Room past the end of a row that doubling may write to.
constexpr int rowSlack = 2 * rowPadding;

/// The rows of cells behind a row of pixels, by their weights: `middle`, its two neighbours, and
/// at most one row beyond these.
struct RowsOfCells {
    int middle = 0;
    int outer = 0;
    FourRows<float> weights = {};
};

/// Row y is 3/4 of row floor(y / 2) of the next coarser level and 1/4 of its nearer neighbour, and
/// so on up the levels; three rows are always enough, for the parents of three rows side by side
/// are three rows side by side, two of them shared. On the coarsest level but one a row is
/// (5 10 1) / 16 or (1 10 5) / 16 of three.
RowsOfCells rowsOfCells(int y, int levels)
{
    int middle = y;
    float below = 0;
    float same = 1;
    float above = 0;
    for (; levels > 1; --levels) {
        const float low = below;
        const float high = above;
        // The nearer neighbour of a pair's lower row lies below, that of its upper row above.
        if (middle % 2 == 0) {
            below = 0.75f * low + 0.25f * same;
            above = 0.25f * high;
            same = 0.25f * low + 0.75f * same + 0.75f * high;
        } else {
            below = 0.25f * low;
            above = 0.25f * same + 0.75f * high;
            same = 0.75f * low + 0.75f * same + 0.25f * high;
        }
        middle = floorDivided(middle, 2);
    }
    // Written for a pair's lower row; below and above change places for its upper one.
    const bool lower = middle % 2 == 0;
    if (!lower)
        std::swap(below, above);
    const int parent = floorDivided(middle, 2);
    const float near = 0.625f * below + 0.3125f * same + 0.0625f * above;
    const float away = 0.0625f * same + 0.3125f * above;
    const float beyond = 0.0625f * below;
    if (lower)
        return {parent, parent - 2, {near, 0, away, beyond}};
    return {parent, parent + 2, {away, 0, near, beyond}};
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
    // A row without weight may not be there.
    const auto row = [&](float weight, int j) {
        return weight != 0 ? m_blurred->floatRow(0, j) + left : middle;
    };
    const float* below = row(rows.weights.below, rows.middle - 1);
    const float* above = row(rows.weights.above, rows.middle + 1);
    const float* outer = row(rows.weights.outer, rows.outer);
    for (int c = 0; c < planes.channels(); ++c) {
        const std::ptrdiff_t plane = c * m_blurred->channelStride();
        blendRows({below + plane, middle + plane, above + plane, outer + plane}, rows.weights,
                  m_scratch.plane[c], m_cells.width());
    }
    int from = 0;
    int to = m_half;
    for (int i = 0; i < m_levels; ++i) {
        const bool last = i + 1 == m_levels;
        const auto doubled = i == 0 ? doubleAcrossWide : doubleAcross;
        for (int c = 0; c < planes.channels(); ++c)
            doubled(m_scratch.plane[c] + from + m_doublings[i].skipped,
                    last ? planes.row(c, y) - (m_rect.x0 & 1) : m_scratch.plane[c] + to,
                    m_doublings[i].count);
        std::swap(from, to);
    }
}

} // namespace orvane
