#pragma once

#include "AppModelFields.h"
#include "LevelsStops.h"

#include <QWidget>

#include <optional>

namespace orvane {

class PlotHandle;

/// The histogram with the three input stops under it. By keyboard: Tab goes from stop to stop,
/// arrows move one by 1 in its own scale, with Shift by 10.
class LevelsPlot final : public QWidget {
    Q_OBJECT

public:
    using Levels = EditState::Levels;
    explicit LevelsPlot(QWidget* parent = nullptr);

    const Levels& levels() const { return m_levels; }
    void setLevels(const Levels& levels);
    void setHistogram(const Histogram& histogram);

    /// Where the histogram lies; the stops' tips touch its lower edge.
    QRectF plot() const;
    /// A stop's middle, which the mouse and the focus go by.
    QPointF stopCentre(LevelsStops::Stop stop) const;
    QSize sizeHint() const override;

Q_SIGNALS:
    void edited(const QString& key, double value);
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
    using Stop = LevelsStops::Stop;
    PlotHandle& handle(Stop stop) const { return *m_handles[size_t(stop)]; }
    std::optional<Stop> stopNear(double x) const;
    void write(Stop stop, double value);
    void placeHandles();
    void endDrag();
    void setHovered(std::optional<Stop> stop);
    void paintStop(QPainter& painter, Stop stop) const;

    Levels m_levels;
    Histogram m_histogram;
    std::array<PlotHandle*, LevelsStops::all.size()> m_handles{};
    std::optional<Stop> m_dragging;
    std::optional<Stop> m_hovered;
    double m_grab = 0; ///< from the held stop to where it was taken
};

} // namespace orvane
