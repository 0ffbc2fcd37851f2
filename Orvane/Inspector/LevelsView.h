#pragma once

#include "EditState.h"

#include <QWidget>

class QLabel;

namespace orvane {

struct Histogram;
class LevelsPlot;
class SliderRow;

/// The levels: input stops under the histogram, their readout, and the two output levels. It tells
/// each change as one of EditState::levelsKeys with its value.
///
///   ┌──────────────────────────┐
///   │        histogram         │
///   └▲────────────▲───────────▲┘
///   Black 0   Gamma 1.00   White 255
///   Output     ●─────────   [  0]
///              ─────────●   [255]
class LevelsView final : public QWidget {
    Q_OBJECT

public:
    using Levels = EditState::Levels;
    explicit LevelsView(QWidget* parent = nullptr);

    /// Without a signal.
    void setLevels(const Levels& levels);
    void setHistogram(const Histogram& histogram);
    LevelsPlot& plot() { return *m_plot; }
    SliderRow& blackOut() { return *m_blackOut; }
    SliderRow& whiteOut() { return *m_whiteOut; }
    QString readout() const;

Q_SIGNALS:
    void levelEdited(const QString& key, double value);
    /// As SliderRow's: from press to release, and round a typed number.
    void editingChanged(bool isEditing);

private:
    SliderRow* makeOutputRow(const QString& name, const char* key, double Levels::*field);
    void showLevels();

    Levels m_levels;
    LevelsPlot* m_plot;
    QLabel* m_readout;
    SliderRow* m_blackOut;
    SliderRow* m_whiteOut;
};

} // namespace orvane
