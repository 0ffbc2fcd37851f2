#pragma once

#include "FieldWatch.h"

#include <QWidget>

class QToolButton;

namespace orvane {

class AppModel;
class ProgressLine;

/// Exports every open image to one folder; meanwhile it says how far that has come, and stops it.
class ExportAllControl final : public QWidget {
    Q_OBJECT

public:
    explicit ExportAllControl(AppModel& model, QWidget* parent = nullptr);

private:
    void refresh();

    AppModel& m_model;
    QToolButton* m_export;
    ProgressLine* m_progress;
    QToolButton* m_cancel;
    FieldWatch m_watch;
};

} // namespace orvane
