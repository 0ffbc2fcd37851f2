#include "Schedule.h"

#include <algorithm>
#include <limits>

namespace orvane {

namespace {

class Scheduler {
public:
    Scheduler(const Plan& plan, const std::vector<bool>& available, TilesAtOnce tilesAtOnce)
        : m_plan(plan)
        , m_available(available)
        , m_tilesAtOnce(tilesAtOnce)
        , m_passOf(plan.stored.size(), -1)
        , m_drawnTo(plan.stored.size())
        , m_uses(plan.stored.size())
        , m_groups(plan.stored.size())
    {
        for (size_t p = 0; p < plan.passes.size(); ++p) {
            const PlanPass& pass = plan.passes[p];
            if (pass.target < 0 || pass.patches)
                continue;
            m_passOf[size_t(pass.target)] = int(p);
            m_drawnTo[size_t(pass.target)] = pass.region.y1;
        }
        groupPatches();
    }

    Schedule schedule()
    {
        m_schedule.images.resize(m_plan.stored.size());
        const PlanPass& last = m_plan.passes.back();
        const int rows = rowsAtOnce(last);
        for (int top = last.region.y1; top > last.region.y0; top -= rows)
            draw(int(m_plan.passes.size()) - 1, std::max(top - rows, last.region.y0), top);
        // Patches may lie where nobody reads; what is kept must have them too.
        for (size_t i = 0; i < m_groups.size(); ++i) {
            if (!m_groups[i].empty())
                drawDownTo(i, m_plan.stored[i].region.y0);
        }
        settleWindows();
        return std::move(m_schedule);
    }

private:
    /// A stored image's rows as a step leaves or finds them.
    struct Use {
        int step = 0;
        int drawnTo = 0; ///< the lowest row drawn by then
        int upTo = 0; ///< one past the highest row it reads or draws
    };

    /// Patches of a stored image that see or cover each other; no other has to do with them.
    struct Group {
        std::vector<int> passes; ///< in their order
        int bottom = 0; ///< the lowest row that they read or draw
        int upTo = 0; ///< one past the highest row that they draw
        bool drawn = false;
    };
    struct Patch {
        int pass = 0;
        PixelRect place;
        std::vector<StoredRead> reads;
        size_t group = 0;
    };

    static bool meet(const Patch& a, const Patch& b)
    {
        const auto reads = [](const Patch& reader, const Patch& patch) {
            return std::any_of(reader.reads.begin(), reader.reads.end(), [&](const auto& read) {
                return !read.rect.intersection(patch.place).isEmpty();
            });
        };
        return !a.place.intersection(b.place).isEmpty() || reads(a, b) || reads(b, a);
    }

    void groupPatches()
    {
        std::vector<std::vector<Patch>> patches(m_plan.stored.size());
        for (size_t p = 0; p < m_plan.passes.size(); ++p) {
            const PlanPass& pass = m_plan.passes[p];
            if (!pass.patches || pass.region.isEmpty() || m_available[size_t(pass.target)])
                continue;
            auto& others = patches[size_t(pass.target)];
            Patch patch{int(p), pass.region, storedReads(m_plan, pass, pass.region), others.size()};
            for (Patch& other : others) {
                if (other.group == patch.group || !meet(patch, other))
                    continue;
                const size_t joined = other.group;
                for (Patch& one : others)
                    one.group = one.group == joined ? patch.group : one.group;
            }
            others.push_back(std::move(patch));
        }
        for (size_t i = 0; i < patches.size(); ++i)
            m_groups[i] = groupsOf(patches[i]);
    }

    static std::vector<Group> groupsOf(const std::vector<Patch>& patches)
    {
        std::vector<Group> groups(patches.size());
        for (const Patch& patch : patches) {
            Group& group = groups[patch.group];
            const bool first = group.passes.empty();
            group.passes.push_back(patch.pass);
            group.bottom = first ? patch.place.y0 : std::min(group.bottom, patch.place.y0);
            group.upTo = first ? patch.place.y1 : std::max(group.upTo, patch.place.y1);
            for (const StoredRead& read : patch.reads)
                group.bottom = std::min(group.bottom, read.rect.y0);
        }
        std::erase_if(groups, [](const Group& group) { return group.passes.empty(); });
        return groups;
    }

    /// Whether an earlier step may still be drawn when a later one begins.
    static bool isUnderWay(const Use& earlier, const Use& later)
    {
        return later.step - earlier.step < int(Schedule::stepsAtOnce);
    }

    int rowsAtOnce(const PlanPass& pass) const
    {
        const bool cells = pass.target >= 0 && m_plan.stored[size_t(pass.target)].factor > 1;
        const int wanted = cells ? m_tilesAtOnce.cells : m_tilesAtOnce.pixels;
        const int across = std::max(1, (pass.region.width() + pass.tileWidth - 1) / pass.tileWidth);
        return pass.tileHeight * std::max(1, (wanted + across - 1) / across);
    }

    void draw(int index, int bottom, int top)
    {
        const PlanPass& pass = m_plan.passes[size_t(index)];
        const PixelRect rect{pass.region.x0, bottom, pass.region.x1, top};
        const std::vector<StoredRead> reads = storedReads(m_plan, pass, rect);
        for (const StoredRead& read : reads)
            drawDownTo(size_t(read.stored), read.rect.y0);
        addStep(index, rect, reads);
    }

    void addStep(int index, const PixelRect& rect, const std::vector<StoredRead>& reads)
    {
        const PlanPass& pass = m_plan.passes[size_t(index)];
        const int step = int(m_schedule.steps.size());
        m_schedule.steps.push_back({index, rect});
        for (const StoredRead& read : reads) {
            const auto stored = size_t(read.stored);
            m_uses[stored].push_back({step, m_drawnTo[stored], read.rect.y1});
        }
        if (pass.target >= 0) {
            int& drawnTo = m_drawnTo[size_t(pass.target)];
            drawnTo = std::min(drawnTo, rect.y0);
            m_uses[size_t(pass.target)].push_back({step, drawnTo, rect.y1});
            m_schedule.images[size_t(pass.target)].lastDrawn = step;
        }
    }

    void drawDownTo(size_t stored, int row)
    {
        if (m_available[stored])
            return;
        const int index = m_passOf[stored];
        const PlanPass& pass = m_plan.passes[size_t(index)];
        // Counts are of the whole region, whichever of them is read.
        const bool all = m_plan.stored[stored].form == StoredPlan::Form::Histogram;
        int goal = all ? pass.region.y0 : std::max(row, pass.region.y0);
        std::vector<Group*> wanted;
        for (Group& group : m_groups[stored]) {
            if (group.drawn || group.upTo <= row)
                continue;
            wanted.push_back(&group);
            goal = std::min(goal, group.bottom);
        }
        while (m_drawnTo[stored] > goal) {
            const int top = m_drawnTo[stored];
            draw(index, std::max(top - rowsAtOnce(pass), pass.region.y0), top);
        }
        for (Group* group : wanted) {
            group->drawn = true;
            for (const int patch : group->passes) {
                const PixelRect& place = m_plan.passes[size_t(patch)].region;
                addStep(patch, place, storedReads(m_plan, m_plan.passes[size_t(patch)], place));
            }
        }
    }

    void settleWindows()
    {
        for (size_t i = 0; i < m_uses.size(); ++i) {
            Schedule::Image& image = m_schedule.images[i];
            int upTo = std::numeric_limits<int>::min();
            for (size_t n = m_uses[i].size(); n-- > 0;) {
                const Use& use = m_uses[i][n];
                // The rows from the lowest one drawn to the highest one that is still used, be it
                // by a step that has yet to end.
                upTo = std::max(upTo, use.upTo);
                for (size_t b = n; b-- > 0 && isUnderWay(m_uses[i][b], use);)
                    upTo = std::max(upTo, m_uses[i][b].upTo);
                image.rows = std::max(image.rows, upTo - use.drawnTo);
                image.lastStep = std::max(image.lastStep, use.step);
            }
            image.rows = std::min(image.rows, m_plan.stored[i].region.height());
        }
    }

    const Plan& m_plan;
    const std::vector<bool>& m_available;
    TilesAtOnce m_tilesAtOnce;
    std::vector<int> m_passOf;
    std::vector<int> m_drawnTo;
    std::vector<std::vector<Use>> m_uses;
    std::vector<std::vector<Group>> m_groups; ///< by stored image
    Schedule m_schedule;
};

} // namespace

Schedule makeSchedule(const Plan& plan, const std::vector<bool>& available, TilesAtOnce tilesAtOnce)
{
    return Scheduler(plan, available, tilesAtOnce).schedule();
}

} // namespace orvane
