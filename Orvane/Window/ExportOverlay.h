#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace orvane {

/// Lies over the canvas while a file is being written: dims it, says so and offers to stop, by
/// button or Escape.
class ExportOverlay final : public QWidget {
    Q_OBJECT

public:
    /// Covers `canvas` and follows its size. Hidden at first.
    explicit ExportOverlay(QWidget* canvas);

    void begin();
    /// Gives the focus back to the canvas if it lies here.
    void end();

Q_SIGNALS:
    void cancelled();

protected:
    bool eventFilter(QObject* canvas, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void cancel();

    QLabel* m_label;
    QPushButton* m_cancel;
};

} // namespace orvane
