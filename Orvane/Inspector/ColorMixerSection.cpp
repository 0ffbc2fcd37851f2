#include "ColorMixerSection.h"

#include "AdjustSection.h"
#include "BandButton.h"
#include "HueRow.h"
#include "InspectorLayout.h"
#include "ModelSlider.h"
#include "SegmentedPicker.h"

#include <QButtonGroup>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr double editedFrom = 0.001;

/// The bands, with the hue in degrees that stands for each.
constexpr struct {
    const char* name;
    double hue;
} bands[] = {{"Red", 0},    {"Orange", 30}, {"Yellow", 60},  {"Green", 120},
             {"Aqua", 180}, {"Blue", 240},  {"Purple", 280}, {"Magenta", 320}};

/// The sliders of a band: how their keys begin, and what they are called beside each other.
constexpr struct {
    const char* prefix;
    const char* label;
} sliders[] = {{"hue", QT_TRANSLATE_NOOP("orvane::ColorMixerSection", "Hue")},
               {"sat", QT_TRANSLATE_NOOP("orvane::ColorMixerSection", "Saturation")},
               {"lum", QT_TRANSLATE_NOOP("orvane::ColorMixerSection", "Luminance")}};

const AppModel::AdjustKey* mixerKey(const AppModel& model, std::string_view prefix,
                                    std::string_view band)
{
    const std::string wanted = std::string(prefix) + std::string(band);
    for (const AppModel::AdjustGroup& group : model.schema) {
        if (!isMixerGroup(group))
            continue;
        for (const AppModel::AdjustKey& key : group.keys) {
            if (key.key == wanted)
                return &key;
        }
    }
    return nullptr;
}

} // namespace

ColorMixerSection::ColorMixerSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_column(new QVBoxLayout(this))
    , m_watch([this] { refresh(); })
{
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(0);
    m_column->addWidget(makeBands());
    setBand(m_band);
    m_watch.watch(model.adjust);
    refresh();
}

QWidget* ColorMixerSection::makeBands()
{
    auto* line = new QWidget;
    line->setAccessibleName(tr("Band"));
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    auto* group = new QButtonGroup(line);
    for (const auto& [name, hue] : bands) {
        auto* button = new BandButton(name, HueRow::color(hue));
        button->setChecked(name == m_band);
        group->addButton(button);
        row->addWidget(button, 1);
        m_buttons.push_back(button);
        connect(button, &QAbstractButton::toggled, this, [this, band = name](bool isOn) {
            if (isOn)
                setBand(band);
        });
    }
    tabToChosen(*group);
    connect(group, &QButtonGroup::idToggled, group, [group] { tabToChosen(*group); });
    return line;
}

void ColorMixerSection::setBand(const std::string& band)
{
    m_band = band;
    for (ModelSlider* row : m_rows) {
        row->hide();
        row->deleteLater();
    }
    m_rows.clear();
    for (const auto& [prefix, label] : sliders) {
        const AppModel::AdjustKey* key = mixerKey(m_model, prefix, band);
        if (!key)
            continue;
        m_rows.push_back(makeAdjustRow(m_model, *key, tr(label)));
        m_rows.back()->setSpokenName(QString::fromStdString(key->label));
        m_column->addWidget(m_rows.back());
    }
}

bool ColorMixerSection::isBandEdited(const AppModel& model, std::string_view band)
{
    return std::any_of(std::begin(sliders), std::end(sliders), [&](const auto& slider) {
        const AppModel::AdjustKey* key = mixerKey(model, slider.prefix, band);
        return key && std::abs(adjusted(model, *key) - key->def) >= editedFrom;
    });
}

std::vector<AppModel::AdjustKey>
ColorMixerSection::keys(const std::vector<AppModel::AdjustGroup>& catalogue)
{
    std::vector<AppModel::AdjustKey> all;
    for (const AppModel::AdjustGroup& group : catalogue) {
        if (isMixerGroup(group))
            all.insert(all.end(), group.keys.begin(), group.keys.end());
    }
    return all;
}

void ColorMixerSection::refresh()
{
    for (size_t i = 0; i < m_buttons.size(); ++i)
        m_buttons[i]->setEdited(isBandEdited(m_model, bands[i].name));
    for (ModelSlider* row : m_rows)
        row->refresh();
}

} // namespace orvane
