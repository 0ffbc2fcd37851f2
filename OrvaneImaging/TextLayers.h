#pragma once

#include "CIImage.h"

#include <string>
#include <vector>

namespace orvane::TextLayers {

/// One block of text over the finished picture.
struct Item {
    std::string text; ///< UTF-8; may hold line breaks
    double x = 0.5; ///< centre of the block, fraction of the width from the left edge
    double y = 0.5; ///< centre of the block, fraction of the height from the top edge
    double size = 0; ///< font size, fraction of the image's long edge
    double red = 0; ///< straight sRGB, 0..1, as the three below
    double green = 0;
    double blue = 0;
    double alpha = 1;
    std::string font; ///< a family's name; empty means the system font
    bool shadow = false;

    bool operator==(const Item&) const = default;
};

/// The items drawn over the image in order, later ones on top; wrapped at 96 % of its width.
/// With nothing to draw, too little memory for it, or an infinite or empty image, the image itself.
CIImage draw(const std::vector<Item>& items, const CIImage& image);

} // namespace orvane::TextLayers
