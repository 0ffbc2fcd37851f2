#pragma once

#include "AppModel.h"
#include "FieldWatch.h"

#include <QWidget>

#include <span>
#include <vector>

class QLabel;
class QLayout;

namespace orvane {

class ModelSlider;
class PanelButton;
class RowList;
class Toggle;

/// A slider of the selected light.
struct LightRow {
    const char* label;
    const char* key; ///< as updateLight() takes it
    double minimum; ///< as shown, as all of these
    double maximum;
    double rest;
    double scale; ///< what is shown of a stored 1
    bool suitsBrush; ///< the others only have a place to speak of
};
/// In the order in which they stand.
std::span<const LightRow> lightRows();

/// The lights on the picture: adding them, the list, and the numbers of the selected one.
class RelightSection final : public QWidget {
    Q_OBJECT

public:
    explicit RelightSection(AppModel& model, QWidget* parent = nullptr);

private:
    struct Bound {
        const LightRow& row;
        ModelSlider* slider;
    };
    QLayout* makeAddButtons();
    QWidget* makeDetails();
    QLayout* makeLastButtons();
    ModelSlider* lightBinding(const LightRow& row);
    void refresh();
    void showList();
    void showSelected();

    AppModel& m_model;
    QLabel* m_hint;
    RowList* m_list;
    QWidget* m_details; ///< of the selected light
    std::vector<Bound> m_sliders;
    Toggle* m_invert = nullptr;
    PanelButton* m_place = nullptr;
    PanelButton* m_clear = nullptr;
    FieldWatch m_watch;
};

} // namespace orvane
