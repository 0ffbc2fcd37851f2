#pragma once

#include <QMainWindow>

class QThreadPool;

namespace orvane {

class AppModel;
class CIPreviewView;

/// The one window: it composes the rooms and holds no edit.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(AppModel& model, QThreadPool& pool);
    ~MainWindow() override;

private:
    AppModel& m_model;
    CIPreviewView* m_canvas;
};

} // namespace orvane
