#pragma once

#include "EnlargedBlur.h"
#include "Planner.h"
#include "PointwiseRuns.h"
#include "StoredImage.h"
#include "TilePlanes.h"

#include <functional>
#include <memory>
#include <vector>

namespace orvane {

/// Numbers that every tile of a pass shares: blur weights and resampling taps, made once.
struct PassTables {
    /// By step: the weights of a Gaussian, or the taps of a Lanczos resampling's two axes.
    struct Taps {
        std::vector<int> first;
        std::vector<float> weights; ///< `width` for each output
        int origin = 0;
        int width = 0;

        int firstOf(int output) const { return first[size_t(output - origin)]; }
        const float* weightsOf(int output) const
        {
            return &weights[size_t(output - origin) * size_t(width)];
        }
    };
    struct Step {
        std::vector<float> blur;
        Taps across;
        Taps down;
    };
    std::vector<Step> steps;
};

PassTables makePassTables(const Plan& plan, const PlanPass& pass);

/// Draws tiles of one pass; one for each worker, with the worker's scratch memory. Whoever asks for
/// a tile may get DrawCancelled thrown; then the evaluator is of no more use.
class TileEvaluator {
public:
    TileEvaluator(const PlanPass& pass, const std::vector<StoredPlan>& storedPlans,
                  const std::vector<std::shared_ptr<StoredImage>>& stored, const PassTables& tables,
                  TileArena& arena, CancellationCheck check);

    /// The last step's pixels over `rect`, transparent beyond its extent. Valid until the scratch
    /// memory is next used.
    TilePlanes draw(const PixelRect& rect);
    /// The same handed out in rows, or in more at a time, while they are in the first-level cache.
    using RowTarget = std::function<void(const TilePlanes& planes, const PixelRect& rows)>;
    void draw(const PixelRect& rect, const RowTarget& target);

private:
    struct Drawn {
        TilePlanes planes;
        bool empty = true;
        bool reusable =
            false; ///< the memory is this step's alone: a pointwise reader may draw into it
    };

    TilePlanes drawWhole(const PixelRect& rect);
    void drawSteps(const PixelRect& rect);
    void drawStep(size_t index);
    TilePlanes input(const PlanStep& step, size_t n, const PixelRect& rect);
    bool isSharedBlur(const PlanStep& step, const PixelRect& window, const PixelRect& rect) const;
    TilePlanes withRecipesAlpha(const PlanStep& step, TilePlanes planes);
    int decidingInput(const PlanStep& step, Cover cover, const PixelRect& rect) const;
    TilePlanes pointwiseOutput(size_t index, const PlanStep& step, bool opaque);
    TilePlanes partOf(size_t index, size_t from, const PixelRect& rect);
    TilePlanes copiedRows(const TilePlanes& row);
    TilePlanes passedOn(size_t index, size_t from, const PixelRect& rect);

    TilePlanes drawStored(size_t index, const PlanStep& step, const PixelRect& rect);
    TilePlanes drawEnlarged(size_t index, const EnlargedBlur& blur, const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const SourceNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const PointwiseNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const CropNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const ClampNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const OrthogonalNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const WarpNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const HalveNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const GaussianNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const LanczosNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const WindowNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const HistogramNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const PatchesNode& node,
                        const PixelRect& rect);
    TilePlanes drawNode(size_t index, const PlanStep& step, const PatchGroundNode& node,
                        const PixelRect& rect);

    const PlanPass& m_pass;
    const std::vector<StoredPlan>& m_storedPlans;
    const std::vector<std::shared_ptr<StoredImage>>& m_stored;
    const PassTables& m_tables;
    RowGroups m_groups;
    const bool m_lastByRows;
    std::vector<std::vector<size_t>> m_lastRead; ///< by step: the inputs that no later step reads
    std::vector<PixelRect> m_requests;
    std::vector<Drawn> m_drawn;
    TileArena& m_arena;
    CancellationCheck m_check;
    PointwiseRuns m_runs;
};

} // namespace orvane
