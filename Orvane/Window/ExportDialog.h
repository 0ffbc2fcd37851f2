#pragma once

#include "BakeChain.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;

namespace orvane {

class SliderRow;

/// How a finished file is to be written. It begins with the options given, and its own are theirs
/// after the choices made.
class ExportDialog final : public QDialog {
    Q_OBJECT

public:
    ExportDialog(const ExportOptions& options, QWidget* parent);

    ExportOptions options() const;

private:
    void showWhatApplies();

    QFormLayout* m_form = nullptr;
    QComboBox* m_format;
    SliderRow* m_quality;
    QCheckBox* m_sixteenBit;
    QLabel* m_losslessHint;
    QComboBox* m_metadata;
    QComboBox* m_size;
};

} // namespace orvane
