#include "LooksSection.h"

#include "LookGrid.h"
#include "LutControls.h"
#include "ModelSlider.h"
#include "PanelControls.h"
#include "RowList.h"

#include <QVBoxLayout>

#include <algorithm>

namespace orvane {

namespace {

/// Whether the picture still wears the recipe: an undo, or sliders moved one and all, take it off.
/// A slider that the recipe leaves at 0 stands there without it, too; at no strength all do.
bool isWorn(const AppModel& model, const Looks::Look& look)
{
    const auto& last = model.lastLook.value();
    if (!last || *last != look)
        return false;
    const auto& adjust = model.adjust.value();
    const auto worn = Looks::apply(look, model.lookStrength);
    const auto stands = [&](const auto& entry) {
        const auto found = adjust.find(entry.first);
        return found != adjust.end() && found->second == entry.second;
    };
    return std::all_of(worn.begin(), worn.end(), stands)
        || std::any_of(worn.begin(), worn.end(),
                       [&](const auto& entry) { return entry.second != 0 && stands(entry); });
}

/// Every slider of the catalogue, at rest where nothing is said of it.
AppModel::AdjustMap completed(AppModel::AdjustMap adjust)
{
    for (const AppModel::AdjustGroup& group : Schema::groups()) {
        for (const AppModel::AdjustKey& key : group.keys)
            adjust.try_emplace(key.key, key.def);
    }
    return adjust;
}

/// Before the first fitting there are no recipes yet; which looks there will be is known.
std::vector<LookItem> itemsOf(const AppModel& model)
{
    if (!model.looks.value().empty())
        return model.looks;
    std::vector<LookItem> items;
    for (const Looks::Look& look : Looks::all({}))
        items.push_back({look.id, look.name});
    return items;
}

} // namespace

LooksSection::LooksSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_grid(new LookGrid)
    , m_strength(new ModelSlider(model, tr("Strength"),
                                 {.minimum = 0, .maximum = 100, .resets = false},
                                 {[&model] { return model.lookStrength.value(); },
                                  [&model](double strength) { model.setLookStrength(strength); }}))
    , m_saved(new RowList(tr("Saved looks")))
    , m_lut(new LutControls(model))
    , m_watch([this] { refresh(); })
{
    auto* pop = new PanelButton("wand-sparkles", tr("Make it Pop"));
    auto* save = new PanelButton("download", tr("Save This Look…"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 2, 0, 2);
    column->setSpacing(8);
    for (QWidget* each : {static_cast<QWidget*>(m_grid), static_cast<QWidget*>(m_strength),
                          static_cast<QWidget*>(pop), static_cast<QWidget*>(m_saved),
                          static_cast<QWidget*>(save), static_cast<QWidget*>(m_lut)})
        column->addWidget(each);

    connect(m_grid, &LookGrid::picked, this,
            [this](const std::string& id) { m_model.applyLook(id); });
    connect(pop, &QPushButton::clicked, this, [this] { m_model.makeItPop(); });
    connect(m_saved, &RowList::picked, this,
            [this](const std::string& id) { m_model.applySavedLook(id); });
    connect(m_saved, &RowList::removeAsked, this,
            [this](const std::string& id) { m_model.removeSavedLook(id); });
    connect(save, &QPushButton::clicked, this, &LooksSection::nameAsked);
    m_watch.watch(model.looks, model.lookPreviews, model.lookRecipes, model.lastLook,
                  model.lookStrength, model.savedLookEntries, model.adjust, model.curve,
                  model.sourceImageVersion);
    refresh();
}

void LooksSection::refresh()
{
    showGrid();
    m_strength->setVisible(m_model.canAdjustLookStrength());
    m_strength->refresh();
    showSaved();
}

void LooksSection::showGrid()
{
    const auto& recipes = m_model.lookRecipes.value();
    const auto& previews = m_model.lookPreviews.value();
    const bool isFitting = m_model.isFittingLooks();
    std::vector<LookTile::Shown> shown;
    for (const LookItem& item : itemsOf(m_model)) {
        LookTile::Shown tile{.id = item.id, .name = tr(item.name.c_str())};
        const auto recipe = std::find_if(recipes.begin(), recipes.end(),
                                         [&](const auto& look) { return look.id == item.id; });
        if (recipe != recipes.end()) {
            tile.reason = tr(recipe->reason.c_str());
            tile.isInUse = isWorn(m_model, *recipe);
        }
        const auto preview = previews.find(item.id);
        tile.picture = preview == previews.end() ? nullptr : preview->second;
        tile.isStale = isFitting;
        shown.push_back(std::move(tile));
    }
    m_grid->show(shown);
}

void LooksSection::showSaved()
{
    std::vector<RowList::Row> rows;
    const auto grade = completed(m_model.adjust);
    for (const SavedLook& look : m_model.savedLookEntries.value()) {
        const QString name = QString::fromStdString(look.name);
        rows.push_back(
            {.id = look.id,
             .text = name,
             .removeHelp = tr("Remove %1").arg(name),
             .isCurrent = completed(look.adjust) == grade && look.curve == m_model.curve.value()});
    }
    m_saved->show(rows);
}

} // namespace orvane
