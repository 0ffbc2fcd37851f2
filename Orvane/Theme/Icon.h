#pragma once

#include <QIcon>

#include <span>
#include <string_view>

namespace orvane {

enum class IconForm {
    Outline,
    Filled, ///< the outline filled, its inner marks cut out
};

/// The icon of a name of the table below, drawn from its outline at whatever size and device pixel
/// ratio it is asked for, in the palette's text colours. A name that is not there is an error of
/// the program and gives an empty icon.
QIcon icon(std::string_view name, IconForm form = IconForm::Outline);

/// The same in one colour, whatever the state of the control.
QIcon icon(std::string_view name, const QColor& color, IconForm form = IconForm::Outline);

/// The names of all packaged icons.
std::span<const std::string_view> iconNames();

} // namespace orvane
