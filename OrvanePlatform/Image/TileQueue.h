#pragma once

#include "Planner.h"
#include "Schedule.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace orvane {

/// The tiles of a schedule as workers take them. Whoever uses it from several threads holds a lock.
///
/// Some steps of the schedule are open at once: a worker that finds no tile left in the first takes
/// those of the next whose pixels are there, instead of waiting for the last tiles of the others.
/// Each worker begins at its own part of a step's tiles and helps out elsewhere when it is through
/// with that: so what it reads of the step before is what it drew itself, and is still in its own
/// cache.
class TileQueue {
public:
    struct Tile {
        size_t step = 0;
        size_t index = 0; ///< among the step's tiles
        PixelRect rect;
    };

    /// With a seed that is not 0, the tiles of a step are in no order at all.
    TileQueue(const Plan& plan, const Schedule& schedule, int workers, uint64_t shuffleSeed);

    /// The step that may be opened now, if any.
    std::optional<size_t> toOpen() const;
    void open();
    /// A tile all of whose reads are drawn. None: not now.
    std::optional<Tile> take(int worker);
    /// The tile is drawn. The steps that are complete with it, in order.
    std::vector<size_t> finished(const Tile& tile);
    /// Every tile of every step is drawn.
    bool complete() const { return m_open.empty() && m_next == m_schedule.steps.size(); }

private:
    struct Awaited {
        size_t step = 0;
        size_t tile = 0; ///< among that step's
    };
    struct OpenStep {
        size_t step = 0;
        std::vector<PixelRect> tiles;
        std::vector<bool> drawn; ///< by tile
        std::vector<size_t> next; ///< by worker: the first of its part that nobody has taken
        std::vector<std::optional<Awaited>> awaited; ///< by worker: a tile of a step before
        size_t left = 0; ///< tiles that are not drawn
    };

    const PlanPass& passOf(const OpenStep& open) const;
    size_t partEnd(const OpenStep& open, size_t worker) const;
    std::optional<Awaited> undrawnBehind(const OpenStep& open, const PixelRect& tile) const;
    bool isDrawn(const Awaited& awaited) const;
    bool isReady(OpenStep& open, size_t part) const;

    const Plan& m_plan;
    const Schedule& m_schedule;
    size_t m_workers;
    uint64_t m_shuffleSeed;
    std::deque<OpenStep> m_open;
    size_t m_next = 0; ///< the step to be opened
};

} // namespace orvane
