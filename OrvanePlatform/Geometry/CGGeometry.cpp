#include "CGGeometry.h"

#include <algorithm>
#include <cmath>

namespace orvane {

CGRect CGRect::infinite()
{
    CGRect rect;
    rect.m_infinite = true;
    return rect;
}

CGRect CGRect::inset(double dx, double dy) const
{
    if (m_infinite)
        return *this;
    return {origin.x + dx, origin.y + dy, size.width - 2 * dx, size.height - 2 * dy};
}

CGRect CGRect::integral() const
{
    if (m_infinite || isEmpty())
        return *this;
    const double x0 = std::floor(minX());
    const double y0 = std::floor(minY());
    return {x0, y0, std::ceil(maxX()) - x0, std::ceil(maxY()) - y0};
}

CGRect CGRect::intersection(const CGRect& other) const
{
    if (m_infinite)
        return other;
    if (other.m_infinite)
        return *this;
    const double x0 = std::max(minX(), other.minX());
    const double y0 = std::max(minY(), other.minY());
    const double x1 = std::min(maxX(), other.maxX());
    const double y1 = std::min(maxY(), other.maxY());
    if (!(x1 > x0) || !(y1 > y0))
        return {};
    return {x0, y0, x1 - x0, y1 - y0};
}

CGRect CGRect::united(const CGRect& other) const
{
    if (m_infinite || other.isEmpty())
        return *this;
    if (other.m_infinite || isEmpty())
        return other;
    const double x0 = std::min(minX(), other.minX());
    const double y0 = std::min(minY(), other.minY());
    return {x0, y0, std::max(maxX(), other.maxX()) - x0, std::max(maxY(), other.maxY()) - y0};
}

bool CGRect::contains(const CGRect& other) const
{
    if (m_infinite || other.isEmpty())
        return true;
    if (other.m_infinite)
        return false;
    return other.minX() >= minX() && other.maxX() <= maxX() && other.minY() >= minY()
        && other.maxY() <= maxY();
}

CGAffineTransform CGAffineTransform::rotation(double radians)
{
    const double cosine = std::cos(radians);
    const double sine = std::sin(radians);
    return {cosine, sine, -sine, cosine, 0, 0};
}

CGAffineTransform CGAffineTransform::scale(double sx, double sy)
{
    return {sx, 0, 0, sy, 0, 0};
}

CGAffineTransform CGAffineTransform::translation(double tx, double ty)
{
    return {1, 0, 0, 1, tx, ty};
}

CGAffineTransform CGAffineTransform::concatenated(const CGAffineTransform& next) const
{
    return {a * next.a + b * next.c,
            a * next.b + b * next.d,
            c * next.a + d * next.c,
            c * next.b + d * next.d,
            tx * next.a + ty * next.c + next.tx,
            tx * next.b + ty * next.d + next.ty};
}

CGAffineTransform CGAffineTransform::scaled(double sx, double sy) const
{
    return scale(sx, sy).concatenated(*this);
}

CGAffineTransform CGAffineTransform::inverted() const
{
    const double det = determinant();
    if (det == 0 || !std::isfinite(det))
        return {};
    return {d / det, -b / det, -c / det, a / det, (c * ty - d * tx) / det, (b * tx - a * ty) / det};
}

bool CGAffineTransform::isFinite() const
{
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(c) && std::isfinite(d)
        && std::isfinite(tx) && std::isfinite(ty);
}

CGRect CGAffineTransform::apply(const CGRect& r) const
{
    if (r.isInfinite())
        return r;
    const CGPoint corners[] = {apply({r.minX(), r.minY()}), apply({r.maxX(), r.minY()}),
                               apply({r.minX(), r.maxY()}), apply({r.maxX(), r.maxY()})};
    CGPoint low = corners[0];
    CGPoint high = corners[0];
    for (const CGPoint& corner : corners) {
        low = {std::min(low.x, corner.x), std::min(low.y, corner.y)};
        high = {std::max(high.x, corner.x), std::max(high.y, corner.y)};
    }
    return {low.x, low.y, high.x - low.x, high.y - low.y};
}

} // namespace orvane
