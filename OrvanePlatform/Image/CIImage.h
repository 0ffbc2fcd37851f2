#pragma once

#include "CGGeometry.h"
#include "Digest.h"
#include "ImageProperties.h"

#include <memory>

namespace orvane {

class Bitmap;
struct Node;

/// A colour: straight sRGB components, nominally 0..1.
struct CIColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const CIColor&) const = default;
};

/// An immutable, lazy recipe of an image. Copies share the recipe; building draws nothing.
///
/// Pixels are four float32 (red, green, blue, alpha), premultiplied, linear light, sRGB primaries,
/// values below 0 and above 1 legal. y points up, pixel (i, j) covers [i, i+1) x [j, j+1), finite
/// extents have whole-number edges, and outside its extent an image is transparent.
class CIImage {
public:
    /// The empty image: an empty extent, no pixels.
    CIImage();
    explicit CIImage(std::shared_ptr<const Node> node);

    /// The extent is (0, 0, width, height).
    static CIImage withBitmap(std::shared_ptr<const Bitmap> bitmap,
                              ImageProperties properties = {});
    /// An infinite image of one colour.
    static CIImage withColor(const CIColor& color);

    CGRect extent() const;
    bool isEmpty() const { return extent().isEmpty(); }
    /// Alpha is known to be 1 at every pixel of the extent.
    bool isOpaque() const;
    /// The metadata carried from the source; every operation hands its first input's on.
    const ImageProperties& properties() const;
    CIImage settingProperties(ImageProperties properties) const;

    /// Cut to the rectangle, its edges rounded to whole pixels; nothing is moved.
    CIImage cropped(const CGRect& rect) const;
    /// The edge pixels continued without end.
    CIImage clampedToExtent() const;
    /// Exact for whole-pixel moves, flips and quarter turns; bilinear otherwise, with 2x2 averaging
    /// ahead of it where the transform reduces. Chains of transforms become one.
    CIImage transformed(const CGAffineTransform& transform) const;
    CIImage compositedOver(const CIImage& background) const;
    /// sigma in pixels; the extent grows by ceil(3 sigma).
    CIImage gaussianBlurred(double sigma) const;
    /// Turned and mirrored as an Exif orientation of 1..8 asks, back to an origin of (0, 0).
    CIImage oriented(int exifOrientation) const;

    /// The same recipe object, not merely an equal picture.
    bool isSame(const CIImage& other) const { return m_node == other.m_node; }
    /// A key of the recipe's structure: equal recipes over the same sources have equal digests.
    Digest digest() const;
    const std::shared_ptr<const Node>& node() const { return m_node; }

private:
    std::shared_ptr<const Node> m_node;
};

} // namespace orvane
