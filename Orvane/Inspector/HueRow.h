#pragma once

#include "OneStep.h"

#include <QWidget>

namespace orvane {

class ColorWell;

/// A slider of the catalogue whose values are hues in degrees, picked as a colour.
///
///   Duotone Hue                     [##]
class HueRow final : public QWidget {
    Q_OBJECT

public:
    HueRow(AppModel& model, const AppModel::AdjustKey& key, QWidget* parent = nullptr);

    static bool isHue(const AppModel::AdjustKey& key) { return key.min == 0 && key.max == 360; }
    /// The colour that stands for a hue in degrees.
    static QColor color(double degrees);
    void refresh();

private:
    void pick(const QColor& color);

    AppModel& m_model;
    AppModel::AdjustKey m_key;
    ColorWell* m_well;
    OneStep m_step;
};

} // namespace orvane
