#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

namespace orvane {

class ModelSlider;

/// The sliders of one group of the catalogue.
class AdjustSection final : public QWidget {
    Q_OBJECT

public:
    AdjustSection(AppModel& model, const AppModel::AdjustGroup& group, QWidget* parent);

private:
    void refresh();

    std::vector<ModelSlider*> m_rows;
    FieldWatch m_watch;
};

/// The value of a slider of the catalogue, which rests where it has none.
double adjusted(const AppModel& model, const AppModel::AdjustKey& key);
/// Whether any of them is away from its rest.
bool isEdited(const AppModel& model, const std::vector<AppModel::AdjustKey>& keys);
/// A row that moves one of them.
ModelSlider* makeAdjustRow(AppModel& model, const AppModel::AdjustKey& key, const QString& label);

} // namespace orvane
