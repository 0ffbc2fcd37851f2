#pragma once

#include "AppModel.h"

#include <QString>

#include <functional>
#include <string_view>
#include <vector>

class QWidget;

namespace orvane {

/// A part of the panel that folds.
struct InspectorSection {
    QString name; ///< also its title
    std::function<QWidget*(AppModel&, QWidget* parent)> make;
    // Both or neither.
    std::function<bool(const AppModel&)> isEdited = {};
    std::function<void(AppModel&)> reset = {};
};

/// Some of them under a title, which opens and folds them all.
struct InspectorHeading {
    QString title;
    std::vector<InspectorSection> sections = {};
};

/// What the panel shows, top to bottom, for a catalogue. Groups that it does not file come last,
/// under "More".
std::vector<InspectorHeading> inspectorLayout(const std::vector<AppModel::AdjustGroup>& catalogue);

/// The groups of the colour mixer, whose labels begin alike.
bool isMixerGroup(const AppModel::AdjustGroup& group);

} // namespace orvane
