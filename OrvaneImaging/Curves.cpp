// Monotone cubic interpolation after F. N. Fritsch and R. E. Carlson, "Monotone Piecewise Cubic
// Interpolation", SIAM Journal on Numerical Analysis 17 (1980): tangents are shortened to lie
// within the circle of radius 3, so no value leaves the range of its two neighbouring points.
#include "Curves.h"

#include "Filters/CIFilter.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvane::Curves {

namespace {

using Point = Adjustments::CurvePoint;

double held(double value)
{
    return std::isnan(value) ? 0 : std::clamp(value, 0.0, 255.0);
}

/// Ascending in x, each x once, all within 0..255, at least two.
std::vector<Point> cleaned(std::span<const Point> points)
{
    std::vector<Point> sorted;
    for (const Point& point : points)
        sorted.push_back({held(point.x), held(point.y)});
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Point& a, const Point& b) { return a.x < b.x; });
    std::vector<Point> unique;
    for (const Point& point : sorted) {
        if (!unique.empty() && unique.back().x == point.x)
            unique.back() = point;
        else
            unique.push_back(point);
    }
    return unique.size() < 2 ? std::vector<Point>{{0, 0}, {255, 255}} : unique;
}

std::vector<double> monotoneTangents(const std::vector<Point>& points)
{
    const size_t last = points.size() - 1;
    std::vector<double> delta(last);
    for (size_t i = 0; i < last; ++i)
        delta[i] = (points[i + 1].y - points[i].y) / (points[i + 1].x - points[i].x);

    std::vector<double> m(points.size());
    m[0] = delta[0];
    m[last] = delta[last - 1];
    for (size_t i = 1; i < last; ++i)
        m[i] = delta[i - 1] * delta[i] <= 0 ? 0 : (delta[i - 1] + delta[i]) * 0.5;

    for (size_t i = 0; i < last; ++i) {
        if (delta[i] == 0) {
            m[i] = m[i + 1] = 0;
            continue;
        }
        const double a = m[i] / delta[i];
        const double b = m[i + 1] / delta[i];
        const double s = a * a + b * b;
        if (s > 9) {
            const double t = 3 / std::sqrt(s);
            m[i] = t * a * delta[i];
            m[i + 1] = t * b * delta[i];
        }
    }
    return m;
}

int rounded(double value)
{
    return std::clamp(int(std::round(value)), 0, 255);
}

double hermite(const Point& p0, const Point& p1, double m0, double m1, double x)
{
    const double h = p1.x - p0.x;
    const double t = (x - p0.x) / h;
    const double t2 = t * t;
    const double t3 = t2 * t;
    return (2 * t3 - 3 * t2 + 1) * p0.y + h * (t3 - 2 * t2 + t) * m0 + (3 * t2 - 2 * t3) * p1.y
        + h * (t3 - t2) * m1;
}

Table channelTable(const Adjustments::Curve& curve, const char* channel)
{
    const auto found = curve.find(channel);
    return found == curve.end() ? lut({}) : lut(found->second);
}

} // namespace

Table lut(std::span<const Point> points)
{
    const std::vector<Point> p = cleaned(points);
    const std::vector<double> m = monotoneTangents(p);
    Table table;
    size_t k = 0;
    for (int v = 0; v < int(table.size()); ++v) {
        if (v <= p.front().x) {
            table[size_t(v)] = rounded(p.front().y);
        } else if (v >= p.back().x) {
            table[size_t(v)] = rounded(p.back().y);
        } else {
            while (p[k + 1].x < v)
                ++k;
            table[size_t(v)] = rounded(hermite(p[k], p[k + 1], m[k], m[k + 1], v));
        }
    }
    return table;
}

CIImage apply(const CIImage& image, const Adjustments::Curve& curve)
{
    if (curve == Adjustments::identityCurve())
        return image;
    const Table master = channelTable(curve, "master");
    const Table channels[] = {channelTable(curve, "r"), channelTable(curve, "g"),
                              channelTable(curve, "b")};
    std::vector<float> triples;
    triples.reserve(master.size() * 3);
    for (const int level : master) {
        for (const Table& channel : channels)
            triples.push_back(float(channel[size_t(level)]) / 255.0f);
    }
    return CIFilter::colorCurves(image, triples).value_or(image);
}

} // namespace orvane::Curves
