#include "MainWindow.h"

#include "AppModel.h"
#include "CIPreviewView.h"
#include "CanvasColumn.h"
#include "Commands.h"
#include "ExportSheet.h"
#include "HelpWindow.h"
#include "NativeInspector.h"
#include "SettingsWindow.h"
#include "SourceSidebar.h"
#include "WindowFrame.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QSplitter>
#include <QTimer>

namespace orvane {

namespace {

constexpr QSize openingSize(1280, 800);

/// Shows a window of which there is one at most.
template <class Make> void present(QPointer<QWidget>& window, const Make& make)
{
    if (!window) {
        window = make();
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

MainWindow::MainWindow(AppModel& ofModel, Desktop& ofDesktop, OrvaneDelegate& delegate,
                       PictureOpener& opener, QThreadPool& pool)
    : Shell(ofModel, ofDesktop)
    , m_delegate(delegate)
    , m_commands(new CommandActions(*this, *this))
    , m_splitter(new QSplitter)
    , m_sidebar(new SourceSidebar)
    , m_column(new CanvasColumn(ofModel, *m_commands, opener, pool))
    , m_inspector(new NativeInspector(ofModel))
    , m_toolWatch([this] { focusTool(); })
{
    setWindowTitle("Orvane");
    m_splitter->addWidget(m_sidebar);
    m_splitter->addWidget(m_column);
    m_splitter->addWidget(m_inspector);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setCollapsible(1, false);
    m_splitter->setCollapsible(2, false);
    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    setCentralWidget(m_splitter);
    m_commands->fill(*menuBar());
    new ExportSheet(ofModel, this);

    connect(m_sidebar, &SourceSidebar::connectAsked, this, [this] { model.importFromPhotos(); });
    m_toolWatch.watch(model.cropMode, model.relightMode, model.healing, model.pickingWhite);
    resize(openingSize);
    fitColumns();
    m_column->takeFocus();
    m_frame = std::make_unique<WindowFrame>(*this, *m_splitter, m_defaults);
    m_commands->refresh();
}

MainWindow::~MainWindow() = default;

CIPreviewView& MainWindow::canvas()
{
    return m_column->canvas();
}

bool MainWindow::isInspectorShown() const
{
    return m_inspector && !m_inspector->isHidden();
}

void MainWindow::showInspector(bool shown)
{
    m_inspector->setVisible(shown);
    fitColumns();
}

bool MainWindow::isSidebarShown() const
{
    return m_sidebar && !m_sidebar->isHidden();
}

void MainWindow::showSidebar(bool shown)
{
    m_isSidebarWanted = shown;
    // Asked for where only one of the two has room: the inspector goes.
    if (shown && width() < widthWithSidebar()) {
        m_inspector->hide();
        resize(std::max(width(), widthWithSidebar()), height());
    }
    fitColumns();
}

int MainWindow::widthWithoutSidebar() const
{
    const int inspector = m_inspector->minimumWidth() + m_splitter->handleWidth();
    return m_column->minimumWidth() + (isInspectorShown() ? inspector : 0);
}

int MainWindow::widthWithSidebar() const
{
    return widthWithoutSidebar() + m_sidebar->minimumWidth() + m_splitter->handleWidth();
}

void MainWindow::fitColumns()
{
    setMinimumWidth(widthWithoutSidebar());
    m_sidebar->setVisible(m_isSidebarWanted && width() >= widthWithSidebar());
    m_commands->refresh();
}

void MainWindow::showFullScreen(bool full)
{
    setWindowState(full ? windowState() | Qt::WindowFullScreen
                        : windowState() & ~Qt::WindowFullScreen);
    m_commands->refresh();
}

void MainWindow::openHelp()
{
    present(m_help, [this] { return new HelpWindow(keysOf, this); });
}

void MainWindow::openSettings()
{
    present(m_settings, [this] { return new SettingsWindow(model, desktop, this); });
}

/// A tool that begins takes the keys, so that arrows, Enter and Escape reach it, and shows its part
/// of the panel.
void MainWindow::focusTool()
{
    if (model.cropMode)
        m_inspector->reveal("Crop");
    else if (model.relightMode)
        m_inspector->reveal("Relight");
    else if (model.healing)
        m_inspector->reveal("Retouch");
    const bool isToolOn =
        model.cropMode || model.relightMode || model.healing || model.pickingWhite;
    const QWidget* focused = QApplication::focusWidget();
    const bool isTyping = focused && focused->testAttribute(Qt::WA_InputMethodEnabled);
    if (isToolOn && !isTyping)
        canvas().setFocus(Qt::OtherFocusReason);
}

bool MainWindow::event(QEvent* event)
{
    // Once whoever asked has the answer.
    if (event->type() == QEvent::WindowUnblocked)
        QTimer::singleShot(0, &m_delegate, &OrvaneDelegate::flushOpens);
    return QMainWindow::event(event);
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    fitColumns();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    const bool mayClose = m_delegate.windowShouldClose();
    event->setAccepted(mayClose);
    if (!mayClose)
        return;
    for (QWidget* other : {m_help.data(), m_settings.data()}) {
        if (other)
            other->close();
    }
}

} // namespace orvane
