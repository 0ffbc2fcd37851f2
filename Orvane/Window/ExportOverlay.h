#pragma once

#include "FieldWatch.h"

#include <QWidget>

class QPushButton;

namespace orvane {

class AppModel;
class ProgressLine;

/// Lies over the canvas while a picture is exported: dims it, says how far that is and offers to
/// stop, by button or Escape.
class ExportOverlay final : public QWidget {
    Q_OBJECT

public:
    /// Covers `canvas` and follows its size.
    ExportOverlay(AppModel& model, QWidget* canvas);

protected:
    bool eventFilter(QObject* canvas, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    void begin();
    /// Gives the focus back to the canvas if it lies here.
    void end();

    AppModel& m_model;
    ProgressLine* m_progress;
    FieldWatch m_watch;
};

} // namespace orvane
