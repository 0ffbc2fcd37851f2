#include "InspectorLayout.h"

#include "AdjustSection.h"
#include "CanvasSection.h"
#include "ColorMixerSection.h"
#include "CropSection.h"
#include "LooksSection.h"
#include "RelightSection.h"
#include "RetouchSection.h"
#include "TextSection.h"
#include "ToneSections.h"

#include <algorithm>

namespace orvane {

namespace {

using Group = AppModel::AdjustGroup;
using Make = QWidget* (*)(AppModel&, QWidget*);

template <class Section> QWidget* make(AppModel& model, QWidget* parent)
{
    return new Section(model, parent);
}

/// Where the catalogue's groups belong.
constexpr struct {
    std::string_view group;
    std::string_view heading;
} placement[] = {
    {"Geometry", "Frame"},       {"Light", "Light & Colour"},
    {"Color", "Light & Colour"}, {"Color Grading", "Light & Colour"},
    {"Detail", "Detail"},        {"Tilt-Shift", "On the Image"},
    {"Effects", "Style"},        {"Duotone", "Style"},
};

constexpr std::string_view headings[] = {"Frame", "Style", "Light & Colour", "Detail",
                                         "On the Image"};

/// Stands in the table for the catalogue's groups of a heading.
constexpr Make groups = nullptr;

bool areLevelsEdited(const AppModel& model)
{
    return model.levels() != AppModel::Levels();
}

bool isMixerEdited(const AppModel& model)
{
    return isEdited(model, ColorMixerSection::keys(model.schema));
}

/// The panel, top to bottom within each heading.
const struct Row {
    std::string_view heading;
    const char* name;
    Make make;
    std::string_view after = {}; ///< a group that it follows, in place of standing where it is
    bool (*isEdited)(const AppModel&) = nullptr;
    std::function<void(AppModel&)> reset = {};
} rows[] = {
    {"Frame", "Crop", make<CropSection>},
    {"Frame", "Canvas", make<CanvasSection>},
    {"Frame", "", groups},
    {"Style", "Looks", make<LooksSection>},
    {"Style", "", groups},
    {"Light & Colour", "", groups},
    {"Light & Colour", "Curves", make<CurvesSection>, "Color", CurvesSection::isEdited,
     [](AppModel& model) { model.clearCurves(); }},
    {"Light & Colour", "Levels", make<LevelsSection>, "Color", areLevelsEdited,
     [](AppModel& model) { model.resetLevels(); }},
    {"Light & Colour",
     "Color Mixer",
     make<ColorMixerSection>,
     {},
     isMixerEdited,
     [](AppModel& model) { model.resetGroup(ColorMixerSection::keys(model.schema)); }},
    {"Detail", "", groups},
    {"On the Image", "Retouch", make<RetouchSection>},
    {"On the Image", "Relight", make<RelightSection>},
    {"On the Image", "", groups},
    {"On the Image", "Text", make<TextSection>},
};

QString titled(std::string_view text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

std::string_view headingOf(const Group& group)
{
    for (const auto& [label, heading] : placement) {
        if (label == group.label)
            return heading;
    }
    return {};
}

InspectorSection groupSection(const Group& group)
{
    return {.name = QString::fromStdString(group.label),
            .make = [group](AppModel& model,
                            QWidget* parent) { return new AdjustSection(model, group, parent); },
            .isEdited = [group](const AppModel& model) { return isEdited(model, group.keys); },
            .reset = [group](AppModel& model) { model.resetGroup(group.keys); }};
}

InspectorSection fixedSection(const Row& row)
{
    return {.name = row.name, .make = row.make, .isEdited = row.isEdited, .reset = row.reset};
}

void appendGroups(std::vector<InspectorSection>& sections, std::string_view heading,
                  const std::vector<Group>& catalogue)
{
    for (const Group& group : catalogue) {
        if (headingOf(group) != heading || isMixerGroup(group))
            continue;
        sections.push_back(groupSection(group));
        for (const Row& row : rows) {
            if (row.after == group.label)
                sections.push_back(fixedSection(row));
        }
    }
}

} // namespace

bool isMixerGroup(const Group& group)
{
    return group.label.starts_with("Color Mixer");
}

std::vector<InspectorHeading> inspectorLayout(const std::vector<Group>& catalogue)
{
    const auto mixer = ColorMixerSection::keys(catalogue);
    std::vector<InspectorHeading> layout;
    for (const std::string_view heading : headings) {
        layout.push_back({.title = titled(heading)});
        for (const Row& row : rows) {
            if (row.heading != heading || !row.after.empty())
                continue;
            if (row.make == groups)
                appendGroups(layout.back().sections, heading, catalogue);
            else if (row.make != &make<ColorMixerSection> || !mixer.empty())
                layout.back().sections.push_back(fixedSection(row));
        }
    }
    InspectorHeading more{.title = "More"};
    appendGroups(more.sections, {}, catalogue);
    if (!more.sections.empty())
        layout.push_back(std::move(more));
    return layout;
}

} // namespace orvane
