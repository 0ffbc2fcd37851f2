#pragma once

#include "Node.h"
#include "PixelRect.h"

#include <vector>

namespace orvane {

// Large blurs are computed on a grid reduced by a power of two.
//
// Level by level, cell i of a coarser grid is (1 3 3 1) / 8 of cells 2i - 1 .. 2i + 2 of the finer
// one, in both directions; back again, cells 2i and 2i + 1 are 3/4 of cell i and 1/4 of its nearer
// neighbour. Both are the same filter, a quadratic B-spline in the limit: what it leaves of the
// frequencies that a coarser grid folds over falls off with the third power of their distance. Up
// from the coarsest grid that is not enough, for its cells are as far apart as the blur allows:
// there the filter is (1 5 10 10 5 1) / 16, and the power the fifth.
// Between down and up lies a convolution whose weights make up for both, so that the whole comes
// close to blurWeights: a step differs by less than 7e-5, an eighth to a quarter of an 8-bit level
// near black. Cells are counted from the origin of the coordinates, so tiles agree to the bit.

/// The factor to compute a Gaussian of this sigma with: 1, or the largest power of two up to
/// sigma / 2.7.
int blurReduction(float sigma);
/// Its weights on the grid reduced by `factor`, at least 2: w(0) .. w(n), symmetric.
std::vector<double> coarseWeights(double sigma, int factor);
/// The n of coarseWeights.
int coarseReach(float sigma, int factor);

/// Halvings from a grid reduced by `finer` to one reduced by `coarser`.
int levelsBetween(int finer, int coarser);
/// Cells of a grid finer by `levels` that `cells` are made of.
PixelRect finerCells(PixelRect cells, int levels);
/// Cells of a grid coarser by `levels` that the pixels of `rect` are interpolated from.
PixelRect coarserCells(PixelRect rect, int levels);

/// What lies around the cells of a coarse image.
enum class CoarseEdges { Transparent, Repeated };
CoarseEdges coarseEdges(const Node& blurred);
/// The pixels that are averaged for a blur: its input but for the clamp that repeats the edges.
const Node& averagedNode(const Node& blur);
/// The cells that hold all there is of a blur's input: beyond them lie zeros, or repeats of the
/// outermost ones. What is unlimited is left so.
struct CellExtent {
    PixelRect cells;
    bool infinite = false;

    PixelRect held(const PixelRect& wanted, CoarseEdges edges) const;
};
CellExtent cellExtent(const Node& blurred, int factor);

} // namespace orvane
