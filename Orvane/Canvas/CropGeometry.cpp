#include "CropGeometry.h"

#include <algorithm>
#include <cmath>

namespace orvane::CropGeometry {

namespace {

/// The fraction of the frame's height that goes with a width, and the reverse.
double heightFor(double width, const Ratio& ratio)
{
    return width * ratio.frame.width / (ratio.frame.height * *ratio.pixels);
}

double widthFor(double height, const Ratio& ratio)
{
    return height * ratio.frame.height * *ratio.pixels / ratio.frame.width;
}

bool isHeld(const Ratio& ratio)
{
    return ratio.pixels && *ratio.pixels > 0 && ratio.frame.width > 0 && ratio.frame.height > 0;
}

/// One side dragged, the other where it is.
void dragSide(double& from, double& length, bool isMax, double by)
{
    const double to = from + length;
    if (isMax) {
        length = std::min(std::max(to + by, from + smallest), 1.0) - from;
        return;
    }
    const double dragged = std::max(std::min(from + by, to - smallest), 0.0);
    length = to - dragged;
    from = dragged;
}

/// Where the frame is too short for the ratio, the crop is as high or as wide as it, and the other
/// side follows, so that the ratio holds. The sides that were not dragged stay.
CGRect withRatio(CGRect crop, const CropGrab& grab, const Ratio& ratio)
{
    const double right = crop.maxX();
    const double bottom = crop.maxY();
    if (grab.kind == CropGrab::Kind::EdgeY) {
        crop.size.width = std::min(widthFor(crop.height(), ratio), 1.0);
        crop.size.height = heightFor(crop.width(), ratio);
    } else {
        crop.size.height = std::min(heightFor(crop.width(), ratio), 1.0);
        crop.size.width = widthFor(crop.height(), ratio);
    }
    if (grab.holdsX() && !grab.isMaxX)
        crop.origin.x = right - crop.width();
    if (grab.holdsY() && !grab.isMaxY)
        crop.origin.y = bottom - crop.height();
    return moved(crop, {});
}

} // namespace

CropGrab grab(const CGPoint& at, const CGRect& crop)
{
    const bool nearMinX = std::abs(at.x - crop.minX()) < reach;
    const bool nearMaxX = std::abs(at.x - crop.maxX()) < reach;
    const bool nearMaxY = std::abs(at.y - crop.maxY()) < reach;
    const bool nearY = nearMaxY || std::abs(at.y - crop.minY()) < reach;
    if (nearMinX || nearMaxX)
        return nearY ? CropGrab::corner(nearMaxX, nearMaxY) : CropGrab::edgeX(nearMaxX);
    return nearY ? CropGrab::edgeY(nearMaxY) : CropGrab::move();
}

CGRect moved(const CGRect& crop, const CGPoint& by)
{
    CGRect result = crop;
    result.origin.x = std::max(0.0, std::min(crop.minX() + by.x, 1 - crop.width()));
    result.origin.y = std::max(0.0, std::min(crop.minY() + by.y, 1 - crop.height()));
    return result;
}

CGRect resized(const CGRect& crop, const CropGrab& grab, const CGPoint& by, const Ratio& in)
{
    if (grab.kind == CropGrab::Kind::Move)
        return moved(crop, by);
    CGRect result = crop;
    if (grab.holdsX())
        dragSide(result.origin.x, result.size.width, grab.isMaxX, by.x);
    if (grab.holdsY())
        dragSide(result.origin.y, result.size.height, grab.isMaxY, by.y);
    return isHeld(in) ? withRatio(result, grab, in) : result;
}

CGRect grown(const CGRect& crop, double by, const Ratio& in)
{
    double width = std::clamp(crop.width() + by, smallest, 1.0);
    double height = std::clamp(crop.height() + by, smallest, 1.0);
    if (isHeld(in)) {
        height = std::min(heightFor(width, in), 1.0);
        width = widthFor(height, in);
    }
    return moved({crop.midX() - width / 2, crop.midY() - height / 2, width, height}, {});
}

} // namespace orvane::CropGeometry
