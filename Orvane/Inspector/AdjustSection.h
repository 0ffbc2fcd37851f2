#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

#include <memory>

namespace orvane {

class HueRow;
class ModelSlider;

/// The sliders of one group of the catalogue; with those of colour stands the white balance picker.
class AdjustSection final : public QWidget {
    Q_OBJECT

public:
    AdjustSection(AppModel& model, const AppModel::AdjustGroup& group, QWidget* parent);

private:
    QWidget* makeWhiteBalance();
    void refresh();

    AppModel& m_model;
    std::vector<ModelSlider*> m_rows;
    std::vector<HueRow*> m_hues;
    FieldWatch m_watch;
    std::unique_ptr<FieldWatch> m_pickWatch; ///< of the white balance button
};

/// The value of a slider of the catalogue, which rests where it has none.
double adjusted(const AppModel& model, const AppModel::AdjustKey& key);
/// Whether any of them is away from its rest.
bool isEdited(const AppModel& model, const std::vector<AppModel::AdjustKey>& keys);
/// A row that moves one of them.
ModelSlider* makeAdjustRow(AppModel& model, const AppModel::AdjustKey& key, const QString& label);

} // namespace orvane
