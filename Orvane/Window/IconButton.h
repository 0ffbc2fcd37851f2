#pragma once

#include "Icon.h"

#include <QToolButton>

namespace orvane {

inline constexpr int flatButtonHeight = 28;

/// A flat button that is an icon: `name` is for screen readers, `help` its tooltip. Where a panel
/// holds several, flatButtons() is its style sheet.
QToolButton* iconButton(std::string_view icon, const QString& name, const QString& help,
                        IconForm form = IconForm::Outline);

/// No frame at rest, a ground under the pointer, a frame with the focus.
QString flatButtons();

} // namespace orvane
