#pragma once

#include "CommandActions.h"
#include "FieldWatch.h"
#include "OrvaneDelegate.h"
#include "Shell.h"
#include "UserDefaults.h"
#include "WindowFrame.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>

class QSplitter;
class QThreadPool;

namespace orvane {

class CanvasColumn;
class CIPreviewView;
class NativeInspector;
class SourceSidebar;

/// The one window: it composes the rooms and holds no edit.
///
///   menu bar
///   sidebar | toolbar               | inspector
///           | picture               |
///           | bar of the open set   |
class MainWindow final : public QMainWindow, public Shell {
    Q_OBJECT

public:
    MainWindow(AppModel& model, Desktop& desktop, OrvaneDelegate& delegate, PictureOpener& opener,
               QThreadPool& pool);
    ~MainWindow() override;

    CommandActions& commands() { return *m_commands; }
    CIPreviewView& canvas();

    bool isInspectorShown() const override;
    void showInspector(bool shown) override;
    bool isSidebarShown() const override;
    void showSidebar(bool shown) override;
    bool isFullScreen() const override { return QMainWindow::isFullScreen(); }
    void showFullScreen(bool full) override;
    void openHelp() override;
    void openSettings() override;
    void closeWindow() override { close(); }

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void focusTool();
    int widthWithoutSidebar() const; ///< the narrowest that holds the other columns
    int widthWithSidebar() const;
    /// The sidebar gives way in a narrow window, and comes back in a wide one.
    void fitColumns();

    OrvaneDelegate& m_delegate;
    CommandActions* m_commands;
    QSplitter* m_splitter;
    SourceSidebar* m_sidebar;
    bool m_isSidebarWanted = true; ///< shown wherever there is room
    CanvasColumn* m_column;
    NativeInspector* m_inspector;
    QPointer<QWidget> m_help;
    QPointer<QWidget> m_settings;
    UserDefaults m_defaults;
    std::unique_ptr<WindowFrame> m_frame;
    FieldWatch m_toolWatch;
};

} // namespace orvane
