#include "MainWindow.h"

#include "AppModel.h"
#include "CIPreviewView.h"

namespace orvane {

MainWindow::MainWindow(AppModel& model, QThreadPool& pool)
    : m_model(model)
    , m_canvas(new CIPreviewView(model, pool))
{
    setWindowTitle("Orvane");
    setCentralWidget(m_canvas);
    resize(1280, 800);
}

MainWindow::~MainWindow() = default;

} // namespace orvane
