#include "Geometry.h"

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvane::Geometry {

namespace {

double longSide(const CGRect& rect)
{
    return std::max(rect.width(), rect.height());
}

CIImage moved(const CIImage& image, double dx, double dy)
{
    return image.transformed(CGAffineTransform::translation(dx, dy));
}

/// With its lower left corner at (0, 0).
CIImage atOrigin(const CIImage& image)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.origin == CGPoint{0, 0})
        return image;
    return moved(image, -extent.minX(), -extent.minY());
}

/// The edge pixels without end, softened so that they do not look like stripes.
CIImage stretchedEdges(const CIImage& image)
{
    const CIImage clamped = image.clampedToExtent();
    const double height = image.extent().height();
    return height > 8 ? clamped.gaussianBlurred(height * 0.02) : clamped;
}

CIImage rotated(const CIImage& image, double degrees, bool onCanvas, const Fill& fill)
{
    const auto turn = CGAffineTransform::rotation(-degrees * std::numbers::pi / 180);
    CIImage result = image.transformed(turn);
    // The triangles that the turn exposes show the canvas; without one they stay transparent.
    if (onCanvas && !image.extent().isInfinite())
        result = result.compositedOver(backdrop(image, fill, turn)).cropped(result.extent());
    return atOrigin(result);
}

/// Mirrored within its own rectangle.
CIImage flipped(const CIImage& image, bool horizontally, bool vertically)
{
    const CGRect extent = image.extent();
    const auto shift =
        CGAffineTransform::translation(horizontally ? extent.maxX() + extent.minX() : 0,
                                       vertically ? extent.maxY() + extent.minY() : 0);
    return image.transformed(shift.scaled(horizontally ? -1 : 1, vertically ? -1 : 1));
}

/// crop counts from the top left; the image from the bottom left.
CIImage croppedToFractions(const CIImage& image, const CGRect& crop)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.isEmpty() || crop == fullFrame)
        return image;
    const CGRect rect(extent.minX() + crop.minX() * extent.width(),
                      extent.minY() + (1 - crop.minY() - crop.height()) * extent.height(),
                      std::max(crop.width() * extent.width(), 1.0),
                      std::max(crop.height() * extent.height(), 1.0));
    return atOrigin(image.cropped(rect));
}

CGRect canvasAround(const CGRect& extent, double aspect)
{
    if (aspect < extent.width() / extent.height())
        return {0, 0, std::round(extent.width()), std::round(extent.width() / aspect)};
    return {0, 0, std::round(aspect * extent.height()), std::round(extent.height())};
}

CIImage canvasBackdrop(const CIImage& picture, const CGRect& canvas, const Fill& fill)
{
    if (const auto* solid = std::get_if<ColourFill>(&fill))
        return CIImage::withColor(solid->colour);
    if (std::holds_alternative<EdgeFill>(fill))
        return stretchedEdges(picture);
    return blurred(picture, canvas);
}

} // namespace

CIImage apply(const CIImage& image, double rotation, bool flipH, bool flipV, const CGRect& crop,
              double canvasAspect, const Fill& fill)
{
    CIImage result = image;
    if (std::isfinite(rotation) && std::abs(rotation) > 0.01)
        result = rotated(result, rotation, canvasAspect > 0, fill);
    if (flipH || flipV)
        result = flipped(result, flipH, flipV);
    result = croppedToFractions(result, crop);
    return extend(result, canvasAspect, fill);
}

CIImage extend(const CIImage& image, double toAspect, const Fill& fill)
{
    const CGRect extent = image.extent();
    if (!(toAspect > 0) || extent.isInfinite() || extent.isEmpty()
        || std::abs(extent.width() / extent.height() - toAspect) <= 0.001)
        return image;

    // The outermost pixels of a rotated or resampled picture may be half transparent: leave them
    // out.
    const bool insets = extent.width() > 4 && extent.height() > 4;
    const CIImage inner = insets ? image.cropped(extent.inset(1, 1)) : image;
    const CGRect canvas = canvasAround(extent, toAspect);
    const CIImage picture =
        moved(inner, std::round((canvas.width() - extent.width()) * 0.5 - extent.minX()),
              std::round((canvas.height() - extent.height()) * 0.5 - extent.minY()));
    return picture.compositedOver(canvasBackdrop(picture, canvas, fill)).cropped(canvas);
}

CIImage backdrop(const CIImage& image, const Fill& fill, const CGAffineTransform& rotatedBy)
{
    if (const auto* solid = std::get_if<ColourFill>(&fill))
        return CIImage::withColor(solid->colour);
    if (std::holds_alternative<EdgeFill>(fill))
        return stretchedEdges(image).transformed(rotatedBy);
    const double sigma = longSide(image.extent()) * 0.04;
    return image.clampedToExtent().gaussianBlurred(sigma).transformed(rotatedBy);
}

CIImage blurred(const CIImage& image, const CGRect& filling)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.isEmpty())
        return image;
    const double scale =
        std::max(filling.width() / extent.width(), filling.height() / extent.height());
    // Before the enlargement, so that on the canvas it is 4 % of the longer side.
    const double sigma = longSide(extent) * 0.04 / scale;
    const auto cover =
        CGAffineTransform::translation(-extent.midX(), -extent.midY())
            .concatenated(CGAffineTransform::scale(scale, scale))
            .concatenated(CGAffineTransform::translation(filling.midX(), filling.midY()));
    return image.clampedToExtent().gaussianBlurred(sigma).transformed(cover);
}

CIImage resized(const CIImage& image, int longEdge)
{
    const CGRect extent = image.extent();
    if (longEdge < 1 || extent.isInfinite() || extent.isEmpty())
        return image;
    const double scale = double(longEdge) / longSide(extent);
    return scale >= 1 ? image : CIFilter::lanczosScaleTransform(image, scale);
}

} // namespace orvane::Geometry
