#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

class QLabel;

namespace orvane {

class ModelSlider;
class PanelButton;

/// The retouch brush: armed or not, how wide, and what it has healed.
class RetouchSection final : public QWidget {
    Q_OBJECT

public:
    explicit RetouchSection(AppModel& model, QWidget* parent = nullptr);

private:
    void refresh();

    AppModel& m_model;
    PanelButton* m_heal;
    ModelSlider* m_size;
    QWidget* m_healed; ///< what shows only when there are spots
    QLabel* m_count;
    FieldWatch m_watch;
};

} // namespace orvane
