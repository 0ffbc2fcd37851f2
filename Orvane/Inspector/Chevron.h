#pragma once

#include <QAbstractButton>

class QPainter;

namespace orvane {

/// An angle that points right, turned clockwise by degrees.
void drawChevron(QPainter& painter, const QPointF& centre, double degrees, const QColor& color);

/// A small bare button that goes back or on.
class ChevronButton final : public QAbstractButton {
public:
    enum class Direction { Left, Right };
    /// `help` is also its name for screen readers.
    ChevronButton(Direction direction, const QString& help, QWidget* parent = nullptr);
    QSize sizeHint() const override { return {24, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Direction m_direction;
};

} // namespace orvane
