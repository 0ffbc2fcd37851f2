// Bilinear samples, one vector of output pixels at a time.
//
// Neighbouring output pixels nearly always read neighbouring input pixels. So a vector's taps are
// not gathered one by one (a gather costs about two cycles for each lane, and twelve are needed):
// each input row that the vector touches is loaded as a window of two vectors, and permutes pick
// every lane's two taps from it.
//
//        window, 2 N pixels          lanes 0 .. 5 on a falling line
//   row j0    [ . 0 1 . . . . . ]    each row is interpolated across once, for all lanes,
//   row j0+1  [ . . . 2 3 4 . . ]    then each pair of rows down; a lane keeps the pair
//   row j0+2  [ . . . . . . 5 . ]    that its position lies in.
//
// Where a vector's positions lie further apart than a window they are gathered after all, with the
// same arithmetic, so that both ways agree to the bit.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "BilinearWindow.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h: compiled once for each instruction set.
#include "BilinearWindow.h"
#include "Lanes-inl.h"

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace {

using DoubleTag = hn::ScalableTag<double>;
using IntVector = hn::Vec<IntTag>;

constexpr int fractionBits = 18;
constexpr int fractionSteps = 1 << fractionBits;
/// Planes of more pixels a side than this have no fixed-point positions of 32 bits.
constexpr int longestSide = 8000;
static_assert(longestSide < INT32_MAX / fractionSteps);
/// Added to a double, it leaves no digits below 1: whole numbers are the sum's lowest bits.
constexpr double wholeNumbers = 0x1.8p52;

/// The positions of a run as whole pixels, counted from the planes' first, and fractions.
struct Places {
    alignas(64) int32_t x[BilinearWindow::longestRun];
    alignas(64) int32_t y[BilinearWindow::longestRun];
    alignas(64) float u[BilinearWindow::longestRun];
    alignas(64) float v[BilinearWindow::longestRun];
};

/// Half a vector of positions, counted in steps from pixel 0: in the lower half of each lane, and
/// rounded before the planes' own beginning is taken off.
template <bool Held>
HWY_INLINE hn::Vec<hn::RebindToUnsigned<DoubleTag>> steps(const double* positions, int first,
                                                          int last)
{
    const DoubleTag d;
    const hn::RebindToUnsigned<DoubleTag> n;
    auto position = hn::LoadU(d, positions);
    if (Held) {
        // Written so that what is no number ends at the last pixel.
        const auto low = hn::Set(d, first + 0.5);
        const auto high = hn::Set(d, last + 0.5);
        position = hn::IfThenElse(hn::Lt(position, high), position, high);
        position = hn::IfThenElse(hn::Gt(position, low), position, low);
    }
    const auto sum = hn::MulAdd(position, hn::Set(d, fractionSteps),
                                hn::Set(d, wholeNumbers - 0.5 * fractionSteps));
    const auto origin = hn::Set(d, wholeNumbers + double(first) * fractionSteps);
    return hn::Sub(hn::BitCast(n, sum), hn::BitCast(n, origin));
}

/// One coordinate of a run. Whole pixels are held to first .. last, so that both taps exist; with
/// Held, what lies further out or is no number is held to just these.
template <bool Held>
HWY_INLINE void split(const double* positions, int count, int first, int last, int32_t* wholes,
                      float* fractions)
{
    const IntTag n;
    const FloatTag f;
    const int lanes = int(Lanes::count());
    for (int i = 0; i < count; i += lanes) {
#if HWY_TARGET == HWY_SCALAR
        const auto fixed = hn::BitCast(n,
                                       hn::TruncateTo(hn::RebindToUnsigned<IntTag>(),
                                                      steps<Held>(positions + i, first, last)));
#else
        const auto low = steps<Held>(positions + i, first, last);
        const auto high = steps<Held>(positions + i + lanes / 2, first, last);
        const auto fixed = hn::ConcatEven(n, hn::BitCast(n, high), hn::BitCast(n, low));
#endif
        const auto whole = hn::ShiftRight<fractionBits>(fixed);
        const auto fraction = hn::And(fixed, hn::Set(n, fractionSteps - 1));
        hn::Store(hn::Max(hn::Min(whole, hn::Set(n, last - first)), hn::Zero(n)), n, wholes + i);
        hn::Store(hn::Mul(hn::ConvertTo(f, fraction), hn::Set(f, 1.0f / fractionSteps)), f,
                  fractions + i);
    }
}

/// The same bits, one at a time, for planes of any size.
void splitFar(const double* positions, int count, int first, int last, int32_t* wholes,
              float* fractions)
{
    for (int i = 0; i < count; ++i) {
        double position = positions[i] - 0.5 < last ? positions[i] - 0.5 : last;
        position = position > first ? position : first;
        const double stepped = std::rint(position * fractionSteps);
        const double whole = std::floor(stepped / fractionSteps);
        wholes[i] = std::min(int(whole), last) - first;
        fractions[i] = float(stepped / fractionSteps - whole);
    }
}

/// Picks pixels from a window of two vectors by their numbers in it.
class WindowTaps {
public:
    HWY_INLINE explicit WindowTaps(IntVector numbers)
#if HWY_TARGET <= HWY_AVX3
        : m_numbers(numbers)
#else
        : m_numbers(hn::IndicesFromVec(
            FloatTag(), hn::And(numbers, hn::Set(IntTag(), int(Lanes::count()) - 1))))
        , m_second(hn::RebindMask(FloatTag(),
                                  hn::Gt(numbers, hn::Set(IntTag(), int(Lanes::count()) - 1))))
#endif
    {
    }
    HWY_INLINE Lanes pick(Lanes low, Lanes high) const
    {
#if HWY_TARGET <= HWY_AVX3
        return FloatVector{_mm512_permutex2var_ps(low.v.raw, m_numbers.raw, high.v.raw)};
#else
        return hn::IfThenElse(m_second, hn::TableLookupLanes(high.v, m_numbers),
                              hn::TableLookupLanes(low.v, m_numbers));
#endif
    }

private:
#if HWY_TARGET <= HWY_AVX3
    IntVector m_numbers;
#else
    decltype(hn::IndicesFromVec(FloatTag(), IntVector())) m_numbers;
    hn::Mask<FloatTag> m_second;
#endif
};

/// The vector of samples that starts at place i, of Channels planes, if one window holds its taps.
template <int Channels>
HWY_INLINE bool sampleFromWindow(const TilePlanes& from, const Places& at, int i,
                                 float* const to[Channels])
{
    const IntTag n;
    const int lanes = int(Lanes::count());
    const int ends[2][2] = {{at.x[i], at.x[i + lanes - 1]}, {at.y[i], at.y[i + lanes - 1]}};
    // Rows may be read as far as their padding goes.
    const int x0 =
        std::min(std::min(ends[0][0], ends[0][1]), from.rect.width() + rowPadding - 2 * lanes);
    const int y0 = std::min(ends[1][0], ends[1][1]);
    const int rows = std::max(ends[1][0], ends[1][1]) - y0;
    const IntVector x = hn::Sub(hn::Load(n, at.x + i), hn::Set(n, x0));
    const IntVector y = hn::Sub(hn::Load(n, at.y + i), hn::Set(n, y0));
    const auto outside = hn::Or(hn::Or(x, hn::Sub(hn::Set(n, 2 * lanes - 2), x)),
                                hn::Or(y, hn::Sub(hn::Set(n, rows), y)));
    if (x0 < 0 || !hn::AllFalse(n, hn::Lt(outside, hn::Zero(n))))
        return false;

    const WindowTaps left(x);
    const WindowTaps right(hn::Add(x, hn::Set(n, 1)));
    const Lanes u = hn::Load(FloatTag(), at.u + i);
    const Lanes v = hn::Load(FloatTag(), at.v + i);
    const auto across = [&](int channel, int row) HWY_ATTR {
        const float* p = from.plane[channel] + row * from.stride + x0;
        const Lanes low = Lanes::load(p);
        const Lanes high = Lanes::load(p + lanes);
        return mix(left.pick(low, high), right.pick(low, high), u);
    };
    Lanes below[Channels];
    Lanes result[Channels];
    for (int c = 0; c < Channels; ++c) {
        below[c] = across(c, y0);
        result[c] = Lanes(0.0f);
    }
    for (int row = 0; row <= rows; ++row) {
        const LanesMask here{hn::RebindMask(FloatTag(), hn::Eq(y, hn::Set(n, row)))};
        for (int c = 0; c < Channels; ++c) {
            const Lanes above = across(c, y0 + row + 1);
            result[c] = select(here, mix(below[c], above, v), result[c]);
            below[c] = above;
        }
    }
    for (int c = 0; c < Channels; ++c)
        result[c].store(to[c] + i);
    return true;
}

/// The same for taps that lie anywhere.
template <int Channels>
HWY_INLINE void sampleAnywhere(const TilePlanes& from, const Places& at, int i,
                               float* const to[Channels])
{
    const IntTag n;
    const FloatTag f;
    const auto stride = int(from.stride);
    const IntVector x = hn::Load(n, at.x + i);
    const IntVector index = hn::Add(hn::Mul(hn::Load(n, at.y + i), hn::Set(n, stride)), x);
    const Lanes u = hn::Load(f, at.u + i);
    const Lanes v = hn::Load(f, at.v + i);
    for (int c = 0; c < Channels; ++c) {
        const float* p = from.plane[c];
        const Lanes below =
            mix<Lanes>(hn::GatherIndex(f, p, index), hn::GatherIndex(f, p + 1, index), u);
        const Lanes above = mix<Lanes>(hn::GatherIndex(f, p + stride, index),
                                       hn::GatherIndex(f, p + stride + 1, index), u);
        mix(below, above, v).store(to[c] + i);
    }
}

template <int Channels>
HWY_INLINE void sampleChannels(const TilePlanes& from, const Places& at, int count,
                               float* const to[Channels])
{
    for (int i = 0; i < count; i += int(Lanes::count())) {
        // One lane has nothing to permute.
        if (HWY_TARGET == HWY_SCALAR || !sampleFromWindow<Channels>(from, at, i, to))
            sampleAnywhere<Channels>(from, at, i, to);
    }
}

void splitPlaces(const PixelRect& r, bool held, const double* xs, const double* ys, int count,
                 Places& at)
{
    if (r.width() > longestSide || r.height() > longestSide) {
        splitFar(xs, count, r.x0, r.x1 - 2, at.x, at.u);
        splitFar(ys, count, r.y0, r.y1 - 2, at.y, at.v);
    } else if (held) {
        split<true>(xs, count, r.x0, r.x1 - 2, at.x, at.u);
        split<true>(ys, count, r.y0, r.y1 - 2, at.y, at.v);
    } else {
        split<false>(xs, count, r.x0, r.x1 - 2, at.x, at.u);
        split<false>(ys, count, r.y0, r.y1 - 2, at.y, at.v);
    }
}

/// `from` holds the wanted channels' planes first, and `to` where they go. Only where `held` may
/// positions lie beyond the planes.
void sampleRun(const TilePlanes& from, bool held, int channels, const double* xs, const double* ys,
               int count, float* const to[4])
{
    Places at;
    splitPlaces(from.rect, held, xs, ys, count, at);
    switch (channels) {
    case 1:
        return sampleChannels<1>(from, at, count, to);
    case 2:
        return sampleChannels<2>(from, at, count, to);
    case 3:
        return sampleChannels<3>(from, at, count, to);
    default:
        return sampleChannels<4>(from, at, count, to);
    }
}

} // namespace
} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace orvane {

HWY_EXPORT(sampleRun);

namespace {

// What lies beyond the planes is held to places both of whose taps are zeros.
constexpr int rim = 2;

} // namespace

BilinearWindow::BilinearWindow(const TilePlanes& planes, const PixelRect& reach, TileArena& arena)
    // An empty reach is no promise: nothing finite is known of the positions.
    : m_rimmed(reach.isEmpty() || !planes.rect.contains(reach))
    , m_planes(m_rimmed ? coveringPlanes(planes, planes.rect.grown(rim), arena) : planes)
{
}

void BilinearWindow::sample(const double* xs, const double* ys, int count, const Output& out) const
{
    TilePlanes wanted = m_planes;
    float* to[4] = {};
    int channels = 0;
    for (int c = 0; c < 4; ++c) {
        if (out.plane[c]) {
            wanted.plane[channels] = m_planes.plane[c];
            to[channels++] = out.plane[c];
        }
    }
    HWY_DYNAMIC_DISPATCH(sampleRun)
    (wanted, m_rimmed, channels, xs, ys, (count + wholeRun - 1) / wholeRun * wholeRun, to);
}

} // namespace orvane

#endif
