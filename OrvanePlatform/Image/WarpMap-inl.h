// How the positions of a resampling are written: a struct made for one row of output pixels,
//
//   struct Shear {
//       static constexpr int maps = 1;
//       struct Record { double slope; };
//       Shear(const Record& record, double cy); // cy: the centres' y
//       void operator()(Doubles cx, Doubles* x, Doubles* y) const; // of `maps` maps
//   };
//   ORVANE_WARP_MAP_RUN(Shear)
//
// and, once, in namespace orvane, ORVANE_WARP_MAP(Shear): the function mapShear of a WarpKernel,
// which chooses the instruction set. The parameters' record is a type of the struct's, so that each
// set's namespace has its own.
//
// Positions are doubles: on a picture of 65,535 pixels a float tells places only 1/256 of a pixel
// apart. A position depends on its pixel alone: every one goes through the same instructions,
// wherever a run begins or ends.

#if defined(ORVANE_WARP_MAP_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVANE_WARP_MAP_INL_H
#undef ORVANE_WARP_MAP_INL_H
#else
#define ORVANE_WARP_MAP_INL_H
#endif

#include "PixelKernels.h"

#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace orvane::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using WarpTag = hn::ScalableTag<double>;
using Doubles = hn::Vec<WarpTag>;

HWY_INLINE Doubles allOf(double value)
{
    return hn::Set(WarpTag(), value);
}

/// The first `count` of a vector, or all of it. Runs may end with what they were asked for.
HWY_INLINE void storePositions(Doubles v, double* to, int count)
{
    const WarpTag d;
    if (count >= int(hn::Lanes(d)))
        return hn::StoreU(v, d, to);
    alignas(64) double all[hn::MaxLanes(WarpTag())];
    hn::Store(v, d, all);
    std::copy_n(all, count, to);
}

template <class Map>
HWY_INLINE void runWarpMap(const void* record, int x, int y, int count, const WarpPositions& to)
{
    const WarpTag d;
    const Map map(*static_cast<const typename Map::Record*>(record), y + 0.5);
    for (int i = 0; i < count; i += int(hn::Lanes(d))) {
        Doubles px[Map::maps];
        Doubles py[Map::maps];
        map(hn::Iota(d, x + i + 0.5), px, py);
        for (int m = 0; m < Map::maps; ++m) {
            storePositions(px[m], to.x[m] + i, count - i);
            storePositions(py[m], to.y[m] + i, count - i);
        }
    }
}

} // namespace orvane::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

/// The compiled form of a map, for the instruction set being compiled.
#define ORVANE_WARP_MAP_RUN(Map)                                                                   \
    void run##Map(const void* record, int x, int y, int count, const WarpPositions& to)            \
    {                                                                                              \
        runWarpMap<Map>(record, x, y, count, to);                                                  \
    }

#define ORVANE_WARP_MAP(Map)                                                                       \
    HWY_EXPORT(run##Map);                                                                          \
    static void map##Map(const void* record, int x, int y, int count, const WarpPositions& to)     \
    {                                                                                              \
        HWY_DYNAMIC_DISPATCH(run##Map)(record, x, y, count, to);                                   \
    }

#endif
