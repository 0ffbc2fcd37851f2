#pragma once

#include "AppModel.h"
#include "FieldWatch.h"
#include "OneStep.h"

#include <QWidget>

#include <vector>

class QLabel;
class QPlainTextEdit;
class QVBoxLayout;

namespace orvane {

class ColorWell;
class FontPicker;
class GlyphButton;
class ModelSlider;
class RowList;
class Toggle;

/// The captions over the picture: adding them, the list, and what makes up the selected one.
class TextSection final : public QWidget {
    Q_OBJECT

public:
    explicit TextSection(AppModel& model, QWidget* parent = nullptr);

private:
    QWidget* makeDetails();
    QWidget* makeText();
    void addSliders(QVBoxLayout& column);
    QWidget* makeLayerRow();
    void refresh();
    void showList();
    void showSelected();
    const AppModel::TextLayer* selected() const;

    AppModel& m_model;
    RowList* m_list;
    QPlainTextEdit* m_text = nullptr;
    FontPicker* m_font = nullptr;
    std::vector<ModelSlider*> m_sliders;
    ColorWell* m_color = nullptr;
    Toggle* m_shadow = nullptr;
    QLabel* m_place = nullptr; ///< "2 of 3"
    GlyphButton* m_backward = nullptr;
    GlyphButton* m_forward = nullptr;
    OneStep m_step; ///< of the colour and the font
    QWidget* m_details; ///< of the selected layer
    bool m_isShowing = false; ///< the field is being set, not typed into
    FieldWatch m_watch;
};

} // namespace orvane
