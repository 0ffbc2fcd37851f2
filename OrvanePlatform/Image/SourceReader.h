#pragma once

#include "TilePlanes.h"

namespace orvane {

class Bitmap;

/// A rectangle of a bitmap (y up, within the bitmap) as linear premultiplied planes. This is where
/// stored samples are widened; nothing else keeps a float copy of a source.
TilePlanes readSource(const Bitmap& bitmap, const PixelRect& rect, TileArena& arena);

} // namespace orvane
