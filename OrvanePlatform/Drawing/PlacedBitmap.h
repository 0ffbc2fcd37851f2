#pragma once

#include <memory>
#include <span>

namespace orvane {

class Bitmap;

/// A drawing and where it lies on its picture: pixels from the picture's left and top edges.
/// Without a bitmap there is nothing to see.
struct PlacedBitmap {
    std::shared_ptr<const Bitmap> bitmap;
    int x = 0;
    int y = 0;
};

/// Whether both cover some pixel of the picture.
bool meet(const PlacedBitmap& a, const PlacedBitmap& b);

/// Drawings of premultiplied sRGB bytes laid over one another as such bytes, the first lowest: what
/// they would have been, drawn into one bitmap. All have one.
PlacedBitmap laidTogether(std::span<const PlacedBitmap> drawings);

} // namespace orvane
