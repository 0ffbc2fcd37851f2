// perspectiveTransform: the projective map H that takes the unit square (0,0) (1,0) (1,1) (0,1) to
// bottom left q0, bottom right q1, top right q2 and top left q3 (Heckbert, Fundamentals of Texture
// Mapping, 1989, 2.2.3):
//
//   dx1 = x1 - x2, dx2 = x3 - x2, sx = x0 - x1 + x2 - x3, the same for y
//   den = dx1 dy2 - dx2 dy1;  g = (sx dy2 - dx2 sy) / den;  h = (dx1 sy - sx dy1) / den
//   H = [x1 - x0 + g x1, x3 - x0 + h x3, x0;  y1 - y0 + g y1, y3 - y0 + h y3, y0;  g, h, 1]
//
// The square stands for the rectangle of the input's extent. An output pixel's centre goes through
// the inverse of H; where that has w <= 0 the plane is behind the eye and nothing is there.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filters/Perspective.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "Filters/CIFilter.h"
#include "Node.h"
#include "WarpMap-inl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

class PerspectiveMap {
public:
    static constexpr int maps = 1;
    using Row = std::array<double, 3>;
    /// From output to input coordinates, homogeneous; positive w is in front of the eye.
    struct Record {
        Row x;
        Row y;
        Row w;
        double extent[4]; ///< the input's: left, bottom, width, height
    };

    HWY_INLINE PerspectiveMap(const Record& record, double cy)
        : m_x(record.x, cy)
        , m_y(record.y, cy)
        , m_w(record.w, cy)
    {
    }
    HWY_INLINE void operator()(Doubles cx, Doubles* x, Doubles* y) const
    {
        const Doubles w = m_w.at(cx);
        // Division by NaN, so that nothing is there.
        const Doubles nothing = allOf(std::numeric_limits<double>::quiet_NaN());
        const Doubles front = hn::IfThenElse(hn::Gt(w, hn::Zero(WarpTag())), w, nothing);
        const Doubles inverse = hn::Div(allOf(1), front);
        x[0] = hn::Mul(m_x.at(cx), inverse);
        y[0] = hn::Mul(m_y.at(cx), inverse);
    }

private:
    /// One of the three sums, along a row of output pixels.
    struct Line {
        HWY_INLINE Line(const Row& row, double cy)
            : slope(allOf(row[0]))
            , start(allOf(row[1] * cy + row[2]))
        {
        }
        HWY_INLINE Doubles at(Doubles cx) const { return hn::MulAdd(slope, cx, start); }

        Doubles slope;
        Doubles start;
    };

    Line m_x;
    Line m_y;
    Line m_w;
};

ORVANE_WARP_MAP_RUN(PerspectiveMap)

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace orvane {

ORVANE_WARP_MAP(PerspectiveMap)

namespace {

using Row = HWY_NAMESPACE::PerspectiveMap::Row;
using PerspectiveRecord = HWY_NAMESPACE::PerspectiveMap::Record;

double at(const Row& row, double x, double y)
{
    return row[0] * x + row[1] * y + row[2];
}

/// Where w stays positive a rectangle's image is the quadrilateral of its corners' images. Anything
/// else may reach to infinity, and then the whole input is asked for.
CGRect perspectiveRegion(const void* record, const PixelRect& rect)
{
    const auto& p = *static_cast<const PerspectiveRecord*>(record);
    const double infinity = std::numeric_limits<double>::infinity();
    double left = infinity;
    double bottom = infinity;
    double right = -infinity;
    double top = -infinity;
    for (const double cx : {double(rect.x0), double(rect.x1)}) {
        for (const double cy : {double(rect.y0), double(rect.y1)}) {
            const double w = at(p.w, cx, cy);
            if (!(w > 0))
                return {p.extent[0], p.extent[1], p.extent[2], p.extent[3]};
            left = std::min(left, at(p.x, cx, cy) / w);
            right = std::max(right, at(p.x, cx, cy) / w);
            bottom = std::min(bottom, at(p.y, cx, cy) / w);
            top = std::max(top, at(p.y, cx, cy) / w);
        }
    }
    return {left, bottom, right - left, top - bottom};
}

const WarpKernel perspectiveKernel{"perspectiveTransform", 1, mapPerspectiveMap, perspectiveRegion};

using Matrix = std::array<Row, 3>;

Matrix squareToCorners(const CIFilter::Corners& q)
{
    const double x0 = q.bottomLeft.x, x1 = q.bottomRight.x, x2 = q.topRight.x, x3 = q.topLeft.x;
    const double y0 = q.bottomLeft.y, y1 = q.bottomRight.y, y2 = q.topRight.y, y3 = q.topLeft.y;
    const double dx1 = x1 - x2, dx2 = x3 - x2, sx = x0 - x1 + x2 - x3;
    const double dy1 = y1 - y2, dy2 = y3 - y2, sy = y0 - y1 + y2 - y3;
    const double den = dx1 * dy2 - dx2 * dy1;
    const double g = (sx * dy2 - dx2 * sy) / den;
    const double h = (dx1 * sy - sx * dy1) / den;
    return {{{x1 - x0 + g * x1, x3 - x0 + h * x3, x0},
             {y1 - y0 + g * y1, y3 - y0 + h * y3, y0},
             {g, h, 1}}};
}

/// Absent numbers (not finite) where there is no inverse. The division by the determinant keeps
/// the sign of w.
Matrix inverted(const Matrix& m)
{
    const auto minor = [&](int row, int column) {
        const auto r0 = size_t((row + 1) % 3), r1 = size_t((row + 2) % 3);
        const auto c0 = size_t((column + 1) % 3), c1 = size_t((column + 2) % 3);
        return m[r0][c0] * m[r1][c1] - m[r0][c1] * m[r1][c0];
    };
    const double determinant =
        m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
    Matrix result;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            result[size_t(row)][size_t(column)] = minor(column, row) / determinant;
    }
    return result;
}

bool isFinite(const PerspectiveRecord& record)
{
    const auto finite = [](const Row& row) {
        return std::ranges::all_of(row, [](double value) { return std::isfinite(value); });
    };
    return finite(record.x) && finite(record.y) && finite(record.w);
}

} // namespace

CIImage CIFilter::perspectiveTransform(const CIImage& input, const Corners& corners)
{
    const CGRect e = input.extent();
    if (e.isInfinite() || e.isEmpty())
        return input;
    const CGPoint inPlace[] = {
        {e.minX(), e.minY()}, {e.maxX(), e.minY()}, {e.maxX(), e.maxY()}, {e.minX(), e.maxY()}};
    const CGPoint wanted[] = {corners.bottomLeft, corners.bottomRight, corners.topRight,
                              corners.topLeft};
    if (std::ranges::equal(inPlace, wanted))
        return input;
    const Matrix back = inverted(squareToCorners(corners));
    PerspectiveRecord record{{}, {}, back[2], {e.minX(), e.minY(), e.width(), e.height()}};
    for (size_t i = 0; i < 3; ++i) {
        record.x[i] = e.width() * back[0][i] + e.minX() * back[2][i];
        record.y[i] = e.height() * back[1][i] + e.minY() * back[2][i];
    }
    // Corners on one line, or no points at all: nothing to see.
    if (!isFinite(record))
        return CIImage();
    const auto [left, right] = std::ranges::minmax(wanted, {}, &CGPoint::x);
    const auto [bottom, top] = std::ranges::minmax(wanted, {}, &CGPoint::y);
    const CGRect box{left.x, bottom.y, right.x - left.x, top.y - bottom.y};
    return applyWarp(perspectiveKernel, Parameters::of(record), input,
                     roundedOutward(box).cgRect());
}

} // namespace orvane

#endif
