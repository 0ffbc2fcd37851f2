#pragma once

#include <QWidget>

namespace orvane {

class AppModel;
class Desktop;

/// What this program is and where more about it is to be found.
class SettingsWindow final : public QWidget {
    Q_OBJECT

public:
    SettingsWindow(AppModel& model, Desktop& desktop, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace orvane
