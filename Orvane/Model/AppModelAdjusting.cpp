// Sliders, curves, levels, and the looks that are fitted to the picture.

#include "AppModel.h"

#include "LookThumbs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

/// Long edge of what the one-click grade measures.
constexpr int popSampleEdge = 256;

std::array<double, 5> valuesOf(const EditState::Levels& levels)
{
    return {levels.blackIn, levels.whiteIn, levels.gamma, levels.blackOut, levels.whiteOut};
}

} // namespace

// ---- Sliders ----

void AppModel::setAdjust(const std::string& key, double value)
{
    // No store can hold it: the image could never be saved again.
    if (!std::isfinite(value))
        return;
    AdjustMap changed = adjust.value();
    changed[key] = value;
    adjust = std::move(changed);
    pushHistory();
}

void AppModel::resetGroup(const std::vector<AdjustKey>& keys)
{
    AdjustMap changed = adjust.value();
    for (const AdjustKey& key : keys)
        changed[key.key] = key.def;
    adjust = std::move(changed);
    commitHistory();
}

void AppModel::setLevels(const std::string& key, double value)
{
    setAdjust(key, value);
}

AppModel::Levels AppModel::levels() const
{
    EditState state;
    state.adjust = adjust.value();
    return state.levels();
}

void AppModel::resetLevels()
{
    AdjustMap changed = adjust.value();
    const auto values = valuesOf(Levels());
    for (size_t i = 0; i < values.size(); ++i)
        changed[std::string(EditState::levelsKeys[i])] = values[i];
    adjust = std::move(changed);
    commitHistory();
}

// ---- Curves ----

void AppModel::setCurve(const std::string& channel, std::vector<CurvePoint> points)
{
    const auto isFinite = [](const CurvePoint& p) {
        return std::isfinite(p.x) && std::isfinite(p.y);
    };
    if (!std::all_of(points.begin(), points.end(), isFinite))
        return;
    for (CurvePoint& point : points)
        point = {std::clamp(point.x, 0.0, 255.0), std::clamp(point.y, 0.0, 255.0)};
    std::stable_sort(points.begin(), points.end(),
                     [](const CurvePoint& a, const CurvePoint& b) { return a.x < b.x; });
    CurveMap changed = curve.value();
    changed[channel] = std::move(points);
    curve = std::move(changed);
    pushHistory();
}

void AppModel::clearCurves()
{
    if (curve.value().empty())
        return;
    curve = CurveMap();
    commitHistory();
}

// ---- Grades ----

void AppModel::applyGrade(const AdjustMap& values, const CurveMap& curves)
{
    // A grade replaces, it does not add: sliders that it does not name go to rest.
    AdjustMap graded = Schema::file().defaults;
    for (const auto& [key, value] : values)
        graded[key] = value;
    adjust = std::move(graded);
    curve = curves;
    commitHistory();
}

void AppModel::applyGradeOf(Looks::Look look)
{
    const AdjustMap graded = Looks::apply(look, 100);
    lastLook = std::move(look);
    lookStrength = 100;
    applyGrade(graded, {});
}

void AppModel::applyLook(const std::string& id)
{
    // A click may come before the background has fitted the looks to a picture just opened.
    if (lookRecipes.value().empty()) {
        if (m_lookFrame)
            lookRecipes = LookThumbs::fitted(*m_lookFrame);
    }
    const auto& recipes = lookRecipes.value();
    const auto look = std::find_if(recipes.begin(), recipes.end(),
                                   [&](const Looks::Look& l) { return l.id == id; });
    if (look != recipes.end())
        applyGradeOf(*look);
}

void AppModel::makeItPop()
{
    const auto framed = geometrySource();
    if (!framed)
        return;
    const CIImage sample = reducedCopy(*framed, popSampleEdge);
    applyGradeOf(Looks::pop(Looks::analyze(sample, popSampleEdge)));
}

void AppModel::setLookStrength(double strength)
{
    const auto look = lastLook.value();
    if (!look || !std::isfinite(strength))
        return;
    lookStrength = strength;
    applyGrade(Looks::apply(*look, strength), {});
}

void AppModel::revertAllEdits()
{
    restore(EditState());
    lastLook = std::nullopt;
    commitHistory();
}

void AppModel::refreshLookThumbs()
{
    // The recipes of another picture must not be applied to this one.
    lookRecipes = std::vector<Looks::Look>();
    m_lookFrame = geometrySource();
    if (!m_lookFrame) {
        m_lookJob.cancel();
        looks = std::vector<LookItem>();
        lookPreviews = std::map<std::string, Thumbnail>();
        return;
    }
    m_lookJob.start([image = *m_lookFrame](
                        const CancellationToken& token) { return LookThumbs::drawn(image, token); },
                    [this](const LookThumbs* thumbs) { takeLooks(thumbs); });
}

/// Null when there was no memory for them: then the looks are shown without pictures, and fitted
/// when one is chosen.
void AppModel::takeLooks(const LookThumbs* thumbs)
{
    if (!thumbs) {
        lookPreviews = std::map<std::string, Thumbnail>();
        return;
    }
    std::vector<LookItem> items;
    for (const Looks::Look& look : thumbs->recipes)
        items.push_back({look.id, look.name});
    lookRecipes = thumbs->recipes;
    looks = std::move(items);
    lookPreviews = thumbs->previews;
}

} // namespace orvane
