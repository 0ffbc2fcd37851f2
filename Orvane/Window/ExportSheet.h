#pragma once

#include "FieldWatch.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;

namespace orvane {

class AppModel;
class DoubleClickSlider;
class SegmentedPicker;
class ValueField;

/// How the active image is exported. It opens and closes with the model's `exportSheetShown`, and
/// holds the window below meanwhile; the choices are the model's, and stay there.
class ExportSheet final : public QDialog {
    Q_OBJECT

public:
    ExportSheet(AppModel& model, QWidget* parent);

    void reject() override;

private:
    QWidget* choices();
    QWidget* buttons();
    QWidget* qualityRow();
    void connectControls();
    /// Opens or closes it, and shows the model's choices.
    void followModel();
    void showChoices();
    /// "5472 × 3648 px": of the file that these choices make; empty without a picture.
    QString pixelSize() const;
    /// Closes it first, so that it lies under no panel that `act` opens.
    void closeAnd(void (AppModel::*act)());

    AppModel& m_model;
    SegmentedPicker* m_format;
    SegmentedPicker* m_metadata;
    SegmentedPicker* m_size;
    DoubleClickSlider* m_quality;
    ValueField* m_qualityField;
    QWidget* m_qualityRow;
    QCheckBox* m_png16;
    QLabel* m_png16Note;
    QLabel* m_lossless;
    QLabel* m_pixels;
    QPushButton* m_share;
    QPushButton* m_export;
    FieldWatch m_watch;
};

} // namespace orvane
