#include "RelightSection.h"

#include "Icon.h"
#include "LayerList.h"
#include "LightFields.h"
#include "ModelSlider.h"
#include "PanelControls.h"
#include "RowList.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace orvane {

namespace {

constexpr LightRow rows[] = {
    {QT_TRANSLATE_NOOP("RelightSection", "Position X"), "x", 0, 100, 50, 100, false},
    {QT_TRANSLATE_NOOP("RelightSection", "Position Y"), "y", 0, 100, 50, 100, false},
    {QT_TRANSLATE_NOOP("RelightSection", "Brightness"), "brightness", -100, 100, 0, 1, true},
    {QT_TRANSLATE_NOOP("RelightSection", "Warmth"), "warmth", -100, 100, 0, 1, true},
    {QT_TRANSLATE_NOOP("RelightSection", "Contrast"), "contrast", -100, 100, 0, 1, true},
    {QT_TRANSLATE_NOOP("RelightSection", "Saturation"), "saturation", -100, 100, 0, 1, true},
    {QT_TRANSLATE_NOOP("RelightSection", "Size"), "radius", 2, 100, 25, 100, false},
    {QT_TRANSLATE_NOOP("RelightSection", "Softness"), "feather", 0, 100, 50, 100, false},
};

struct AddButton {
    const char* kind; ///< as addLightAt() takes it
    const char* label;
    const char* icon;
    const char* help;
};
constexpr AddButton addButtons[] = {
    {"radial", QT_TRANSLATE_NOOP("RelightSection", "Light"), "sun",
     QT_TRANSLATE_NOOP("RelightSection", "A radial light — dodge or burn a spot")},
    {"gradient", QT_TRANSLATE_NOOP("RelightSection", "Gradient"), "contrast",
     QT_TRANSLATE_NOOP("RelightSection", "A linear gradient — lift a sky, darken a foreground")},
    {"brush", QT_TRANSLATE_NOOP("RelightSection", "Brush"), "brush",
     QT_TRANSLATE_NOOP("RelightSection", "Paint the effect on by hand")},
};

/// Each read once: the list is looked through at every step of a slider.
const QIcon& iconOf(const AppModel::Light& light)
{
    static const QIcon brush = icon("brush");
    static const QIcon eraser = icon("eraser");
    static const QIcon gradient = icon("contrast");
    static const QIcon radial = icon("sun");
    if (light.type == "brush")
        return light.mode == "erase" ? eraser : brush;
    return light.type == "linear" ? gradient : radial;
}

/// Null with none.
const AppModel::Light* selected(const AppModel& model)
{
    const auto& lights = model.lights.value();
    const size_t index = LayerList::indexOf(lights, model.selectedLightID.value());
    return index < lights.size() ? &lights[index] : nullptr;
}

} // namespace

std::span<const LightRow> lightRows()
{
    return rows;
}

RelightSection::RelightSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_hint(new QLabel(tr("Add a light, then drag it on the image.")))
    , m_list(new RowList(tr("Lights")))
    , m_watch([this] { refresh(); })
{
    Theme::makeSecondary(*m_hint);
    m_hint->setWordWrap(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 2, 0, 2);
    column->setSpacing(8);
    column->addLayout(makeAddButtons());
    column->addWidget(m_hint);
    column->addWidget(m_list);
    column->addWidget(m_details = makeDetails());
    column->addLayout(makeLastButtons());

    connect(m_list, &RowList::picked, this,
            [this](const std::string& id) { m_model.selectLight(id); });
    connect(m_list, &RowList::removeAsked, this,
            [this](const std::string& id) { m_model.deleteLight(id); });
    m_watch.watch(model.lights, model.selectedLightID, model.relightMode);
    refresh();
}

QLayout* RelightSection::makeAddButtons()
{
    auto* line = buttonRow({});
    for (const AddButton& each : addButtons) {
        auto* button = new PanelButton(each.icon, tr(each.label), tr(each.help));
        line->addWidget(button, 1);
        connect(button, &QPushButton::clicked, this,
                [this, kind = each.kind] { m_model.addLightAt(kind, 0.5, 0.5); });
    }
    return line;
}

/// Shows the stored value times the scale, and stores the shown one by the scale.
ModelSlider* RelightSection::lightBinding(const LightRow& row)
{
    const auto read = [this, &row] {
        const AppModel::Light* light = selected(m_model);
        return light ? light->*lightField(row.key) * row.scale : row.rest;
    };
    const auto write = [this, &row](double shown) {
        m_model.updateLight(m_model.selectedLightID, row.key, shown / row.scale);
    };
    return new ModelSlider(m_model, tr(row.label), {row.minimum, row.maximum, row.rest},
                           {read, write});
}

QWidget* RelightSection::makeDetails()
{
    auto* details = new QWidget;
    auto* column = new QVBoxLayout(details);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (const LightRow& row : rows) {
        m_sliders.push_back({row, lightBinding(row)});
        column->addWidget(m_sliders.back().slider);
    }
    m_invert = new Toggle(tr("Invert"), tr("Affect everything except this spot"));
    column->addWidget(m_invert);
    connect(m_invert, &QAbstractButton::clicked, this,
            [this](bool isOn) { m_model.setLightInverted(m_model.selectedLightID, isOn); });
    return details;
}

QLayout* RelightSection::makeLastButtons()
{
    m_place = new PanelButton("scan", tr("Place on Image"));
    m_place->setCheckable(true);
    m_clear = new PanelButton("trash-2", tr("Clear All"));
    // Entering once more would forget what a cancel goes back to.
    connect(m_place, &QPushButton::clicked, this,
            [this] { m_model.relightMode ? m_model.exitRelight() : m_model.enterRelight(); });
    connect(m_clear, &QPushButton::clicked, this, [this] { m_model.clearLights(); });
    return buttonRow({m_place, m_clear});
}

void RelightSection::refresh()
{
    showList();
    showSelected();
    const bool hasLights = !m_model.lights.value().empty();
    m_hint->setVisible(!hasLights);
    m_clear->setEnabled(hasLights);
    m_place->setChecked(m_model.relightMode);
}

void RelightSection::showList()
{
    std::vector<RowList::Row> shown;
    for (const AppModel::Light& light : m_model.lights.value()) {
        const QString name = tr(light.name().c_str());
        shown.push_back({.id = light.id,
                         .text = name,
                         .icon = iconOf(light),
                         .removeHelp = tr("Remove this %1").arg(name),
                         .isCurrent = light.id == m_model.selectedLightID.value()});
    }
    m_list->show(shown);
}

void RelightSection::showSelected()
{
    const AppModel::Light* light = selected(m_model);
    m_details->setVisible(light);
    if (!light)
        return;
    for (const Bound& each : m_sliders) {
        each.slider->setVisible(light->type != "brush" || each.row.suitsBrush);
        each.slider->refresh();
    }
    m_invert->setVisible(light->type == "radial");
    m_invert->setChecked(light->invert);
}

} // namespace orvane
