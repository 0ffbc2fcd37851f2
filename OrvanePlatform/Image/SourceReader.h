#pragma once

#include "TilePlanes.h"

namespace orvane {

class Bitmap;

/// A rectangle of a bitmap (y up, within the bitmap) as linear premultiplied planes. This is where
/// stored samples are widened; nothing else keeps a float copy of a source.
TilePlanes readSource(const Bitmap& bitmap, const PixelRect& rect, TileArena& arena);
/// Row y of it into that row of `planes`, which have an alpha plane if the bitmap has alpha.
void readSourceRow(const Bitmap& bitmap, int y, const TilePlanes& planes);

} // namespace orvane
