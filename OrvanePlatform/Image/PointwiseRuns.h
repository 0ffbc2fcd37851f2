#pragma once

#include "CIContext.h"
#include "Node.h"
#include "Planner.h"
#include "TilePlanes.h"

#include <functional>
#include <initializer_list>
#include <vector>

namespace orvane {

/// Which steps of a pass are run together, row by row, so that a row goes through a whole chain
/// while it is in the first-level cache: pointwise steps, and what can draw one row after the other
/// (reading, enlarging, sampling) for them. Follows from the pass alone.
struct RowGroups {
    explicit RowGroups(const PlanPass& pass);

    /// By step: what waits must be run before this step looks at pixels.
    std::vector<bool> runBefore;
    /// By step: all who read it are run together with it, so one row is all that it needs to keep.
    std::vector<bool> oneRow;
};

/// Thrown out of the middle of a tile; never leaves the draw.
struct DrawCancelled { };

/// The question that a tile asks between its steps and its rows: a tile of costly steps takes
/// several milliseconds.
class CancellationCheck {
public:
    explicit CancellationCheck(const CancellationToken* token)
        : m_token(token)
    {
    }
    void operator()() const
    {
        if (m_token && m_token->isCancelled())
            throw DrawCancelled();
    }

private:
    const CancellationToken* m_token;
};

/// Steps that wait to be run together over the rows of a tile.
class PointwiseRuns {
public:
    PointwiseRuns(TileArena& arena, CancellationCheck check)
        : m_arena(arena)
        , m_check(check)
    {
    }

    struct Run {
        PointwiseRun run;
        const PointwiseNode* node = nullptr;
        PixelRect rect;
        TilePlanes inputs[maxKernelInputs];
        size_t inputCount = 0;
        TilePlanes output;
        bool opaque = false; ///< alpha is neither read nor, where the program keeps it, written
    };

    /// Pixels of an input that has none.
    TilePlanes zeros(const PixelRect& rect);
    void add(const Run& run);
    /// Has `row` draw, or take, each row of `rect` in its turn. The memory of what it uses is held
    /// until then.
    void add(const PixelRect& rect, std::function<void(int y)> row,
             std::initializer_list<TilePlanes> uses);
    /// Runs all that wait. Throws DrawCancelled.
    void flush();

private:
    struct Waiting {
        Run run;
        std::function<void(int y)> row; ///< instead of the run
        PointwiseRow pixels; ///< of the run, the row to come
    };

    PointwiseRow firstRow(const Run& run) const;
    static void runRow(Waiting& waiting);

    TileArena& m_arena;
    CancellationCheck m_check;
    std::vector<Waiting> m_waiting;
    std::vector<float> m_zeros;
    std::vector<std::vector<float>> m_outgrown; ///< rows of zeros that some who wait read
    std::vector<float> m_ones; ///< the alpha of opaque inputs beside others
};

} // namespace orvane
