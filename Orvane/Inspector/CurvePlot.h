#pragma once

#include "CurveEditing.h"

#include <QColor>
#include <QWidget>

namespace orvane {

class PlotHandle;

/// The square in which one tone curve is bent. A press takes the point there or adds one, and
/// letting go well outside throws an interior point away. By keyboard: Tab goes from point to
/// point, arrows move by one level, with Shift by ten, Delete removes.
class CurvePlot final : public QWidget {
    Q_OBJECT

public:
    explicit CurvePlot(QWidget* parent = nullptr);

    const CurveEditing::Points& points() const { return m_points; }
    /// Shows other points, without a signal. A point that is being dragged stays in the hand unless
    /// their number differs.
    void setPoints(CurveEditing::Points points);
    void setTint(const QColor& tint);

    size_t selected() const { return m_selected; }
    void select(size_t index);
    /// As far as a hand could move it; told by pointsEdited.
    void movePoint(size_t index, const CurveEditing::Point& to);

    /// Within the widget, with room around it for the points at its corners.
    QRectF plot() const;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return width; }
    QSize sizeHint() const override { return {288, 288}; }

Q_SIGNALS:
    void pointsEdited(const CurveEditing::Points& points);
    void selectionChanged(size_t index);
    /// A drag from press to release.
    void editingChanged(bool isEditing);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void addHandle();
    void syncHandles();
    void setHovered(std::optional<size_t> index);
    void removePoint(size_t index);
    void tellEdit();
    void endDrag();
    QPointF inPlot(const QPointF& position) const { return position - plot().topLeft(); }
    void paintGrid(QPainter& painter, const QRectF& frame) const;
    void paintPoints(QPainter& painter, const QRectF& frame) const;

    CurveEditing::Points m_points = CurveEditing::identity();
    QColor m_tint;
    size_t m_selected = 0;
    std::optional<size_t> m_dragging;
    std::optional<size_t> m_hovered;
    QPointF m_grab; ///< from the held point to where it was taken
    bool m_isThrowing = false; ///< letting go now would remove the held point
    std::vector<PlotHandle*> m_handles; ///< one for each point
};

} // namespace orvane
