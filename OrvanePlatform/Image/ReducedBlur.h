#pragma once

#include "BlurGrid.h"
#include "StoredImage.h"

#include <vector>

namespace orvane {

/// `cells` of the averages blurred, by weights as coarseWeights makes them; into `blurred`.
void blurCells(const StoredImage& averages, const std::vector<float>& weights,
               const PixelRect& cells, CoarseEdges edges, StoredImage& blurred, TileArena& arena);

} // namespace orvane
