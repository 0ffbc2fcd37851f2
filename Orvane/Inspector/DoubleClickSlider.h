#pragma once

#include <QWidget>

namespace orvane {

/// What a slider moves over.
struct SliderRange {
    double minimum = 0;
    double maximum = 0;
    double rest = 0; ///< the track is filled from here
    bool resets = true; ///< to the rest value, by a double click on the knob
    double step = 0; ///< of an arrow key; 0 means a hundredth of the range

    double keyStep() const { return step > 0 ? step : (maximum - minimum) / 100; }
};

/// A horizontal slider. Arrow keys step it, with Shift by a tenth of a step, the page keys by ten;
/// the wheel turns it only while it has the focus, and otherwise scrolls the panel that it lies in.
class DoubleClickSlider final : public QWidget {
    Q_OBJECT

public:
    explicit DoubleClickSlider(const SliderRange& range, QWidget* parent = nullptr);

    const SliderRange& range() const { return m_range; }
    double number() const { return m_number; }
    /// Held to the range. Tells nothing.
    void setNumber(double number);
    QSize sizeHint() const override;
    /// Where the knob stands, in the widget.
    QPointF knobCentre() const;
    /// As a key does; told when it moves.
    void stepBy(double steps);
    /// As a hand does; told when it differs.
    void moveTo(double number);

Q_SIGNALS:
    /// By the user.
    void numberChanged(double number);
    /// A press starts a drag, which lasts until it is let go.
    void pressChanged(bool isDown);
    /// A double click on the knob.
    void resetAsked();

protected:
    bool event(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    double centreOf(double number) const;
    double numberAt(double x) const;
    bool isOnKnob(const QPointF& position) const;
    void setDown(bool isDown);

    SliderRange m_range;
    double m_number;
    double m_grab = 0; ///< from the knob's centre to where it was taken
    double m_turned = 0; ///< of the wheel, less than a step
    bool m_isDown = false;
    bool m_tookKnob = true; ///< the last press was on the knob
};

} // namespace orvane
