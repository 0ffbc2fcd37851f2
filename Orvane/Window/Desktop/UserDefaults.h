#pragma once

#include <QSettings>

namespace orvane {

/// What the window remembers from one run to the next: a file of its own in the user's
/// configuration folder, "Orvane/Orvane.ini".
class UserDefaults final : public QSettings {
public:
    UserDefaults()
        : QSettings(QSettings::IniFormat, QSettings::UserScope, "Orvane", "Orvane")
    {
    }
};

} // namespace orvane
