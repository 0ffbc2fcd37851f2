#pragma once

#include "FieldWatch.h"

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QToolButton;

namespace orvane {

class AppModel;
class CIPreviewView;
class CommandActions;

/// The row over the canvas: the commands that are used most, what is on the canvas, and at which
/// size it is seen.
class Toolbar final : public QWidget {
    Q_OBJECT

public:
    Toolbar(AppModel& model, const CommandActions& commands, const CIPreviewView& canvas,
            QWidget* parent = nullptr);

    static constexpr int barHeight = 40;
    /// What is said of the picture in the background, in place of its name; empty for nothing.
    void setNote(const QString& note);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void addButtons(QHBoxLayout& row, std::initializer_list<const char*> ids);
    void refresh();
    void showInfo();
    void showZoom();
    void zoomOrFit();

    AppModel& m_model;
    const CommandActions& m_commands;
    const CIPreviewView& m_canvas;
    QLabel* m_info;
    QToolButton* m_zoom;
    QString m_note;
    QString m_infoText; ///< not yet shortened to the room there is
    FieldWatch m_watch;
};

} // namespace orvane
