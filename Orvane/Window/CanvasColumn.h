#pragma once

#include "FieldWatch.h"
#include "PictureOpener.h"

#include <QWidget>

class QStackedWidget;
class QThreadPool;

namespace orvane {

class CIPreviewView;
class CommandActions;
class DropFrame;
class EmptyPage;
class Toolbar;

/// The middle of the window: toolbar, the picture or what to do without one, and the bar of the
/// open set. Files and pictures that are dropped here are opened.
class CanvasColumn final : public QWidget {
    Q_OBJECT

public:
    CanvasColumn(AppModel& model, const CommandActions& commands, PictureOpener& opener,
                 QThreadPool& pool, QWidget* parent = nullptr);

    CIPreviewView& canvas() { return *m_canvas; }
    /// Gives the keys to the picture, or to what opens one.
    void takeFocus();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void refresh();
    void showPage(QWidget* page);
    void add(const PictureOpener::Files& files);
    void setDropTargeted(bool isTargeted);

    AppModel& m_model;
    PictureOpener& m_opener;
    CIPreviewView* m_canvas;
    EmptyPage* m_empty;
    QStackedWidget* m_stack;
    Toolbar* m_toolbar;
    DropFrame* m_dropFrame;
    FieldWatch m_watch;
};

} // namespace orvane
