#pragma once

#include "Node.h"
#include "PixelRect.h"
#include "ReducedBlur.h"

#include <vector>

namespace orvane {

/// What a pass draws, apart from the last, which draws the picture that was asked for.
struct StoredPlan {
    enum class Form {
        Whole, ///< the node's pixels
        ReducedBlur, ///< a large Gaussian's result on a grid `factor` times coarser
        Histogram, ///< the counts of a histogram node
    };
    const Node* node = nullptr;
    Form form = Form::Whole;
    int factor = 1; ///< of ReducedBlur: a power of two
    PixelRect region; ///< in the node's pixels; of ReducedBlur, in cells of the coarse grid
    int lastReader = 0; ///< the pass after which it is not needed
};

/// A node within a pass.
struct PlanStep {
    const Node* node = nullptr;
    std::vector<int> inputs; ///< steps of the same pass
    int stored = -1; ///< a leaf: read from this stored image
    int readers = 0;
};

/// One fused walk over an image, in tiles.
struct PlanPass {
    int target = -1; ///< the stored image it draws; -1: the picture asked for
    std::vector<PlanStep> steps; ///< inputs before their readers; the last is what is drawn
    PixelRect region; ///< of the last step's pixels
    int tileWidth = 0;
    int tileHeight = 0;
};

struct Plan {
    std::vector<PlanPass> passes; ///< in the order to run them
    std::vector<StoredPlan> stored;
};

/// The factor by which a Gaussian of this sigma is computed at reduced size: 1, or the largest
/// power of two up to sigma / 8.
int blurReduction(float sigma);
/// The sigma to use on the grid reduced by `factor`: the wanted variance less what averaging cells
/// and bilinear enlargement add by themselves.
double reducedSigma(float sigma, int factor);
/// Which cells of a reduced blur's input are drawn, and what lies around them.
struct CoarseArea {
    PixelRect cells;
    CoarseEdges edges = CoarseEdges::Transparent;
};
CoarseArea coarseArea(const StoredPlan& blur);
/// The cells that bilinear reads of `rect` touch.
PixelRect reducedCells(const PixelRect& rect, int factor);

/// The rectangle that each step of a pass must draw so that the last one can draw `rect`.
void requestedRects(const PlanPass& pass, const PixelRect& rect, std::vector<PixelRect>& requests);

/// Whether what a draw stores is kept for later ones.
enum class Intermediates { Freed, Kept };

/// Decides how `rect` of a recipe is drawn. tileWidth and tileHeight of 0 let it choose.
Plan makePlan(const Node& root, const PixelRect& rect, int tileWidth, int tileHeight,
              Intermediates intermediates = Intermediates::Freed);

} // namespace orvane
