#pragma once

#include "WindowPlace.h"

#include <QMainWindow>
#include <QPointer>
#include <QSettings>
#include <QSplitter>
#include <QTimer>

namespace orvane {

/// Puts the window and its columns where they were in the last run, in sight, and keeps them in the
/// user defaults from then on: "kq4.window.frame" and "kq4.sidebar". Made before the window is
/// shown; all three outlive it or go before any event.
class WindowFrame final : public QObject {
    Q_OBJECT

public:
    WindowFrame(QMainWindow& window, QSplitter& columns, QSettings& defaults);

protected:
    bool eventFilter(QObject* window, QEvent* event) override;

private:
    void restore();
    void save();
    QList<int> columnWidths() const;

    QPointer<QMainWindow> m_window;
    QPointer<QSplitter> m_columns;
    QSettings& m_defaults;
    QTimer m_saving; ///< a drag of the edge is one save
};

} // namespace orvane
