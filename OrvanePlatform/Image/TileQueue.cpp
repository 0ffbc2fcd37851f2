#include "TileQueue.h"

#include "PixelKernels.h"

#include <algorithm>
#include <cassert>
#include <random>

namespace orvane {

namespace {

/// Tiles of a region in rows from the top, or shuffled.
std::vector<PixelRect> tilesOf(const PixelRect& region, int width, int height, uint64_t seed)
{
    std::vector<PixelRect> tiles;
    for (int y = region.y1; y > region.y0; y -= height) {
        for (int x = region.x0; x < region.x1; x += width)
            tiles.push_back(
                {x, std::max(y - height, region.y0), std::min(x + width, region.x1), y});
    }
    if (seed != 0) {
        std::mt19937_64 random(seed);
        std::shuffle(tiles.begin(), tiles.end(), random);
    }
    return tiles;
}

/// The first tile of a worker's part.
size_t partStart(size_t tiles, size_t worker, size_t workers)
{
    return tiles * worker / workers;
}

} // namespace

TileQueue::TileQueue(const Plan& plan, const Schedule& schedule, int workers, uint64_t shuffleSeed)
    : m_plan(plan)
    , m_schedule(schedule)
    , m_workers(size_t(workers))
    , m_shuffleSeed(shuffleSeed)
{
}

const PlanPass& TileQueue::passOf(const OpenStep& open) const
{
    return m_plan.passes[size_t(m_schedule.steps[open.step].pass)];
}

size_t TileQueue::partEnd(const OpenStep& open, size_t worker) const
{
    return partStart(open.tiles.size(), worker + 1, m_workers);
}

std::optional<size_t> TileQueue::toOpen() const
{
    if (m_next == m_schedule.steps.size() || m_open.size() == Schedule::stepsAtOnce)
        return {};
    // Counts are there when all is counted.
    for (const OpenStep& open : m_open) {
        const int target = passOf(open).target;
        if (target >= 0 && m_plan.stored[size_t(target)].form == StoredPlan::Form::Histogram)
            return {};
    }
    return m_next;
}

void TileQueue::open()
{
    const ScheduledRows& rows = m_schedule.steps[m_next];
    const PlanPass& pass = m_plan.passes[size_t(rows.pass)];
    OpenStep& open = m_open.emplace_back();
    open.step = m_next++;
    open.tiles = tilesOf(rows.rect, pass.tileWidth, pass.tileHeight, m_shuffleSeed);
    open.drawn.resize(open.tiles.size(), false);
    open.left = open.tiles.size();
    assert(open.left > 0); // a step ends with its last tile
    open.awaited.resize(m_workers);
    for (size_t worker = 0; worker < m_workers; ++worker)
        open.next.push_back(partStart(open.tiles.size(), worker, m_workers));
}

/// A tile of a step before that is not drawn yet and that the given one reads.
std::optional<TileQueue::Awaited> TileQueue::undrawnBehind(const OpenStep& open,
                                                           const PixelRect& tile) const
{
    const std::vector<StoredRead> reads = storedReads(m_plan, passOf(open), tile);
    for (const OpenStep& before : m_open) {
        if (&before == &open)
            break;
        for (const StoredRead& read : reads) {
            if (read.stored != passOf(before).target)
                continue;
            // Rows are read in whole vectors, by some in two at a time.
            PixelRect reach = read.rect;
            reach.x1 += 2 * rowPadding;
            for (size_t i = 0; i < before.tiles.size(); ++i) {
                if (!before.drawn[i] && !before.tiles[i].intersection(reach).isEmpty())
                    return Awaited{before.step, i};
            }
        }
    }
    return {};
}

bool TileQueue::isDrawn(const Awaited& awaited) const
{
    const auto open = std::ranges::find(m_open, awaited.step, &OpenStep::step);
    return open == m_open.end() || open->drawn[awaited.tile];
}

/// Whether the next tile of a part finds what it reads.
bool TileQueue::isReady(OpenStep& open, size_t part) const
{
    if (&open == &m_open.front())
        return true;
    // It draws where the steps before may still read.
    if (passOf(open).patches)
        return false;
    // Asked again and again until it is: what it was found to wait for is looked at first.
    auto& awaited = open.awaited[part];
    if (!awaited || isDrawn(*awaited))
        awaited = undrawnBehind(open, open.tiles[open.next[part]]);
    return !awaited;
}

std::optional<TileQueue::Tile> TileQueue::take(int worker)
{
    for (OpenStep& open : m_open) {
        for (size_t k = 0; k < m_workers; ++k) {
            const size_t part = (size_t(worker) + k) % m_workers;
            if (open.next[part] >= partEnd(open, part) || !isReady(open, part))
                continue;
            const size_t index = open.next[part]++;
            return Tile{open.step, index, open.tiles[index]};
        }
    }
    return {};
}

std::vector<size_t> TileQueue::finished(const Tile& tile)
{
    for (OpenStep& open : m_open) {
        if (open.step != tile.step)
            continue;
        open.drawn[tile.index] = true;
        --open.left;
    }
    std::vector<size_t> complete;
    for (; !m_open.empty() && m_open.front().left == 0; m_open.pop_front())
        complete.push_back(m_open.front().step);
    return complete;
}

} // namespace orvane
