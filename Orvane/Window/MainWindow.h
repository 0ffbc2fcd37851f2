#pragma once

#include "AdjustPanel.h"
#include "CIPreviewView.h"
#include "Exporter.h"
#include "Panels.h"
#include "PictureOpening.h"

#include <QMainWindow>

class QAction;
class QLabel;
class QStackedWidget;

namespace orvane {

class ExportOverlay;

/// The one window: it composes the canvas, the panel and the menus around one picture and its edit.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    /// Both must outlive the window; the pool is emptied after it is closed, before it goes.
    MainWindow(QThreadPool& pool, Panels& panels);
    ~MainWindow() override;

    /// Opens the first of the files that can be read; one that is given later wins over an earlier
    /// one that is still being decoded. What cannot be read is told.
    void open(const QStringList& files);
    /// The same for files that are being decoded already.
    void adopt(const QFuture<PictureOpening>& opening,
               const std::vector<std::filesystem::path>& paths);
    /// Cancels what runs in the background.
    void stopWork();

    CIPreviewView& canvas() { return *m_canvas; }
    AdjustPanel& panel() { return *m_panel; }

Q_SIGNALS:
    void firstPicturePainted();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    struct ActionRow;
    /// What an export command was given for: the picture in the window may be another by the time
    /// that the dialogs are answered.
    struct ExportCommand {
        OpenedPicture picture;
        EditState state;
        int version; ///< of the picture
    };
    /// When a command can be given.
    enum class When { Always, WithPicture, WhenExportable };

    void makeActions();
    void layOut();
    void updateActions();
    void closeWindow();
    void zoomIn();
    void zoomOut();
    void zoomToFit();
    void zoomToActualSize();

    void openByPanel();
    void openFiles(const std::vector<std::filesystem::path>& paths);
    void take(const PictureOpening& opening);
    /// Asks, when there is an edit that would be lost with its picture.
    bool mayDropEdit();
    void tellFailures(const PictureOpening& opening);
    void setAdjust(const std::string& key, double value);
    void toggleComparing();
    void setComparing(bool comparing);
    void refreshCanvas();
    void showStatus();

    void askExport();
    void exportImage(const ExportCommand& command);
    void exportEnded(const Exporter::End& end);
    void tellExportFailure(const std::string& name, const std::string& failure);

    QThreadPool& m_pool;
    Panels& m_panels;
    CIPreviewView* m_canvas;
    AdjustPanel* m_panel;
    QStackedWidget* m_column = nullptr;
    QWidget* m_emptyPage = nullptr;
    QLabel* m_noteLabel = nullptr;
    QLabel* m_zoomLabel = nullptr;
    ExportOverlay* m_overlay = nullptr;
    std::vector<std::pair<QAction*, When>> m_actions;
    Exporter m_exporter;

    std::optional<OpenedPicture> m_picture;
    EditState m_state;
    EditState m_keptState; ///< as last exported
    int m_sourceVersion = 0;
    bool m_comparing = false;
    QAction* m_compareAction = nullptr;
    QString m_openingText; ///< while a picture is being decoded
    int m_openingNumber = 0; ///< of the newest opening: the results of older ones are dropped
    ExportOptions m_exportOptions;
    std::string m_exportName; ///< the suggested name of the export in flight
    std::optional<ExportCommand> m_exporting;
};

} // namespace orvane
