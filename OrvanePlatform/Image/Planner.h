#pragma once

#include "Node.h"
#include "PixelRect.h"

#include <vector>

namespace orvane {

/// What a pass draws, apart from the last, which draws the picture that was asked for.
struct StoredPlan {
    enum class Form {
        Whole, ///< the node's pixels
        Averages, ///< a large Gaussian's input on a grid `factor` times coarser
        ReducedBlur, ///< its result on that grid
        Histogram, ///< the counts of a histogram node
    };
    const Node* node = nullptr;
    Form form = Form::Whole;
    int factor = 1; ///< of the grid: a power of two
    /// The averages that it is made of: those that a ReducedBlur blurs, or finer ones that coarser
    /// ones are made from; -1: none.
    int averages = -1;
    /// Must not be rounded to compact floats.
    bool exact = false;
    /// Of a picture with patches: it holds only what the patches cover and see.
    bool aroundPatches = false;
    PixelRect region; ///< in the node's pixels, or in cells of the coarse grid
};

/// A node within a pass.
struct PlanStep {
    const Node* node = nullptr;
    std::vector<int> inputs; ///< steps of the same pass
    int stored = -1; ///< a leaf: read from this stored image
    /// Of a blur: the pass's first one of the same picture and width; -1: itself. They may differ
    /// in what they take to lie around the picture, so only where neither reads beyond its edges
    /// are their pixels the same.
    int sameBlur = -1;
    int readers = 0;
};

/// One fused walk over an image, in tiles.
struct PlanPass {
    int target = -1; ///< the stored image it draws; -1: the picture asked for
    bool patches = false; ///< it reads its target, and draws over a part of it
    std::vector<PlanStep> steps; ///< inputs before their readers; the last is what is drawn
    /// In the target's units: cells of a coarse grid, otherwise pixels of the last step.
    PixelRect region;
    int tileWidth = 0;
    int tileHeight = 0;
};

struct Plan {
    std::vector<PlanPass> passes; ///< in the order to run them
    std::vector<StoredPlan> stored;
};

/// The rectangle that each step of a pass must draw so that the last one can draw `rect`, in
/// pixels.
void requestedRects(const PlanPass& pass, const PixelRect& rect, std::vector<PixelRect>& requests);
/// The pixels of the pass's last step behind `rect` of its target.
PixelRect pixelsBehind(const Plan& plan, const PlanPass& pass, const PixelRect& rect);

/// Part of a stored image, in that image's units.
struct StoredRead {
    int stored = -1;
    PixelRect rect;
};
/// What a pass reads from memory to draw `rect` of its target.
std::vector<StoredRead> storedReads(const Plan& plan, const PlanPass& pass, const PixelRect& rect);

/// Whether what a draw stores is kept for later ones.
enum class Intermediates { Freed, Kept };

/// In pixels, where nothing speaks for others.
inline constexpr int defaultTileWidth = 384;
inline constexpr int defaultTileHeight = 96;
/// Chooses the tiles of a plan's passes, whose regions are settled.
void chooseTiles(Plan& plan, int tileWidth, int tileHeight, Intermediates intermediates);

/// Decides how `rect` of a recipe is drawn. tileWidth and tileHeight of 0 let it choose.
Plan makePlan(const Node& root, const PixelRect& rect, int tileWidth, int tileHeight,
              Intermediates intermediates = Intermediates::Freed);

} // namespace orvane
