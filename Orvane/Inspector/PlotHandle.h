#pragma once

#include <QPoint>
#include <QWidget>

namespace orvane {

/// The keyboard's and the screen reader's side of a point in a plot: a child that takes the focus
/// and has a name. The plot paints the point itself and keeps the mouse.
class PlotHandle final : public QWidget {
    Q_OBJECT

public:
    explicit PlotHandle(QWidget* plot);

    /// What a screen reader says of it.
    void describe(const QString& name, const QString& value);
    /// Around a place of the plot.
    void place(const QPointF& position);

    static constexpr int extent = 24; ///< across

Q_SIGNALS:
    /// An arrow key: right and up are above 0; tens with Shift.
    void stepped(const QPoint& steps);
    void removeAsked();
    void focusChanged(bool has);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace orvane
