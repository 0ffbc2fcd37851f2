#include "IconButton.h"

#include "Theme.h"

namespace orvane {

QToolButton* iconButton(std::string_view name, const QString& accessibleName, const QString& help,
                        IconForm form)
{
    auto* button = new QToolButton;
    button->setIcon(icon(name, form));
    button->setIconSize({16, 16});
    button->setFixedSize(flatButtonHeight, flatButtonHeight);
    button->setAccessibleName(accessibleName);
    button->setToolTip(help);
    return button;
}

QString flatButtons()
{
    return QString("QToolButton { background: transparent; border: 1px solid transparent;"
                   " border-radius: %1px; color: %2; }"
                   "QToolButton:hover { background: %3; }"
                   "QToolButton:pressed, QToolButton:open { background: %4; }"
                   "QToolButton:disabled { background: transparent; color: %5; }"
                   "QToolButton:focus { border-color: %6; }"
                   "QToolButton::menu-indicator { image: none; }")
        .arg(Theme::radius)
        .arg(Theme::text.name(), Theme::raised.name(), Theme::hover.name(),
             Theme::disabledText.name(), Theme::accent.name());
}

} // namespace orvane
