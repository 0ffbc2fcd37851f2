#pragma once

namespace orvane {

/// Points, sizes and rectangles in 64-bit floats. The y axis points up unless a name says
/// otherwise.
struct CGPoint {
    double x = 0;
    double y = 0;

    bool operator==(const CGPoint&) const = default;
};

struct CGSize {
    double width = 0;
    double height = 0;

    bool operator==(const CGSize&) const = default;
};

/// A rectangle by origin and size; a size of 0 or less is empty. "Infinite" is a state of its own,
/// never a large rectangle: ask isInfinite() before using the numbers of an image's extent.
class CGRect {
public:
    CGPoint origin;
    CGSize size;

    constexpr CGRect() = default;
    constexpr CGRect(double x, double y, double width, double height)
        : origin{x, y}
        , size{width, height}
    {
    }
    static CGRect infinite();

    bool isInfinite() const { return m_infinite; }
    bool isEmpty() const { return !m_infinite && (!(size.width > 0) || !(size.height > 0)); }

    double minX() const { return origin.x; }
    double minY() const { return origin.y; }
    double maxX() const { return origin.x + size.width; }
    double maxY() const { return origin.y + size.height; }
    double midX() const { return origin.x + size.width * 0.5; }
    double midY() const { return origin.y + size.height * 0.5; }
    double width() const { return size.width; }
    double height() const { return size.height; }

    /// The rectangle with each side moved inwards by dx, dy (outwards when negative).
    CGRect inset(double dx, double dy) const;
    /// The smallest rectangle of whole numbers that holds this one.
    CGRect integral() const;
    CGRect intersection(const CGRect& other) const;
    CGRect united(const CGRect& other) const;
    bool contains(const CGRect& other) const;

    bool operator==(const CGRect&) const = default;

private:
    bool m_infinite = false;
};

/// x' = a x + c y + tx;  y' = b x + d y + ty.
struct CGAffineTransform {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double tx = 0;
    double ty = 0;

    static CGAffineTransform rotation(double radians);
    static CGAffineTransform scale(double sx, double sy);
    static CGAffineTransform translation(double tx, double ty);

    /// The transform that does this one first and `next` after it.
    CGAffineTransform concatenated(const CGAffineTransform& next) const;
    /// The transform that scales first and does this one after it.
    CGAffineTransform scaled(double sx, double sy) const;
    /// The inverse; the identity when there is none.
    CGAffineTransform inverted() const;
    double determinant() const { return a * d - b * c; }
    bool isIdentity() const { return *this == CGAffineTransform{}; }
    bool isFinite() const;

    CGPoint apply(const CGPoint& p) const
    {
        return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty};
    }
    /// The bounding box of the transformed rectangle; infinite stays infinite.
    CGRect apply(const CGRect& r) const;

    bool operator==(const CGAffineTransform&) const = default;
};

} // namespace orvane
