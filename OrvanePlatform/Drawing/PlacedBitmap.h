#pragma once

#include <memory>

namespace orvane {

class Bitmap;

/// A drawing and where it lies on its picture: pixels from the picture's left and top edges.
/// Without a bitmap there is nothing to see.
struct PlacedBitmap {
    std::shared_ptr<const Bitmap> bitmap;
    int x = 0;
    int y = 0;
};

} // namespace orvane
