// The steps that read more of their input than the pixel itself: resamplings and neighbourhoods.

#include "BilinearWindow.h"
#include "BlurGrid.h"
#include "ResampleRows.h"
#include "RowSums.h"
#include "TileEvaluator.h"

#include <algorithm>

namespace orvane {

namespace {

/// Part of a row of a resampling, at most BilinearWindow::longestRun pixels of it.
void sampleRow(const WarpNode& node, const BilinearWindow& window, int x, int y, int count,
               const TilePlanes& out)
{
    double positions[6][BilinearWindow::longestRun];
    const WarpPositions at{{positions[0], positions[1], positions[2]},
                           {positions[3], positions[4], positions[5]}};
    const int whole = BilinearWindow::wholeRun;
    node.kernel->map(node.parameters.record.data(), x, y, (count + whole - 1) / whole * whole, at);
    for (int m = 0; m < node.kernel->maps; ++m) {
        BilinearWindow::Output wanted;
        for (int c = 0; c < out.channels(); ++c) {
            if (node.kernel->maps == 1 || m == (c == 3 ? 1 : c))
                wanted.plane[c] = out.at(c, x, y);
        }
        window.sample(at.x[m], at.y[m], count, wanted);
    }
}

/// The weights of outputs first .. first + count - 1, those of each filled up to whole groups.
TapRun groupedTaps(const PassTables::Taps& taps, int first, int count, int origin, TileArena& arena)
{
    const int width = (taps.width + tapGroup - 1) / tapGroup * tapGroup;
    float* weights = arena.floats(size_t(width) * size_t(count));
    for (int i = 0; i < count; ++i) {
        float* to = std::copy_n(taps.weightsOf(first + i), taps.width, weights + i * width);
        std::fill(to, weights + (i + 1) * width, 0.0f);
    }
    return {&taps.first[size_t(first - taps.origin)], weights, width, origin};
}

} // namespace

/// For weighted sums. Whether alpha is summed must follow from the recipe, not from the tile: a sum
/// of ones is 1 only to within rounding.
TilePlanes TileEvaluator::withRecipesAlpha(const PlanStep& step, TilePlanes planes)
{
    if (!step.node->opaque)
        addOpaqueAlpha(planes, m_arena);
    return planes;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const WarpNode& node,
                                   const PixelRect& rect)
{
    const Drawn& drawn = m_drawn[size_t(step.inputs[0])];
    if (drawn.empty)
        return coveringPlanes({}, rect, m_arena);
    const PixelRect reach = warpReach(node, rect);
    const bool inside = !reach.isEmpty() && step.node->inputs[0]->extent.contains(reach);
    const bool opaque = inside && drawn.planes.opaque();
    const BilinearWindow window(drawn.planes, reach, m_arena);
    const auto drawRow = [&node, rect, window](int y, const TilePlanes& out) {
        constexpr int run = BilinearWindow::longestRun;
        for (int x = rect.x0; x < rect.x1; x += run)
            sampleRow(node, window, x, y, std::min(run, rect.x1 - x), out);
    };
    if (m_groups.oneRow[index]) {
        const TilePlanes row = m_arena.rowPlanes(rect, opaque);
        m_runs.add(rect, [drawRow, row](int y) { drawRow(y, row); }, {window.planes(), row});
        return row;
    }
    const TilePlanes out = m_arena.planes(rect, opaque);
    for (int y = rect.y0; y < rect.y1; ++y)
        drawRow(y, out);
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep& step, const HalveNode& node,
                                   const PixelRect& rect)
{
    const PixelRect wanted{node.originX + 2 * rect.x0, node.originY + 2 * rect.y0,
                           node.originX + 2 * rect.x1, node.originY + 2 * rect.y1};
    const TilePlanes from =
        edgeRepeatedPlanes(m_drawn[size_t(step.inputs[0])].planes, wanted, m_arena);
    TilePlanes out = m_arena.planes(rect, from.opaque());
    for (int c = 0; c < from.channels(); ++c) {
        for (int y = rect.y0; y < rect.y1; ++y) {
            const float* low = from.at(c, wanted.x0, wanted.y0 + 2 * (y - rect.y0));
            averagePairs(low, low + from.stride, out.row(c, y), rect.width());
        }
    }
    return out;
}

/// Whether a blur that reads `window` is the earlier one of the same picture: neither saw anything
/// around the picture.
bool TileEvaluator::isSharedBlur(const PlanStep& step, const PixelRect& window,
                                 const PixelRect& rect) const
{
    if (step.sameBlur < 0)
        return false;
    const auto same = size_t(step.sameBlur);
    return m_drawn[same].planes.rect.contains(rect)
        && averagedNode(*step.node).extent.contains(window);
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const GaussianNode& node,
                                   const PixelRect& rect)
{
    const int reach = gaussianBorder(node.sigma);
    const PixelRect window = rect.grown(reach);
    if (isSharedBlur(step, window, rect))
        return partOf(index, size_t(step.sameBlur), rect);
    // Where nothing but opaque pixels are summed alpha is 1, exactly: it need not be summed.
    const Node& blurred = *step.node->inputs.front();
    const PixelRect solid = blurred.opaque && !blurred.extent.infinite
        ? blurred.extent.rect.grown(-reach)
        : PixelRect{};
    const TilePlanes from = solid.contains(rect) ? input(step, 0, window)
                                                 : withRecipesAlpha(step, input(step, 0, window));
    const std::vector<float>& weights = m_tables.steps[index].blur;
    const PixelRect tall{rect.x0, window.y0, rect.x1, window.y1};
    TilePlanes across = m_arena.planes(tall, from.opaque());
    TilePlanes out = m_arena.planes(rect, from.opaque());
    for (int c = 0; c < from.channels(); ++c) {
        for (int y = tall.y0; y < tall.y1; ++y)
            convolveAcross(from.at(c, rect.x0, y), across.row(c, y), rect.width(), weights.data(),
                           reach);
        convolveDown({across.row(c, rect.y0), across.stride}, {out.row(c, rect.y0), out.stride},
                     rect.width(), rect.height(), weights.data(), reach);
    }
    const PixelRect inner = out.opaque() ? PixelRect{} : solid.intersection(rect);
    for (int y = inner.y0; y < inner.y1; ++y)
        std::fill_n(out.at(3, inner.x0, y), inner.width(), 1.0f);
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t index, const PlanStep& step, const LanczosNode&,
                                   const PixelRect& rect)
{
    const PassTables::Taps& across = m_tables.steps[index].across;
    const PassTables::Taps& down = m_tables.steps[index].down;
    const PixelRect wanted{across.firstOf(rect.x0), down.firstOf(rect.y0),
                           across.firstOf(rect.x1 - 1) + across.width,
                           down.firstOf(rect.y1 - 1) + down.width};
    const TilePlanes from = withRecipesAlpha(
        step, edgeRepeatedPlanes(m_drawn[size_t(step.inputs[0])].planes, wanted, m_arena));
    TilePlanes out = m_arena.planes(rect, from.opaque());
    const TapRun taps = groupedTaps(across, rect.x0, rect.width(), wanted.x0, m_arena);
    float* pixels = m_arena.floats(size_t(wanted.width() + pixelPadding) * 4);
    float* summed = m_arena.floats(size_t(rect.width() + rowPadding) * 4);
    for (int y = rect.y0; y < rect.y1; ++y) {
        const float* rows[4] = {};
        float* to[4] = {};
        for (int c = 0; c < from.channels(); ++c) {
            rows[c] = from.at(c, wanted.x0, down.firstOf(y));
            to[c] = out.row(c, y);
        }
        sumRowsToPixels(rows, from.stride, down.weightsOf(y), down.width, pixels, wanted.width());
        sumPixels(pixels, taps, rect.width(), summed);
        planesFromPixels(summed, rect.width(), to);
    }
    return out;
}

TilePlanes TileEvaluator::drawNode(size_t, const PlanStep& step, const WindowNode& node,
                                   const PixelRect& rect)
{
    const TilePlanes from =
        withRecipesAlpha(step,
                         edgeRepeatedPlanes(m_drawn[size_t(step.inputs[0])].planes,
                                            rect.grown(node.border), m_arena));
    TilePlanes out = m_arena.planes(rect, from.opaque());
    WindowBlock block{.width = rect.width(),
                      .height = rect.height(),
                      .inputStride = from.stride,
                      .outputStride = out.stride};
    for (int c = 0; c < from.channels(); ++c) {
        block.input[c] = from.at(c, rect.x0, rect.y0);
        block.output[c] = out.row(c, rect.y0);
    }
    node.kernel->tiled(node.parameters.record.data(), block);
    return out;
}

} // namespace orvane
