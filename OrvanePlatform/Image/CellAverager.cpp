#include "CellAverager.h"

#include "RowSums.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

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
    int width = m_wanted.width();
    for (size_t i = 0; i < m_levels.size(); ++i) {
        Level& level = m_levels[i];
        level.cells = finerCells(m_cells, int(m_levels.size() - 1 - i));
        level.rows = rows(width, rowsOfCell);
        level.sums = rows(width, 2);
        width = level.cells.width();
        level.result = rows(width, 1);
    }
}

/// A row with what lies beside the pixels that there are; all of these may lie to one side of it.
void CellAverager::pad(const TilePlanes& planes, int y, int channel, float* to) const
{
    const int width = m_wanted.width();
    const int first = std::clamp(m_held.x0 - m_wanted.x0, 0, width);
    const int end = std::clamp(m_held.x1 - m_wanted.x0, first, width);
    const bool repeated = m_edges == CoarseEdges::Repeated;
    const float* const plane = planes.plane[channel];
    const auto pixel = [&](int x) { return plane ? *planes.at(channel, x, y) : 1.0f; };
    std::fill(to, to + first, repeated ? pixel(m_held.x0) : 0.0f);
    if (!plane)
        std::fill(to + first, to + end, 1.0f);
    else if (end > first)
        std::copy_n(planes.at(channel, m_wanted.x0 + first, y), end - first, to + first);
    std::fill(to + end, to + width, repeated ? pixel(m_held.x1 - 1) : 0.0f);
}

/// All rows before y that are still to come, alike.
template <class Fill> void CellAverager::addUpTo(int y, const Fill& fill)
{
    if (m_next < y && m_levels.front().rows.stride == 0)
        takeMemory();
    for (; m_next < y; ++m_next) {
        for (int c = 0; c < m_channels; ++c)
            fill(c, m_levels.front().rows.row(c, place(m_next)));
        addRow(0, m_next);
    }
}

void CellAverager::add(const TilePlanes& planes, const PixelRect& rows)
{
    for (int y = rows.y0; y < rows.y1; ++y) {
        const bool repeated = m_edges == CoarseEdges::Repeated;
        if (y == m_held.y0 && !repeated)
            addUpTo(y, [&](int, float* to) { std::fill_n(to, m_wanted.width(), 0.0f); });
        // With repeated edges the outermost rows stand for those beyond them, too.
        const bool last = y == m_held.y1 - 1 && repeated;
        addUpTo(last ? m_wanted.y1 : y + 1, [&](int c, float* to) { pad(planes, y, c, to); });
    }
}

void CellAverager::finish()
{
    addUpTo(m_wanted.y1, [&](int, float* to) { std::fill_n(to, m_wanted.width(), 0.0f); });
}

bool CellAverager::readsInPlace() const
{
    const bool tall =
        m_edges == CoarseEdges::Repeated || (m_held.y0 == m_wanted.y0 && m_held.y1 == m_wanted.y1);
    return tall && !m_held.isEmpty() && m_held.x0 == m_wanted.x0 && m_held.x1 == m_wanted.x1;
}

void CellAverager::add(const StoredImage& image)
{
    if (m_held.isEmpty())
        return;
    if (readsInPlace())
        return image.format() == StoredFormat::Compact ? addInPlace<uint16_t>(image)
                                                       : addInPlace<float>(image);
    const TilePlanes row = m_arena.rowPlanes(m_held, image.opaque());
    for (int y = m_held.y0; y < m_held.y1; ++y) {
        image.readRow(y, row);
        add(row, {m_held.x0, y, m_held.x1, y + 1});
    }
}

template <class Sample> void CellAverager::addInPlace(const StoredImage& image)
{
    if (image.opaque() && m_channels == 4) {
        // Of ones that nothing lies beside, the averages are ones.
        for (int y = m_cells.y0; y < m_cells.y1; ++y)
            std::fill_n(m_averages.floatRow(3, y) + (m_cells.x0 - m_averages.rect().x0),
                        m_cells.width(), 1.0f);
        m_channels = 3;
    }
    takeMemory();
    const Level& finest = m_levels.front();
    const int left = m_wanted.x0 - image.rect().x0;
    const auto row = [&](int c, int y) {
        const int held = std::clamp(y, m_held.y0, m_held.y1 - 1);
        if constexpr (std::is_same_v<Sample, float>)
            return image.floatRow(c, held) + left;
        else
            return image.compactRow(c, held) + left;
    };
    for (int j = finest.cells.y0; j < finest.cells.y1; j += 2) {
        const int y = 2 * j - 1;
        for (int c = 0; c < m_channels; ++c)
            halvePairDown({row(c, y), row(c, y + 1), row(c, y + 2), row(c, y + 3), row(c, y + 4),
                           row(c, y + 5)},
                          {row(c, y + 6), row(c, y + 7), row(c, y + 8), row(c, y + 9)},
                          finest.sums.row(c, 0), finest.sums.row(c, 1), m_wanted.width());
        addSums(0, j, 0);
        if (j + 1 < finest.cells.y1)
            addSums(0, j + 1, 1);
    }
    m_next = m_wanted.y1;
}

void CellAverager::addRow(size_t index, int y)
{
    const Level& level = m_levels[index];
    // Cell j is made of rows 2 j - 1 to 2 j + 2.
    const int j = floorDivided(y, 2) - 1;
    if (y != 2 * j + 2 || j < level.cells.y0)
        return;
    const int width = index == 0 ? m_wanted.width() : m_levels[index - 1].cells.width();
    for (int c = 0; c < m_channels; ++c) {
        const auto row = [&](int n) { return level.rows.row(c, place(n)); };
        halveDown({row(y - 3), row(y - 2), row(y - 1), row(y)}, level.sums.row(c, 0), width);
    }
    addSums(index, j, 0);
}

/// A level's row j, from a row of sums of the four behind it.
void CellAverager::addSums(size_t index, int j, int sums)
{
    const Level& level = m_levels[index];
    const bool last = index + 1 == m_levels.size();
    const int width = level.cells.width();
    for (int c = 0; c < m_channels; ++c) {
        // Whole vectors go to a row of our own: beside the cells lie another tile's.
        float* const to = last ? level.result.row(c, 0) : m_levels[index + 1].rows.row(c, place(j));
        halveAcross(level.sums.row(c, sums), to, width);
        if (last)
            std::copy_n(to, width,
                        m_averages.floatRow(c, j) + (level.cells.x0 - m_averages.rect().x0));
    }
    if (!last)
        addRow(index + 1, j);
}

} // namespace orvane
