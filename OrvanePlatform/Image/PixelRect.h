#pragma once

#include "CGGeometry.h"

#include <algorithm>

namespace orvane {

/// Whole pixels [x0, x1) x [y0, y1), y up. Empty when a side is 0 or less.
struct PixelRect {
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;

    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
    bool isEmpty() const { return x1 <= x0 || y1 <= y0; }
    double area() const { return isEmpty() ? 0 : double(width()) * double(height()); }

    bool contains(const PixelRect& r) const
    {
        return r.isEmpty() || (r.x0 >= x0 && r.x1 <= x1 && r.y0 >= y0 && r.y1 <= y1);
    }
    /// Empty results are the one default rectangle.
    PixelRect intersection(const PixelRect& r) const
    {
        const PixelRect both{std::max(x0, r.x0), std::max(y0, r.y0), std::min(x1, r.x1),
                             std::min(y1, r.y1)};
        return both.isEmpty() ? PixelRect{} : both;
    }
    PixelRect united(const PixelRect& r) const
    {
        if (isEmpty())
            return r;
        if (r.isEmpty())
            return *this;
        return {std::min(x0, r.x0), std::min(y0, r.y0), std::max(x1, r.x1), std::max(y1, r.y1)};
    }
    PixelRect grown(int n) const
    {
        return isEmpty() ? *this : PixelRect{x0 - n, y0 - n, x1 + n, y1 + n};
    }
    CGRect cgRect() const { return {double(x0), double(y0), double(width()), double(height())}; }

    bool operator==(const PixelRect&) const = default;
};

/// Coordinates beyond this many pixels are held here: far outside any picture, far inside an int.
inline constexpr int farAway = 1 << 28;

int heldToInt(double value);
/// a / b rounded down, for b above 0.
inline int floorDivided(int a, int b)
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}
/// Edges rounded to the nearest whole pixel.
PixelRect roundedRect(const CGRect& rect);
/// Grown to whole pixels; edges within 1e-6 of a whole number count as that number.
PixelRect roundedOutward(const CGRect& rect);

/// Where an image has pixels: a rectangle, or everywhere.
struct Extent {
    bool infinite = false;
    PixelRect rect;

    static Extent everywhere() { return {true, {}}; }
    static Extent of(const PixelRect& r) { return {false, r.isEmpty() ? PixelRect{} : r}; }

    bool isEmpty() const { return !infinite && rect.isEmpty(); }
    bool contains(const PixelRect& r) const { return infinite || rect.contains(r); }
    bool contains(const Extent& e) const
    {
        return infinite || (!e.infinite && rect.contains(e.rect));
    }
    PixelRect clipped(const PixelRect& r) const { return infinite ? r : rect.intersection(r); }
    Extent united(const Extent& e) const
    {
        return infinite || e.infinite ? everywhere() : of(rect.united(e.rect));
    }
    CGRect cgRect() const { return infinite ? CGRect::infinite() : rect.cgRect(); }
};

} // namespace orvane
