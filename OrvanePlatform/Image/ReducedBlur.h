#pragma once

#include "BlurGrid.h"
#include "StoredImage.h"

#include <vector>

namespace orvane {

/// `cells` of a grid `levels` halvings coarser than that of `planes`, into `averages`. Where the
/// planes do not reach there are zeros.
void averageCells(const TilePlanes& planes, const PixelRect& cells, int levels,
                  StoredImage& averages, TileArena& arena);
/// The same from finer averages.
void averageCells(const StoredImage& finer, CoarseEdges edges, const PixelRect& cells, int levels,
                  StoredImage& averages, TileArena& arena);

/// `cells` of the averages blurred, by weights as coarseWeights makes them; into `blurred`.
void blurCells(const StoredImage& averages, const std::vector<float>& weights,
               const PixelRect& cells, CoarseEdges edges, StoredImage& blurred, TileArena& arena);

/// A blur from its cells, as wide as `rect` but still half as high.
TilePlanes widenedBlur(const StoredImage& blurred, int factor, const PixelRect& rect,
                       TileArena& arena);
/// Row y of full-size pixels from that.
void drawEnlargedRow(const TilePlanes& widened, int y, const TilePlanes& planes);
/// Full-size pixels of a blur from its cells.
TilePlanes enlargedBlur(const StoredImage& blurred, int factor, const PixelRect& rect,
                        TileArena& arena);

} // namespace orvane
