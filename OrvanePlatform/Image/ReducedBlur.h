#pragma once

#include "StoredImage.h"

#include <vector>

namespace orvane {

/// Averages of factor x factor cells into a coarse image. `cells` of the grid, whose full-size
/// pixels `planes` holds (zeros where it does not reach). Cell (i, j) covers [i f, (i+1) f) x [j f,
/// (j+1) f).
void averageCells(const TilePlanes& planes, const PixelRect& cells, int factor, StoredImage& coarse,
                  TileArena& arena);

/// What lies around the cells of a coarse image.
enum class CoarseEdges { Transparent, Repeated };

/// `cells` of the averages blurred, by weights as gaussianWeights makes them; into `blurred`.
void blurCells(const StoredImage& averages, const std::vector<float>& weights,
               const PixelRect& cells, CoarseEdges edges, StoredImage& blurred, TileArena& arena);

/// Full-size pixels of a blur from its coarse image, bilinear between the cells' centres.
TilePlanes enlargedBlur(const StoredImage& coarse, int factor, const PixelRect& rect,
                        TileArena& arena);

} // namespace orvane
