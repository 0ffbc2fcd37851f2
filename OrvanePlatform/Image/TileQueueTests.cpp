// Workers that take tiles in any order find what they read, in windows that others go on writing.

#include "Bitmap.h"
#include "CIImage.h"
#include "Filters/CIFilter.h"
#include "Filters/Patches.h"
#include "Node.h"
#include "TileQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <vector>

namespace orvane {
namespace {

/// A stored image's window as its readers find it: which row lies in each place, and which of its
/// samples are drawn.
class Window {
public:
    Window(const PixelRect& region, int rows)
        : m_region(region)
        , m_places(size_t(rows))
    {
    }

    void beginWriting(const PixelRect& rect)
    {
        for (int y = rect.y0; y < rect.y1; ++y) {
            Place& place = at(y);
            if (place.row != y)
                place = {y, std::vector<bool>(size_t(m_region.width()), false)};
        }
    }
    void endWriting(const PixelRect& rect)
    {
        for (int y = rect.y0; y < rect.y1; ++y) {
            ASSERT_EQ(at(y).row, y) << "written over while it was being drawn";
            std::fill_n(at(y).drawn.begin() + (rect.x0 - m_region.x0), rect.width(), true);
        }
    }
    bool holds(const PixelRect& rect)
    {
        for (int y = rect.y0; y < rect.y1; ++y) {
            const Place& place = at(y);
            const auto first = place.drawn.begin() + (rect.x0 - m_region.x0);
            if (place.row != y
                || std::find(first, first + rect.width(), false) != first + rect.width())
                return false;
        }
        return true;
    }

private:
    struct Place {
        int row = std::numeric_limits<int>::min();
        std::vector<bool> drawn;
    };
    Place& at(int y) { return m_places[size_t(y - m_region.y0) % m_places.size()]; }

    PixelRect m_region;
    std::vector<Place> m_places;
};

/// Has workers take and finish tiles in a random order.
class Workshop {
public:
    Workshop(const Plan& plan, const Schedule& schedule, uint64_t shuffleSeed)
        : m_plan(plan)
        , m_schedule(schedule)
        , m_queue(plan, schedule, workers, shuffleSeed)
        , m_areas(plan.passes.size(), 0.0)
    {
        for (size_t i = 0; i < plan.stored.size(); ++i)
            m_windows.emplace_back(plan.stored[i].region, schedule.images[i].rows);
    }

    void run(unsigned seed)
    {
        std::mt19937 random(seed);
        std::optional<TileQueue::Tile> held[workers];
        // More turns than there are tiles, by far: who never gets on is stuck.
        for (int turn = 0; turn < 100'000 && !m_queue.complete(); ++turn) {
            const int worker = int(random() % workers);
            auto& tile = held[worker];
            if (tile) {
                finish(*tile);
                tile.reset();
            } else {
                tile = m_queue.take(worker);
                for (; !tile && m_queue.toOpen(); tile = m_queue.take(worker))
                    m_queue.open();
                if (tile)
                    begin(*tile);
            }
            std::set<size_t> steps;
            for (const auto& one : held) {
                if (one)
                    steps.insert(one->step);
            }
            m_overlaps += steps.size() > 1;
        }
        EXPECT_TRUE(m_queue.complete());
        for (size_t p = 0; p < m_areas.size(); ++p)
            EXPECT_EQ(m_areas[p], m_plan.passes[p].region.area()) << "pass " << p;
        EXPECT_GT(m_overlaps, 0) << "no step was begun before the one ahead of it was complete";
    }

private:
    static constexpr int workers = 3;

    const PlanPass& passOf(const TileQueue::Tile& tile) const
    {
        return m_plan.passes[size_t(m_schedule.steps[tile.step].pass)];
    }
    void expectReads(const TileQueue::Tile& tile)
    {
        for (const StoredRead& read : storedReads(m_plan, passOf(tile), tile.rect)) {
            const auto stored = size_t(read.stored);
            EXPECT_TRUE(countsInto(read.stored) ? m_counted.contains(read.stored)
                                                : m_windows[stored].holds(read.rect))
                << "step " << tile.step << " reads " << stored;
            expectPatches(tile, read);
        }
    }
    /// Those that touch what it reads or draws: all are on it, or, for a patch, all before it and
    /// none after.
    void expectPatches(const TileQueue::Tile& tile, const StoredRead& read)
    {
        const auto own = size_t(m_schedule.steps[tile.step].pass);
        const bool isPatch = m_plan.passes[own].patches;
        const PixelRect place = m_plan.passes[own].region;
        EXPECT_TRUE(!isPatch || tile.rect.contains(read.rect.intersection(place)))
            << "another tile of the patch may be drawn over that";
        for (size_t p = 0; p < m_plan.passes.size(); ++p) {
            const PlanPass& pass = m_plan.passes[p];
            const PixelRect& other = pass.region;
            const bool touches = !other.intersection(read.rect).isEmpty()
                || (isPatch && !other.intersection(tile.rect).isEmpty());
            if (!pass.patches || pass.target != read.stored || p == own || !touches)
                continue;
            EXPECT_EQ(m_areas[p], isPatch && p > own ? 0 : other.area())
                << "step " << tile.step << " and patch " << p;
        }
    }
    void begin(const TileQueue::Tile& tile)
    {
        expectReads(tile);
        EXPECT_TRUE(!passOf(tile).patches || windowOf(tile)->holds(tile.rect))
            << "nothing to lay a patch on";
        if (Window* window = windowOf(tile))
            window->beginWriting(tile.rect);
    }
    void finish(const TileQueue::Tile& tile)
    {
        expectReads(tile); // nobody has written over it meanwhile
        if (Window* window = windowOf(tile))
            window->endWriting(tile.rect);
        m_areas[size_t(m_schedule.steps[tile.step].pass)] += tile.rect.area();
        for (const size_t step : m_queue.finished(tile)) {
            EXPECT_EQ(step, m_completed++);
            const ScheduledRows& rows = m_schedule.steps[step];
            const PlanPass& pass = m_plan.passes[size_t(rows.pass)];
            if (rows.rect.y0 == pass.region.y0)
                m_counted.insert(pass.target);
        }
    }
    Window* windowOf(const TileQueue::Tile& tile)
    {
        const int target = passOf(tile).target;
        return target < 0 || countsInto(target) ? nullptr : &m_windows[size_t(target)];
    }
    bool countsInto(int stored) const
    {
        return m_plan.stored[size_t(stored)].form == StoredPlan::Form::Histogram;
    }

    const Plan& m_plan;
    const Schedule& m_schedule;
    TileQueue m_queue;
    std::vector<Window> m_windows;
    std::vector<double> m_areas;
    std::set<int> m_counted; ///< histograms, and other images that are complete
    size_t m_completed = 0;
    int m_overlaps = 0;
};

TEST(TileQueue, EveryTileFindsWhatItReadsWhoeverIsSlow)
{
    const CIImage source =
        CIImage::withBitmap(std::make_shared<Bitmap>(700, 900, 3, SampleType::U8, AlphaKind::None));
    CIImage image = source.transformed(CGAffineTransform::rotation(-0.05));
    image = image.compositedOver(CIFilter::gaussianBlur(source.clampedToExtent(), 21))
                .cropped(image.extent());
    image = CIFilter::unsharpMask(image, 23, 0.5);
    image = CIFilter::noiseReduction(image, 0.04);
    image = CIFilter::unsharpMask(image, 5, 0.8);
    const CIImage ground = Patches::ground(image);
    std::vector<CIImage> patches;
    const auto add = [&](int x, int y, int side, double dx, double dy) {
        patches.push_back(ground.transformed(CGAffineTransform::translation(dx, dy))
                              .cropped(CGRect(x, y, side, side)));
    };
    for (int i = 0; i < 30; ++i) // a stroke to and fro, up the picture
        add(100 + 10 * std::abs(i % 12 - 6), 60 + 20 * i, 44, 50.5, 30);
    add(500, 880, 60, 0, -300); // one whose source lies far below
    add(600, 100, 8, 10, 10);
    add(200, 500, 500, -30, -30); // over its own source
    image = Patches::laidOn(image, patches);
    const CIImage bloomed = CIFilter::bloom(image, 17, 0.3);
    const CIImage turned = image.oriented(3).cropped({0, 0, 500, 500});
    const CIImage counts = CIFilter::areaHistogram(image, {100, 50, 400, 600}, 64, 10);
    const CIImage last =
        CIFilter::maximumCompositing(counts, CIFilter::maximumCompositing(bloomed, turned))
            .cropped(image.extent());
    const PixelRect whole = last.node()->extent.rect;
    const struct {
        int side;
        PixelRect rect;
    } cases[] = {{0, whole}, {48, whole}, {48, {0, 0, 40, 30}}};
    for (const auto& [side, rect] : cases) {
        const Plan plan = makePlan(*last.node(), rect, side, side);
        const std::vector<bool> nothingKept(plan.stored.size(), false);
        const Schedule schedule = makeSchedule(plan, nothingKept, {.pixels = 3, .cells = 1});
        for (unsigned seed = 1; seed <= 8; ++seed)
            Workshop(plan, schedule, seed % 2 ? 0 : seed).run(seed);
    }
}

} // namespace
} // namespace orvane
