// A recipe becomes passes: walks over an image in tiles, each drawing everything between the images
// that are in memory (sources and stored intermediates) and its target without leaving the cache.
//
// A fused pass ends, that is, an input is drawn into memory first, only where
//   1. a neighbourhood or a resampling reads more than `windowLimit` times the pixels of its input
//      that it would read without a border, tile for tile (a wide blur, a steep rotation), or
//      samples at mapped positions are taken of what such samples have made, through moves, crops
//      and clamps: the windows of both would add up;
//   2. a blur is large enough to be computed at a reduced size: its reduced input, which blurs of
//      the same picture share, and its reduced result are stored;
//   3. a histogram counts: its counts are stored;
//   4. a result is read by more than one pass;
//   5. intermediates are kept for later draws: a scaling that reduces its input is stored, so that
//      a preview's small copy of a large picture is drawn once, not with every change of a slider;
//      and in each pass the step behind which only pointwise steps follow, so that a change of a
//      late slider runs those alone.
// Rules 1 and 4 never store what is read straight from a source (through moves, flips, crops and
// clamps) or made of no source at all: reading it again is cheaper. Whole-pixel moves, flips,
// crops, clamps, generators and every pointwise operation never end a pass. Within a pass each step
// is drawn once a tile, over the union of what its readers ask for; and of narrow blurs of one
// picture that differ at its edges alone, one.
//
// A picture with patches on it (healed spots) is stored. Each patch is a pass of its own, over its
// own pixels, that reads the stored picture and draws over it, in the patches' order. Nothing of a
// patch's own recipe is stored. Where one pass alone reads an opaque picture, a small rectangle
// holds its patches and all that they see, and nothing is kept for later draws, that rectangle
// alone is stored; rule 4 does not count what is drawn for it. The pass lays the patches on the
// picture as it draws it.

#include "Planner.h"

#include "BlurGrid.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace orvane {

namespace {

constexpr double windowLimit = 1.35;
/// Of rule 5: passes with more steps are left as they are.
constexpr size_t longestTailSearch = 100;
constexpr int coarsestFromPixels = 8;
/// Of the picture: the most that is drawn twice for the patches on it.
constexpr double smallPart = 0.1;

bool isStructure(const Node& node)
{
    return node.as<CropNode>() || node.as<ClampNode>() || node.as<OrthogonalNode>();
}

bool isNeighbourhood(const Node& node)
{
    return node.as<WarpNode>() || node.as<HalveNode>() || node.as<GaussianNode>()
        || node.as<LanczosNode>() || node.as<WindowNode>();
}

bool isReducedBlur(const Node& node)
{
    const auto* blur = node.as<GaussianNode>();
    return blur && blurReduction(blur->sigma) > 1;
}

/// How many input pixels stand behind one output pixel, borders aside.
double inputDensity(const Node& node)
{
    if (node.as<HalveNode>())
        return 4;
    if (const auto* n = node.as<LanczosNode>())
        return (double(n->x.inputCount) / n->x.count) * (double(n->y.inputCount) / n->y.count);
    if (const auto* n = node.as<WarpNode>(); n && n->affineInput) {
        double det = std::abs(n->affine.determinant());
        // What the halvings ahead of the sampling have taken away.
        while (det < std::exp2(-2.4))
            det *= 4;
        return 1 / det;
    }
    return 1;
}

/// The pixels of the patches' ground that `rect` of a patch's recipe is made of.
PixelRect groundBehind(const Node& node, const PixelRect& rect)
{
    if (node.as<PatchGroundNode>())
        return rect;
    PixelRect seen;
    for (size_t n = 0; n < node.inputs.size(); ++n)
        seen = seen.united(groundBehind(*node.inputs[n], neededInput(node, n, rect)));
    return seen;
}

/// Whether the patches and all that they see lie in a small part of the picture.
bool keepToSmallPart(const PatchesNode& patched, const Extent& picture)
{
    PixelRect part;
    for (const NodePtr& patch : patched.patches)
        part = part.united(patch->extent.rect).united(groundBehind(*patch, patch->extent.rect));
    return part.area() <= smallPart * picture.rect.area();
}

/// What is averaged, and how coarsely; in order of the factor for one input.
struct AveragesKey {
    Digest input;
    int factor = 1;

    bool operator<(const AveragesKey& o) const
    {
        return std::tuple(input.high, input.low, factor)
            < std::tuple(o.input.high, o.input.low, o.factor);
    }
};

class Planner {
public:
    Planner(const Node& root, const PixelRect& rect, Intermediates intermediates)
        : m_root(root)
        , m_rect(rect)
        , m_intermediates(intermediates)
    {
    }

    Plan plan(int tileWidth, int tileHeight)
    {
        do
            collectPasses();
        while (storeShared() || storeWideWindows() || storeBeforeTails());
        settleRegions();
        for (PlanPass& pass : m_plan.passes)
            shareBlurs(pass);
        chooseTiles(m_plan, tileWidth, tileHeight, m_intermediates);
        return std::move(m_plan);
    }

private:
    // ---- Passes for the present choice of stored nodes ----

    void collectPasses()
    {
        m_plan = {};
        m_storedIndex.clear();
        m_averages.clear();
        // Even the picture itself may be one that is kept.
        collectPass(m_root, -1, false);
        chainAverages();
    }

    /// The pass that draws `node` into stored image `target`; those it reads from come before it.
    /// drawsNode: the target is the node's own pixels, so they cannot be read from memory yet.
    void collectPass(const Node& node, int target, bool drawsNode)
    {
        PlanPass pass;
        pass.target = target;
        std::unordered_map<Digest, int> known;
        collectStep(pass, node, known, drawsNode);
        m_plan.passes.push_back(std::move(pass));
    }

    int collectStep(PlanPass& pass, const Node& node, std::unordered_map<Digest, int>& known,
                    bool drawsNode)
    {
        if (const auto found = known.find(node.digest); found != known.end())
            return found->second;
        PlanStep step;
        step.node = &node;
        if (node.as<PatchGroundNode>()) {
            // Every reader has its own: they look at places far from each other.
            step.stored = m_patched;
            pass.steps.push_back(std::move(step));
            return int(pass.steps.size()) - 1;
        }
        const auto form = storedForm(node);
        if (isLaidInPass(node)) {
            step.inputs.push_back(collectStep(pass, *node.inputs.front(), known, false));
            PlanStep patches;
            patches.node = &node;
            patches.stored = storedImage(node, StoredPlan::Form::Whole);
            pass.steps.push_back(std::move(patches));
            step.inputs.push_back(int(pass.steps.size()) - 1);
            for (const int input : step.inputs)
                ++pass.steps[size_t(input)].readers;
        } else if (form && !(drawsNode && *form == StoredPlan::Form::Whole)) {
            step.stored = storedImage(node, *form);
        } else {
            for (const NodePtr& input : node.inputs)
                step.inputs.push_back(collectStep(pass, *input, known, false));
            for (const int input : step.inputs)
                ++pass.steps[size_t(input)].readers;
        }
        pass.steps.push_back(std::move(step));
        known[node.digest] = int(pass.steps.size()) - 1;
        return int(pass.steps.size()) - 1;
    }

    std::optional<StoredPlan::Form> storedForm(const Node& node)
    {
        if (isReducedBlur(node))
            return StoredPlan::Form::ReducedBlur;
        if (node.as<HistogramNode>())
            return StoredPlan::Form::Histogram;
        if (m_whole.count(node.digest) || isKeptReduction(node)
            || (node.as<PatchesNode>() && !isLaidInPass(node)))
            return StoredPlan::Form::Whole;
        return {};
    }

    /// Of a picture with patches: whether the pass that reads it lays them on.
    bool isLaidInPass(const Node& node)
    {
        const auto* patched = node.as<PatchesNode>();
        if (!patched || !node.opaque || m_intermediates == Intermediates::Kept
            || m_whole.count(node.digest))
            return false;
        const auto [small, first] = m_smallParts.try_emplace(node.digest, false);
        if (first)
            small->second = keepToSmallPart(*patched, node.extent);
        return small->second;
    }

    // ---- Rule 5 ----

    bool isKeptReduction(const Node& node) const
    {
        return m_intermediates == Intermediates::Kept && node.as<LanczosNode>()
            && inputDensity(node) > 1;
    }

    bool storeBeforeTails()
    {
        if (m_intermediates != Intermediates::Kept)
            return false;
        for (const PlanPass& pass : m_plan.passes) {
            if (pass.patches || pass.steps.size() > longestTailSearch)
                continue;
            for (size_t i = 0; i + 1 < pass.steps.size(); ++i) {
                const PlanStep& step = pass.steps[i];
                if (step.stored >= 0 || !worthStoring(*step.node) || !leavesATail(pass, i))
                    continue;
                m_whole.insert(step.node->digest);
                return true;
            }
        }
        return false;
    }

    /// Something costly stands behind step `index`, and nothing costly beside it.
    static bool leavesATail(const PlanPass& pass, size_t index)
    {
        const auto costly = [&](const PlanStep& step) {
            return step.stored < 0 ? isNeighbourhood(*step.node) : isReducedBlur(*step.node);
        };
        const auto reaches = [&](size_t from, bool around) {
            std::vector<bool> reached(pass.steps.size(), false);
            reached[from] = true;
            for (size_t i = from + 1; i-- > 0;) {
                if (!reached[i] || (around && i == index))
                    continue;
                if (costly(pass.steps[i]))
                    return true;
                for (const int input : pass.steps[i].inputs)
                    reached[size_t(input)] = true;
            }
            return false;
        };
        return reaches(index, false) && !reaches(pass.steps.size() - 1, true);
    }

    int storedImage(const Node& node, StoredPlan::Form form)
    {
        // One node is stored in one form: a large blur reduced, a histogram counted, any other
        // whole.
        if (const auto found = m_storedIndex.find(node.digest); found != m_storedIndex.end())
            return found->second;
        StoredPlan stored;
        stored.node = &node;
        stored.form = form;
        // It is drawn once, and all that follows is made from it.
        stored.exact = isKeptReduction(node);
        stored.aroundPatches = isLaidInPass(node);
        if (form == StoredPlan::Form::ReducedBlur) {
            stored.factor = blurReduction(node.as<GaussianNode>()->sigma);
            stored.averages = storedAverages(node, stored.factor);
        }
        const int index = int(m_plan.stored.size());
        m_plan.stored.push_back(stored);
        m_storedIndex[node.digest] = index;
        if (form == StoredPlan::Form::ReducedBlur) {
            PlanPass pass;
            pass.target = index;
            PlanStep averages;
            averages.node = &node;
            averages.stored = stored.averages;
            pass.steps.push_back(std::move(averages));
            m_plan.passes.push_back(std::move(pass));
            return index;
        }
        const auto* patched = node.as<PatchesNode>();
        const bool whole = form == StoredPlan::Form::Whole && !patched;
        collectPass(whole ? node : *node.inputs.front(), index, whole);
        if (patched)
            collectPatches(*patched, index);
        return index;
    }

    void collectPatches(const PatchesNode& patched, int target)
    {
        const int around = std::exchange(m_patched, target);
        for (const NodePtr& patch : patched.patches) {
            collectPass(*patch, target, false);
            m_plan.passes.back().patches = true;
        }
        m_patched = around;
    }

    // ---- Rule 2 ----

    int storedAverages(const Node& blur, int factor)
    {
        const AveragesKey key{blur.inputs.front()->digest, factor};
        if (const auto found = m_averages.find(key); found != m_averages.end())
            return found->second;
        StoredPlan stored;
        stored.node = &blur;
        stored.form = StoredPlan::Form::Averages;
        stored.factor = factor;
        const int index = int(m_plan.stored.size());
        m_averages[key] = index;
        m_plan.stored.push_back(stored);
        collectPass(averagedNode(blur), index, false);
        // Far coarser ones would read their tiles with a border as wide as the tiles.
        if (factor > coarsestFromPixels)
            storedAverages(blur, coarsestFromPixels);
        return index;
    }

    /// Averages that are wanted at several factors are made one from the other.
    void chainAverages()
    {
        // The coarsest first: each then pulls the ones that it needs before itself, and they
        // theirs.
        for (auto entry = m_averages.rbegin(); entry != m_averages.rend(); ++entry) {
            const auto& [key, index] = *entry;
            int finer = -1;
            for (int factor = 2; factor < key.factor; factor *= 2) {
                const auto found = m_averages.find({key.input, factor});
                finer = found == m_averages.end() ? finer : found->second;
            }
            if (finer < 0)
                continue;
            m_plan.stored[size_t(index)].averages = finer;
            const auto pass = passOf(index);
            PlanStep step;
            step.node = pass->steps.back().node;
            step.stored = finer;
            pass->steps.assign(1, step);
            const auto before = passOf(finer);
            if (before > pass)
                std::rotate(pass, before, before + 1);
        }
    }

    std::vector<PlanPass>::iterator passOf(int stored)
    {
        return std::find_if(m_plan.passes.begin(), m_plan.passes.end(),
                            [&](const PlanPass& pass) { return pass.target == stored; });
    }

    // ---- Rule 4 ----

    bool storeShared()
    {
        std::unordered_map<Digest, int> passesOf;
        for (const PlanPass& pass : m_plan.passes) {
            const bool patches = pass.patches || drawsAroundPatches(pass);
            for (const PlanStep& step : pass.steps)
                passesOf[step.node->digest] += step.stored < 0 && !patches;
        }
        // From the last pass backwards and from its result backwards: the first shared node met is
        // the one to store, since storing it may leave nothing else shared. A move, crop or clamp
        // is a way of reading: what it reads is shared too, and is stored instead.
        for (auto pass = m_plan.passes.rbegin(); pass != m_plan.passes.rend(); ++pass) {
            for (auto step = pass->steps.rbegin(); step != pass->steps.rend(); ++step) {
                if (step->stored < 0 && passesOf[step->node->digest] > 1
                    && worthStoring(*step->node)) {
                    m_whole.insert(step->node->digest);
                    return true;
                }
            }
        }
        return false;
    }

    bool drawsAroundPatches(const PlanPass& pass) const
    {
        return pass.target >= 0 && m_plan.stored[size_t(pass.target)].aroundPatches;
    }

    /// Not read straight from a source, and not made of nothing.
    bool worthStoring(const Node& node)
    {
        if (node.as<SourceNode>() || m_whole.count(node.digest) || isKeptReduction(node)
            || isReducedBlur(node) || node.as<HistogramNode>()
            || (node.as<PatchesNode>() && !isLaidInPass(node)))
            return false;
        return !isStructure(node) && dependsOnSource(node);
    }

    bool dependsOnSource(const Node& node)
    {
        if (node.as<SourceNode>())
            return true;
        const auto known = m_dependsOnSource.find(node.digest);
        if (known != m_dependsOnSource.end())
            return known->second;
        const bool depends =
            std::any_of(node.inputs.begin(), node.inputs.end(),
                        [&](const NodePtr& input) { return dependsOnSource(*input); });
        m_dependsOnSource[node.digest] = depends;
        return depends;
    }

    // ---- Rule 1 ----

    bool storeWideWindows()
    {
        for (auto pass = m_plan.passes.rbegin(); pass != m_plan.passes.rend(); ++pass) {
            if (pass->patches)
                continue;
            const PixelRect whole = extentOrRect(*pass);
            const int x = whole.x0 + std::max(0, (whole.width() - defaultTileWidth) / 2);
            const int y = whole.y0 + std::max(0, (whole.height() - defaultTileHeight) / 2);
            const PixelRect tile =
                whole.intersection({x, y, x + defaultTileWidth, y + defaultTileHeight});
            std::vector<PixelRect> requests;
            requestedRects(*pass, tile, requests);
            std::vector<double> needed(pass->steps.size(), 0);
            needed.back() = tile.area();
            for (size_t i = pass->steps.size(); i-- > 0;) {
                const PlanStep& step = pass->steps[i];
                for (const int input : step.inputs) {
                    auto& share = needed[size_t(input)];
                    share = std::max(share, needed[i] * inputDensity(*step.node));
                }
                if (isNeighbourhood(*step.node) && step.stored < 0
                    && storeIfWide(*pass, step, requests, needed))
                    return true;
            }
        }
        return false;
    }

    bool storeIfWide(const PlanPass& pass, const PlanStep& step,
                     const std::vector<PixelRect>& requests, const std::vector<double>& needed)
    {
        const auto index = size_t(step.inputs.front());
        // A clamp or a crop is a way of reading: what it reads is stored, not the clamped copy.
        const PlanStep* input = &pass.steps[index];
        while (isStructure(*input->node) && input->stored < 0)
            input = &pass.steps[size_t(input->inputs.front())];
        if (input->stored >= 0 || !worthStoring(*input->node))
            return false;
        const bool resampled = step.node->as<WarpNode>() && input->node->as<WarpNode>();
        if (!resampled && requests[index].area() <= windowLimit * needed[index])
            return false;
        return m_whole.insert(input->node->digest).second;
    }

    /// A rectangle to try a tile in. The picture's, not the one asked for: what is stored must not
    /// depend on which part of a picture is drawn.
    static PixelRect extentOrRect(const PlanPass& pass)
    {
        const Extent& extent = pass.steps.back().node->extent;
        return extent.infinite ? PixelRect{0, 0, 4096, 4096} : extent.rect;
    }

    // ---- Regions, from the picture asked for back to the sources ----

    void settleRegions()
    {
        for (size_t p = m_plan.passes.size(); p-- > 0;) {
            PlanPass& pass = m_plan.passes[p];
            if (pass.patches) {
                p = settlePatches(p);
                continue;
            }
            pass.region = pass.target < 0 ? m_rect : drawnRegion(size_t(pass.target));
            for (const StoredRead& read : storedReads(m_plan, pass, pass.region)) {
                PixelRect& region = m_plan.stored[size_t(read.stored)].region;
                region = region.united(read.rect);
            }
        }
    }

    /// The patches on one picture, of which pass `last` is the last; gives the first. Whole or not
    /// at all, as what lies beyond the region may be another's source; and the region then holds
    /// all that those drawn cover and read, so others may lie in it.
    size_t settlePatches(size_t last)
    {
        const int target = m_plan.passes[last].target;
        PixelRect& region = m_plan.stored[size_t(target)].region;
        size_t first = last;
        for (bool grown = true; grown;) {
            const PixelRect before = region;
            for (size_t p = last + 1; p-- > 0 && isPatchOn(target, m_plan.passes[p]);) {
                PlanPass& pass = m_plan.passes[p];
                first = p;
                const PixelRect place = pass.steps.back().node->extent.rect;
                if (!pass.region.isEmpty() || place.intersection(region).isEmpty())
                    continue;
                pass.region = place;
                region = region.united(place);
                for (const StoredRead& read : storedReads(m_plan, pass, place))
                    region = region.united(read.rect);
            }
            grown = region != before;
        }
        return first;
    }

    static bool isPatchOn(int target, const PlanPass& pass)
    {
        return pass.patches && pass.target == target;
    }

    PixelRect drawnRegion(size_t target) const
    {
        const StoredPlan& stored = m_plan.stored[target];
        const auto* histogram = stored.node->as<HistogramNode>();
        return histogram ? histogram->region : stored.region;
    }

    // ---- Blurs within a pass ----

    static void shareBlurs(PlanPass& pass)
    {
        std::map<std::tuple<uint64_t, uint64_t, float>, int> blurs;
        for (size_t i = 0; i < pass.steps.size(); ++i) {
            PlanStep& step = pass.steps[i];
            const auto* blur = step.node->as<GaussianNode>();
            if (!blur || step.stored >= 0)
                continue;
            const Digest& picture = averagedNode(*step.node).digest;
            const auto [same, first] =
                blurs.try_emplace({picture.high, picture.low, blur->sigma}, int(i));
            if (first)
                continue;
            step.sameBlur = same->second;
            ++pass.steps[size_t(step.sameBlur)].readers;
        }
    }

    const Node& m_root;
    PixelRect m_rect;
    Intermediates m_intermediates;
    Plan m_plan;
    int m_patched = -1; ///< the stored image whose patches are being collected
    // Keyed by digest, so that equal recipes built twice are drawn once.
    std::unordered_map<Digest, int> m_storedIndex;
    std::map<AveragesKey, int> m_averages;
    std::unordered_set<Digest> m_whole;
    std::unordered_map<Digest, bool> m_dependsOnSource;
    std::unordered_map<Digest, bool> m_smallParts; ///< by picture with patches
};

} // namespace

Plan makePlan(const Node& root, const PixelRect& rect, int tileWidth, int tileHeight,
              Intermediates intermediates)
{
    return Planner(root, rect, intermediates).plan(tileWidth, tileHeight);
}

} // namespace orvane
