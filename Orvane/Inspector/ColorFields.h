#pragma once

#include <QAbstractSlider>
#include <QColor>
#include <QWidget>

namespace orvane {

/// A colour taken apart as the picker shows it. Kept beside the colour itself, because a grey has
/// no hue and a black no saturation, and the picker must not forget them on the way through.
struct HsvColor {
    double hue = 0; ///< 0..1, red at both ends
    double saturation = 0; ///< 0..1
    double brightness = 0; ///< 0..1

    /// Of whole bytes.
    QColor color() const;
    /// Takes the colour over, and keeps the hue or saturation that it leaves open.
    void take(const QColor& color);
};

/// Every shade of one hue: grey to full colour from left to right, black to bright from bottom to
/// top. The arrow keys move by a twentieth, with Shift by a hundredth.
class ShadeField final : public QWidget {
    Q_OBJECT

public:
    explicit ShadeField(QWidget* parent = nullptr);
    /// Without a signal.
    void show(const HsvColor& color);

Q_SIGNALS:
    void moved(double saturation, double brightness);
    /// The hand let go.
    void released();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QRectF field() const;
    void moveTo(const QPointF& point);
    void moveBy(double saturation, double brightness);
    void describe();

    HsvColor m_color;
};

/// All hues in a bar, in degrees. The arrow keys move by 5 degrees, with Shift by one.
class HueBar final : public QAbstractSlider {
    Q_OBJECT

public:
    explicit HueBar(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void moveTo(double x);
};

} // namespace orvane
