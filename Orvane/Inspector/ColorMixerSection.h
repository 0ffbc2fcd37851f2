#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

#include <memory>

class QVBoxLayout;

namespace orvane {

class BandButton;
class ModelSlider;

/// Hue, saturation and luminance of one band of hues, chosen from a row of coloured circles.
class ColorMixerSection final : public QWidget {
    Q_OBJECT

public:
    ColorMixerSection(AppModel& model, QWidget* parent);

    /// As in the keys: "Red".
    const std::string& band() const { return m_band; }
    void setBand(const std::string& band);
    /// Whether a slider of the band is 0.001 or more from its rest.
    static bool isBandEdited(const AppModel& model, std::string_view band);
    /// All the mixer's sliders in a catalogue.
    static std::vector<AppModel::AdjustKey>
    keys(const std::vector<AppModel::AdjustGroup>& catalogue);

private:
    QWidget* makeBands();
    void refresh();

    AppModel& m_model;
    std::string m_band = "Red";
    QVBoxLayout* m_column;
    std::vector<BandButton*> m_buttons;
    std::vector<ModelSlider*> m_rows; ///< of the chosen band
    FieldWatch m_watch;
};

} // namespace orvane
