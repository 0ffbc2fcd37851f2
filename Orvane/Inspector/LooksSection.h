#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

namespace orvane {

class LookGrid;
class LutControls;
class ModelSlider;
class RowList;

/// Looks fitted to the picture, the one-click grade, the looks that a person has saved, and the
/// LUT.
///
///   [tile] [tile] [tile]
///   [tile] [tile] ...
///   Strength  ─────────●  100
///   [      Make it Pop      ]
///   Saved look            (x)
///   [   Save This Look…     ]
///   [  Load a LUT (.cube)…  ]
class LooksSection final : public QWidget {
    Q_OBJECT

public:
    explicit LooksSection(AppModel& model, QWidget* parent = nullptr);

Q_SIGNALS:
    /// Wants a name for the look to be saved.
    void nameAsked();

private:
    void refresh();
    void showGrid();
    void showSaved();

    AppModel& m_model;
    LookGrid* m_grid;
    ModelSlider* m_strength;
    RowList* m_saved;
    LutControls* m_lut;
    FieldWatch m_watch;
};

} // namespace orvane
