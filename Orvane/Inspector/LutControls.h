#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

class QLabel;

namespace orvane {

class ModelSlider;

/// The LUT of the edit: loading one, how much of it, and the word about one that is missing.
class LutControls final : public QWidget {
    Q_OBJECT

public:
    explicit LutControls(AppModel& model, QWidget* parent = nullptr);

private:
    QWidget* makeLoaded();
    QWidget* makeMissing();
    void refresh();

    AppModel& m_model;
    QLabel* m_name = nullptr;
    ModelSlider* m_amount = nullptr;
    QWidget* m_loaded;
    QWidget* m_missing;
    FieldWatch m_watch;
};

} // namespace orvane
