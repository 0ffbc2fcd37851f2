#pragma once

#include "StoredImage.h"
#include "ThreadPool.h"

namespace orvane {

/// Averages of factor x factor cells into a coarse image. `cells` of the grid, whose full-size
/// pixels `planes` holds (zeros where it does not reach). Cell (i, j) covers [i f, (i+1) f) x [j f,
/// (j+1) f).
void averageCells(const TilePlanes& planes, const PixelRect& cells, int factor, StoredImage& coarse,
                  TileArena& arena);

/// What lies around the cells of a coarse image.
enum class CoarseEdges { Transparent, Repeated };

/// The coarse image blurred by `sigma` cells over `region`.
std::shared_ptr<StoredImage> blurredCells(const StoredImage& coarse, double sigma,
                                          const PixelRect& region, CoarseEdges edges,
                                          ThreadPool& pool);

/// Full-size pixels of a blur from its coarse image, bilinear between the cells' centres.
TilePlanes enlargedBlur(const StoredImage& coarse, int factor, const PixelRect& rect,
                        TileArena& arena);

} // namespace orvane
