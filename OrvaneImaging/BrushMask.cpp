// A stroke with round caps and joins is everything within half a line's width of its points' path:
// the union of one capsule for each segment. A capsule is convex, so each row of it is one run,
// filled at once; only the pixels at a run's two ends are measured.
#include "BrushMask.h"

#include "Bitmap.h"
#include "RecentDrawings.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orvane {

namespace {

struct Run {
    double low = INFINITY;
    double high = -INFINITY;

    void include(double a, double b)
    {
        low = std::min(low, a);
        high = std::max(high, b);
    }
};

/// All points within `radius` of the segment from a to b; pixels, y from the top.
struct Capsule {
    CGPoint a;
    CGPoint b;

    double distance(double x, double y) const
    {
        const double ux = b.x - a.x;
        const double uy = b.y - a.y;
        const double square = ux * ux + uy * uy;
        const double along = square > 0 ? ((x - a.x) * ux + (y - a.y) * uy) / square : 0;
        const double t = std::clamp(along, 0.0, 1.0);
        return std::hypot(x - a.x - t * ux, y - a.y - t * uy);
    }

    /// Where the line at height y is within the radius; low above high when nowhere.
    Run run(double y, double radius) const
    {
        Run found;
        for (const CGPoint& end : {a, b}) {
            const double rest = radius * radius - (y - end.y) * (y - end.y);
            if (rest >= 0)
                found.include(end.x - std::sqrt(rest), end.x + std::sqrt(rest));
        }
        // The straight sides: points beside the segment, at the radius to its left and right.
        const double ux = b.x - a.x;
        const double uy = b.y - a.y;
        const double length = std::hypot(ux, uy);
        if (uy == 0) // along the rows, the two ends bound every run
            return found;
        for (const double side : {-1.0, 1.0}) {
            const double startX = a.x - side * uy / length * radius;
            const double startY = a.y + side * ux / length * radius;
            const double t = (y - startY) / uy;
            if (t >= 0 && t <= 1)
                found.include(startX + t * ux, startX + t * ux);
        }
        return found;
    }
};

/// Pixels first .. end - 1 of a row that are white already. The capsules of a stroke overlap by
/// nearly all of their area: filling each anew took most of the time.
struct WhiteRun {
    int first = 0;
    int end = 0;

    bool holds(int x) const { return x >= first && x < end; }
    /// Fills the row from `low` to before `high`, where it is not white yet.
    void fill(uint8_t* row, int low, int high)
    {
        if (low >= high)
            return;
        if (low > end || high < first || first == end) { // apart: the longer is remembered
            std::memset(row + low, 255, size_t(high - low));
            if (high - low > end - first)
                *this = {low, high};
            return;
        }
        if (low < first)
            std::memset(row + low, 255, size_t(first - low));
        if (high > end)
            std::memset(row + end, 255, size_t(high - end));
        *this = {std::min(low, first), std::max(high, end)};
    }
};

void paint(Bitmap& mask, std::vector<WhiteRun>& white, const Capsule& capsule, double radius)
{
    const int width = mask.width();
    const double reach = radius + 0.5;
    const double top = std::min(capsule.a.y, capsule.b.y) - reach;
    const double bottom = std::max(capsule.a.y, capsule.b.y) + reach;
    const int firstRow = int(std::clamp(std::floor(top), 0.0, double(mask.height())));
    const int endRow = int(std::clamp(std::ceil(bottom), 0.0, double(mask.height())));
    for (int row = firstRow; row < endRow; ++row) {
        const double y = row + 0.5;
        const Run outer = capsule.run(y, reach);
        if (!(outer.low <= outer.high))
            continue;
        const int first = int(std::clamp(std::floor(outer.low), 0.0, double(width)));
        const int end = int(std::clamp(std::ceil(outer.high), 0.0, double(width)));
        // Pixels whose centres lie half a pixel inside the edge are wholly covered.
        const Run inner = radius > 0.5 ? capsule.run(y, radius - 0.5) : Run{};
        int fullFirst = end;
        int fullEnd = end;
        if (inner.low <= inner.high) {
            fullFirst = int(std::clamp(std::ceil(inner.low - 0.5), double(first), double(end)));
            fullEnd = int(std::clamp(std::floor(inner.high + 0.5), double(fullFirst), double(end)));
        }
        uint8_t* pixels = mask.row(row);
        WhiteRun& known = white[size_t(row)];
        const auto blend = [&](int x) {
            if (known.holds(x))
                return;
            const double coverage = std::clamp(reach - capsule.distance(x + 0.5, y), 0.0, 1.0);
            pixels[x] = std::max(pixels[x], uint8_t(std::lround(coverage * 255)));
        };
        for (int x = first; x < fullFirst; ++x)
            blend(x);
        for (int x = fullEnd; x < end; ++x)
            blend(x);
        known.fill(pixels, fullFirst, fullEnd);
    }
}

using Strokes = std::vector<std::vector<CGPoint>>;

/// The pixels that the strokes may touch, and one more on each side, within the picture; low above
/// high when there are none.
struct Reach {
    Run x;
    Run y;
};

Reach reachOf(const Strokes& strokes, int width, int height, double lineWidth)
{
    Reach reach;
    for (const auto& stroke : strokes) {
        for (const CGPoint& p : stroke) {
            reach.x.include(p.x * width, p.x * width);
            reach.y.include(p.y * height, p.y * height);
        }
    }
    const double margin = lineWidth / 2 + 0.5 + 1;
    const auto held = [margin](const Run& run, int size) {
        return Run{std::max(std::floor(run.low - margin), 0.0),
                   std::min(std::ceil(run.high + margin), double(size))};
    };
    return {held(reach.x, width), held(reach.y, height)};
}

PlacedBitmap paintedMask(const Strokes& strokes, int width, int height, double lineWidth)
{
    const Reach reach = reachOf(strokes, width, height, lineWidth);
    if (!(reach.x.low < reach.x.high && reach.y.low < reach.y.high))
        return {};
    const auto left = int(reach.x.low);
    const auto top = int(reach.y.low);
    const int rows = int(reach.y.high) - top;
    auto mask = std::make_shared<Bitmap>(int(reach.x.high) - left, rows, 1, SampleType::U8,
                                         AlphaKind::None, BitmapContents::Zeros);
    std::vector<WhiteRun> white(static_cast<size_t>(rows));
    const auto placed = [&](const CGPoint& p) {
        return CGPoint{p.x * width - left, p.y * height - top};
    };
    for (const auto& stroke : strokes) {
        for (size_t i = 0; i < stroke.size(); ++i) {
            const Capsule capsule{placed(stroke[i == 0 ? 0 : i - 1]), placed(stroke[i])};
            if (i > 0 || stroke.size() == 1)
                paint(*mask, white, capsule, lineWidth / 2);
        }
    }
    return {mask, left, top};
}

Digest keyOf(const Strokes& strokes, int width, int height, double lineWidth)
{
    DigestBuilder key;
    key.add(uint64_t(width)).add(uint64_t(height)).add(&lineWidth, sizeof lineWidth);
    for (const auto& stroke : strokes)
        key.add(uint64_t(stroke.size())).add(stroke.data(), stroke.size() * sizeof(CGPoint));
    return key.digest();
}

} // namespace

PlacedBitmap brushMask(const Strokes& strokes, int width, int height, double lineWidth)
{
    static RecentDrawings recent(64 << 20);
    return recent.drawing(keyOf(strokes, width, height, lineWidth),
                          [&] { return paintedMask(strokes, width, height, lineWidth); });
}

} // namespace orvane
