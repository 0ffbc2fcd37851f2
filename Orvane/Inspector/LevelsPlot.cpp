#include "LevelsPlot.h"

#include "DevicePixels.h"
#include "HistogramDrawing.h"
#include "PlotHandle.h"
#include "Theme.h"

#include <QMouseEvent>
#include <QPainterPath>

namespace orvane {

namespace {

constexpr int side = 9; ///< beside the plot: the half of a stop with its focus ring
constexpr int plotHeight = 96;
constexpr int stopsHeight = 18; ///< the strip under the plot
constexpr double stopWidth = 12;
constexpr double stopHeight = 11;
constexpr double reach = 12;

struct Look {
    QColor fill;
    QColor outline;
};
Look look(LevelsStops::Stop stop)
{
    switch (stop) {
    case LevelsStops::Stop::Black:
        return {{0x0c, 0x0c, 0x0c}, {0x90, 0x90, 0x90}};
    case LevelsStops::Stop::Gamma:
        return {{0x80, 0x80, 0x80}, {0xb0, 0xb0, 0xb0}};
    case LevelsStops::Stop::White:
        break;
    }
    return {{0xec, 0xec, 0xec}, {0xec, 0xec, 0xec}};
}

} // namespace

LevelsPlot::LevelsPlot(QWidget* parent)
    : QWidget(parent)
{
    setFixedHeight(sizeHint().height());
    setMouseTracking(true);
    for (const Stop stop : LevelsStops::all) {
        auto* made = new PlotHandle(this);
        m_handles[size_t(stop)] = made;
        connect(made, &PlotHandle::stepped, this, [this, stop](const QPoint& steps) {
            // Up is brighter: towards a higher gamma, whose stop stands further left.
            const int up = stop == Stop::Gamma ? -steps.y() : steps.y();
            write(stop, LevelsStops::stepped(m_levels, stop, steps.x() + up));
        });
        connect(made, &PlotHandle::focusChanged, this, [this] { update(); });
    }
    placeHandles();
}

QSize LevelsPlot::sizeHint() const
{
    return {288, plotHeight + stopsHeight};
}

QRectF LevelsPlot::plot() const
{
    return {side, 0, width() - 2.0 * side, plotHeight};
}

QPointF LevelsPlot::stopCentre(Stop stop) const
{
    const QRectF frame = plot();
    return {frame.left() + LevelsStops::position(m_levels, stop, frame.width()),
            frame.bottom() + stopHeight / 2 + 1};
}

void LevelsPlot::setLevels(const Levels& levels)
{
    if (levels == m_levels)
        return;
    m_levels = levels;
    placeHandles();
    update();
}

void LevelsPlot::setHistogram(const Histogram& histogram)
{
    if (histogram == m_histogram)
        return;
    m_histogram = histogram;
    update();
}

void LevelsPlot::write(Stop stop, double value)
{
    if (value == LevelsStops::value(m_levels, stop))
        return;
    Levels changed = m_levels;
    (stop == Stop::Black       ? changed.blackIn
         : stop == Stop::White ? changed.whiteIn
                               : changed.gamma) = value;
    setLevels(changed);
    Q_EMIT edited(LevelsStops::key(stop), value);
}

void LevelsPlot::placeHandles()
{
    const QString values[] = {QString::number(std::lround(m_levels.blackIn)),
                              QString::number(m_levels.gamma / 100, 'f', 2),
                              QString::number(std::lround(m_levels.whiteIn))};
    const QString names[] = {tr("Black input level"), tr("Gamma"), tr("White input level")};
    for (const Stop stop : LevelsStops::all) {
        handle(stop).place(stopCentre(stop));
        handle(stop).describe(names[size_t(stop)], values[size_t(stop)]);
    }
}

void LevelsPlot::resizeEvent(QResizeEvent*)
{
    placeHandles();
}

std::optional<LevelsStops::Stop> LevelsPlot::stopNear(double x) const
{
    std::optional<Stop> nearest;
    double least = reach;
    for (const Stop stop : LevelsStops::all) {
        const double away = x - stopCentre(stop).x();
        // Of stops in one place, the one on the pointer's side is the one that can move.
        const bool mayWin = std::abs(away) < least
            || (std::abs(away) == least && nearest && stop == Stop::White && away >= 0);
        if (mayWin) {
            least = std::abs(away);
            nearest = stop;
        }
    }
    return nearest;
}

void LevelsPlot::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragging = stopNear(event->position().x());
    if (!m_dragging)
        return;
    m_grab = event->position().x() - stopCentre(*m_dragging).x();
    handle(*m_dragging).setFocus(Qt::MouseFocusReason);
    update();
    Q_EMIT editingChanged(true);
}

void LevelsPlot::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_dragging) {
        setHovered(stopNear(event->position().x()));
        return;
    }
    const QRectF frame = plot();
    const double x = event->position().x() - m_grab - frame.left();
    write(*m_dragging, LevelsStops::dragged(m_levels, *m_dragging, x, frame.width()));
}

void LevelsPlot::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        endDrag();
}

void LevelsPlot::endDrag()
{
    if (!m_dragging)
        return;
    m_dragging.reset();
    update();
    Q_EMIT editingChanged(false);
}

void LevelsPlot::hideEvent(QHideEvent*)
{
    endDrag(); // no release will come
}

void LevelsPlot::leaveEvent(QEvent*)
{
    if (!m_dragging)
        setHovered({});
}

void LevelsPlot::setHovered(std::optional<Stop> stop)
{
    if (m_hovered == stop)
        return;
    m_hovered = stop;
    setCursor(stop ? Qt::SizeHorCursor : Qt::ArrowCursor);
    update();
}

void LevelsPlot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRectF frame = DevicePixels::aligned(painter, plot());
    painter.fillRect(frame, Theme::field);
    drawHistogram(painter, frame, m_histogram, 0.42);
    for (const Stop stop : LevelsStops::all)
        DevicePixels::verticalLine(painter, stopCentre(stop).x(), frame.top(), frame.bottom(),
                                   QColor(0xd4, 0xd4, 0xd4, m_dragging == stop ? 160 : 70));
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Stop stop : {Stop::Gamma, Stop::Black, Stop::White})
        paintStop(painter, stop);
}

void LevelsPlot::paintStop(QPainter& painter, Stop stop) const
{
    const QPointF tip(stopCentre(stop).x(), plot().bottom() + 1);
    const QPointF foot(stopWidth / 2, stopHeight);
    QPainterPath triangle(tip);
    triangle.lineTo(tip + foot);
    triangle.lineTo(tip + QPointF(-foot.x(), foot.y()));
    triangle.closeSubpath();
    if (handle(stop).hasFocus()) {
        painter.setPen(QPen(Theme::accent, 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(triangle);
    }
    const Look shown = look(stop);
    const bool isLit = m_dragging == stop || (!m_dragging && m_hovered == stop);
    painter.setPen(
        QPen(isLit ? Theme::text : shown.outline, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(shown.fill);
    painter.drawPath(triangle);
    painter.setBrush(Qt::NoBrush);
}

} // namespace orvane
