#pragma once

#include <QLineEdit>
#include <QSlider>

class QLabel;

namespace orvane {

/// A slider over tenths of its unit. Arrow keys step by one unit and with Shift by a tenth; a
/// double click asks for the rest value; the wheel turns it only while it has the focus, and
/// otherwise scrolls the panel that it lies in.
class DoubleClickSlider final : public QSlider {
    Q_OBJECT

public:
    DoubleClickSlider(double minimum, double maximum, double origin, QWidget* parent = nullptr);

    double number() const { return value() / 10.0; }
    void setNumber(double number);
    QSize sizeHint() const override;

Q_SIGNALS:
    void resetAsked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    double knobCentre() const { return centreOf(value()); }
    double centreOf(int tenths) const;
    int valueAt(double x) const;

    int m_origin; ///< tenths; the track is filled from here
    double m_grab = 0; ///< from the knob's centre to where it was taken
};

/// A row of a panel: label, slider, and the value as a field that takes a typed number.
class SliderRow final : public QWidget {
    Q_OBJECT

public:
    struct Range {
        double minimum = 0;
        double maximum = 0;
        double rest = 0;
        bool resets = true; ///< to the rest value, by a double click on the knob
    };
    SliderRow(const QString& label, const Range& range, QWidget* parent = nullptr);

    double value() const { return m_value; }
    /// Held to the range. Told by valueChanged, when it differs.
    void setValue(double value);
    /// For a form that has labels of its own.
    void hideLabel();
    DoubleClickSlider& slider() { return *m_slider; }
    QLineEdit& field() { return *m_field; }

Q_SIGNALS:
    void valueChanged(double value);

private:
    void takeTyped();
    void showNumber();

    Range m_range;
    double m_value;
    QLabel* m_label;
    DoubleClickSlider* m_slider;
    QLineEdit* m_field;
};

} // namespace orvane
