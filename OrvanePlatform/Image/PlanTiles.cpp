// How large the tiles of each pass are.

#include "Planner.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr int lowestPatchTile = 16;
/// In cells.
constexpr int keptBlurTileHeight = 128;
/// Floats of one plane that a tile's widest step may hold; above it tiles shrink.
constexpr double widestStep = 4.0 * defaultTileWidth * defaultTileHeight;
constexpr int narrowestTile = 32;
/// Of passes that make rows of the same rows of what they read: low tiles have it held for fewer
/// rows, and wide ones meet fewer pages of memory.
constexpr int rowTileWidth = 4 * defaultTileWidth;
constexpr int rowTileHeight = defaultTileHeight / 6;

bool keepsToRows(const PlanPass& pass)
{
    return std::ranges::all_of(pass.steps, [](const PlanStep& step) {
        const Node& node = *step.node;
        if (const auto* move = node.as<OrthogonalNode>(); move && step.stored < 0)
            return move->forward.b == 0; // no quarter turn
        return step.stored >= 0 || node.as<PointwiseNode>() || node.as<CropNode>()
            || node.as<SourceNode>() || node.as<PatchesNode>();
    });
}

/// Whole rows: beside a tile, readers of whole vectors would meet what is being drawn. All at once
/// where a tile reads what another one draws over.
void fitPatchTiles(const Plan& plan, PlanPass& pass, int tileHeight)
{
    const PixelRect& place = pass.region;
    pass.tileWidth = std::max(1, place.width());
    const int fitting = defaultTileWidth * defaultTileHeight / pass.tileWidth;
    pass.tileHeight = tileHeight > 0 ? tileHeight : std::max(lowestPatchTile, fitting);
    // What patches read lies to one side of them: their outermost tiles tell.
    const PixelRect ends[] = {{place.x0, place.y0, place.x1, place.y0 + pass.tileHeight},
                              {place.x0, place.y1 - pass.tileHeight, place.x1, place.y1}};
    for (const PixelRect& end : ends) {
        const PixelRect tile = place.intersection(end);
        for (const StoredRead& read : storedReads(plan, pass, tile)) {
            if (read.stored == pass.target && !tile.contains(read.rect.intersection(place)))
                pass.tileHeight = std::max(1, place.height());
        }
    }
}

/// Halves tiles until the widest step's planes are small enough.
void fitTiles(const Plan& plan, PlanPass& pass)
{
    const PixelRect r = pixelsBehind(plan, pass, pass.region);
    for (;;) {
        const int x = r.x0 + std::max(0, (r.width() - pass.tileWidth) / 2);
        const int y = r.y0 + std::max(0, (r.height() - pass.tileHeight) / 2);
        std::vector<PixelRect> requests;
        requestedRects(pass, r.intersection({x, y, x + pass.tileWidth, y + pass.tileHeight}),
                       requests);
        double widest = 0;
        for (const PixelRect& request : requests)
            widest = std::max(widest, request.area());
        if (widest <= widestStep || pass.tileWidth <= narrowestTile)
            return;
        (pass.tileWidth > pass.tileHeight ? pass.tileWidth : pass.tileHeight) /= 2;
    }
}

void chooseTiles(const Plan& plan, PlanPass& pass, int tileWidth, int tileHeight,
                 Intermediates intermediates)
{
    pass.tileWidth = tileWidth > 0 ? tileWidth : defaultTileWidth;
    pass.tileHeight = tileHeight > 0 ? tileHeight : defaultTileHeight;
    if (pass.patches)
        return fitPatchTiles(plan, pass, tileHeight);
    const StoredPlan* target = pass.target >= 0 ? &plan.stored[size_t(pass.target)] : nullptr;
    const bool fromCells = target && target->averages >= 0;
    const bool choose = tileWidth == 0 && tileHeight == 0;
    const bool pixels = !target || target->factor == 1;
    if (choose && pixels && intermediates == Intermediates::Freed && keepsToRows(pass)) {
        pass.tileWidth = rowTileWidth;
        pass.tileHeight = rowTileHeight;
    } else if (choose && !fromCells) {
        fitTiles(plan, pass);
    }
    if (!target || target->factor == 1)
        return;
    // From here on in cells: as many rows at a time as the full grid's tiles are high.
    pass.tileWidth = fromCells ? defaultTileWidth : std::max(1, pass.tileWidth / target->factor);
    pass.tileHeight = std::max(1, pass.tileHeight / target->factor);
    // Where all rows are in memory anyway: low tiles sum most rows across twice.
    const bool kept = intermediates == Intermediates::Kept;
    if (kept && target->form == StoredPlan::Form::ReducedBlur && tileHeight == 0)
        pass.tileHeight = std::max(pass.tileHeight, keptBlurTileHeight);
}

} // namespace

void chooseTiles(Plan& plan, int tileWidth, int tileHeight, Intermediates intermediates)
{
    for (PlanPass& pass : plan.passes)
        chooseTiles(plan, pass, tileWidth, tileHeight, intermediates);
}

} // namespace orvane
