#include "CellAverager.h"

#include "RowSums.h"

#include <algorithm>

namespace orvane {

namespace {

/// Past the end of a row that is halved.
constexpr int rowSlack = 2 * rowPadding;
constexpr int rowsOfCell = 4;

int place(int y)
{
    return y & (rowsOfCell - 1);
}

} // namespace

CellAverager::CellAverager(const PixelRect& cells, int levels, CoarseEdges edges,
                           const PixelRect& held, StoredImage& averages, TileArena& arena)
    : m_cells(cells)
    , m_wanted(finerCells(cells, levels))
    , m_held(held)
    , m_edges(edges)
    , m_channels(averages.opaque() ? 3 : 4)
    , m_next(m_wanted.y0)
    , m_levels(size_t(levels))
    , m_averages(averages)
    , m_arena(arena)
{
}

void CellAverager::takeMemory()
{
    const auto rows = [&](int width, int count) {
        return m_arena.planes({0, 0, width + rowSlack, count}, m_channels == 3);
    };
    m_padded = rows(m_wanted.width(), 1);
    for (size_t i = 0; i < m_levels.size(); ++i) {
        Level& level = m_levels[i];
        level.cells = finerCells(m_cells, int(m_levels.size() - 1 - i));
        level.rows = rows(level.cells.width(), rowsOfCell);
        level.result = rows(level.cells.width(), 1);
    }
}

/// A row with what lies beside the pixels that there are; all of these may lie to one side of it.
CellAverager::Rows CellAverager::paddedRow(const TilePlanes& planes, int y) const
{
    const int width = m_wanted.width();
    const int first = std::clamp(m_held.x0 - m_wanted.x0, 0, width);
    const int end = std::clamp(m_held.x1 - m_wanted.x0, first, width);
    const bool repeated = m_edges == CoarseEdges::Repeated;
    Rows rows = {};
    for (int c = 0; c < m_channels; ++c) {
        const auto pixel = [&](int x) { return planes.plane[c] ? *planes.at(c, x, y) : 1.0f; };
        float* const to = m_padded.row(c, 0);
        std::fill(to, to + first, repeated ? pixel(m_held.x0) : 0.0f);
        if (!planes.plane[c])
            std::fill(to + first, to + end, 1.0f);
        else if (end > first)
            std::copy_n(planes.at(c, m_wanted.x0 + first, y), end - first, to + first);
        std::fill(to + end, to + width, repeated ? pixel(m_held.x1 - 1) : 0.0f);
        rows[size_t(c)] = to;
    }
    return rows;
}

void CellAverager::add(const TilePlanes& planes, const PixelRect& rows)
{
    const bool complete = m_held.x0 == m_wanted.x0 && m_held.x1 == m_wanted.x1
        && (m_channels == 3 || !planes.opaque());
    for (int y = rows.y0; y < rows.y1; ++y) {
        if (m_padded.stride == 0)
            takeMemory();
        if (y == m_held.y0 && m_edges == CoarseEdges::Transparent)
            addUpTo(y, {});
        Rows row = {};
        for (int c = 0; complete && c < m_channels; ++c)
            row[size_t(c)] = planes.at(c, m_wanted.x0, y);
        // With repeated edges the outermost rows stand for those beyond them, too.
        const bool last = y == m_held.y1 - 1 && m_edges == CoarseEdges::Repeated;
        addUpTo(last ? m_wanted.y1 : y + 1, complete ? row : paddedRow(planes, y));
    }
}

void CellAverager::add(StoredImage& finer)
{
    for (int y = m_held.y0; y < m_held.y1; ++y) {
        const PixelRect row{m_held.x0, y, m_held.x1, y + 1};
        add(*finer.view(row), row);
    }
}

void CellAverager::finish()
{
    addUpTo(m_wanted.y1, {});
}

/// All rows before y that are still to come, alike. No planes: zeros.
void CellAverager::addUpTo(int y, Rows rows)
{
    if (m_next >= y)
        return;
    if (m_padded.stride == 0)
        takeMemory();
    for (int c = 0; !rows[0] && c < m_channels; ++c)
        std::fill_n(m_padded.row(c, 0), m_wanted.width(), 0.0f);
    for (int c = 0; c < m_channels; ++c)
        rows[size_t(c)] = rows[size_t(c)] ? rows[size_t(c)] : m_padded.row(c, 0);
    for (; m_next < y; ++m_next)
        addRow(0, m_next, rows);
}

void CellAverager::addRow(size_t index, int y, const Rows& rows)
{
    const Level& level = m_levels[index];
    const int width = level.cells.width();
    for (int c = 0; c < m_channels; ++c)
        halveAcross(rows[size_t(c)], level.rows.row(c, place(y)), width);
    // Cell j is made of rows 2 j - 1 to 2 j + 2.
    const int j = floorDivided(y, 2) - 1;
    if (y != 2 * j + 2 || j < level.cells.y0)
        return;
    Rows result = {};
    for (int c = 0; c < m_channels; ++c) {
        const auto row = [&](int n) { return level.rows.row(c, place(n)); };
        halveDown({row(y - 3), row(y - 2), row(y - 1), row(y)}, level.result.row(c, 0), width);
        result[size_t(c)] = level.result.row(c, 0);
    }
    if (index + 1 < m_levels.size())
        return addRow(index + 1, j, result);
    for (int c = 0; c < m_channels; ++c)
        std::copy_n(result[size_t(c)], width,
                    m_averages.floatRow(c, j) + (level.cells.x0 - m_averages.rect().x0));
}

} // namespace orvane
