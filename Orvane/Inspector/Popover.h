#pragma once

#include <QFrame>

namespace orvane {

/// A small window with round corners that a control opens beside itself. A press outside closes it,
/// and does not press what lies under it, so that the control that opened it does not open it
/// again.
class Popover : public QFrame {
    Q_OBJECT

public:
    /// `name` is for screen readers.
    Popover(const QString& name, QWidget* parent);

    /// Under the widget, right edges in line, or over it where there is no room below; within the
    /// screen in any case. `first` takes the focus.
    void openBeside(const QWidget& anchor, QWidget& first);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace orvane
