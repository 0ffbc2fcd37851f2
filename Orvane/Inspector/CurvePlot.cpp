#include "CurvePlot.h"

#include "PlotHandle.h"

#include <QMouseEvent>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr int room = 9; ///< around the plot: the half of a point with its focus ring

} // namespace

CurvePlot::CurvePlot(QWidget* parent)
    : QWidget(parent)
{
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setMinimumSize(120, 120);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    syncHandles();
}

QRectF CurvePlot::plot() const
{
    const int side = std::min(width(), height()) - 2 * room;
    return {(width() - side) / 2.0, room, double(side), double(side)};
}

void CurvePlot::setPoints(CurveEditing::Points points)
{
    if (points.size() < 2)
        points = CurveEditing::identity();
    std::stable_sort(points.begin(), points.end(),
                     [](const auto& a, const auto& b) { return a.x < b.x; });
    if (points == m_points)
        return;
    if (points.size() != m_points.size()) {
        endDrag();
        m_hovered.reset();
    }
    m_points = std::move(points);
    syncHandles();
    select(std::min(m_selected, m_points.size() - 1));
}

void CurvePlot::setTint(const QColor& tint)
{
    m_tint = tint;
    update();
}

void CurvePlot::select(size_t index)
{
    const bool changes = index != m_selected;
    m_selected = index;
    update();
    if (changes)
        Q_EMIT selectionChanged(index);
}

void CurvePlot::movePoint(size_t index, const CurveEditing::Point& to)
{
    const CurveEditing::Points before = m_points;
    CurveEditing::move(m_points, index, to);
    if (m_points != before)
        tellEdit();
}

void CurvePlot::removePoint(size_t index)
{
    if (!CurveEditing::isInterior(m_points, index))
        return;
    m_points.erase(m_points.begin() + std::ptrdiff_t(index));
    m_hovered.reset();
    syncHandles();
    m_handles[index - 1]->setFocus();
    select(index - 1);
    tellEdit();
}

void CurvePlot::tellEdit()
{
    syncHandles();
    update();
    Q_EMIT pointsEdited(CurveEditing::Points(m_points));
}

void CurvePlot::addHandle()
{
    auto* handle = new PlotHandle(this);
    const size_t index = m_handles.size();
    // A new child comes last in the window's order; its place is behind the point before it.
    if (index > 0)
        setTabOrder(m_handles.back(), handle);
    m_handles.push_back(handle);
    handle->show();
    connect(handle, &PlotHandle::stepped, this, [this, index](const QPoint& steps) {
        const CurveEditing::Point point = m_points[index];
        movePoint(index, {point.x + steps.x(), point.y + steps.y()});
    });
    connect(handle, &PlotHandle::removeAsked, this, [this, index] { removePoint(index); });
    connect(handle, &PlotHandle::focusChanged, this, [this, index](bool has) {
        if (has && index < m_points.size())
            select(index);
        update();
    });
}

void CurvePlot::syncHandles()
{
    while (m_handles.size() < m_points.size())
        addHandle();
    while (m_handles.size() > m_points.size()) {
        m_handles.back()->hide();
        m_handles.back()->deleteLater(); // it may be the sender of the key that is being handled
        m_handles.pop_back();
    }
    const QRectF frame = plot();
    for (size_t i = 0; i < m_points.size(); ++i) {
        m_handles[i]->place(frame.topLeft()
                            + CurveEditing::plotPosition(m_points[i], frame.width()));
        m_handles[i]->describe(tr("Point %1 of %2").arg(i + 1).arg(m_points.size()),
                               tr("Input %1, output %2")
                                   .arg(std::lround(m_points[i].x))
                                   .arg(std::lround(m_points[i].y)));
    }
}

void CurvePlot::resizeEvent(QResizeEvent*)
{
    syncHandles();
}

void CurvePlot::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPointF position = inPlot(event->position());
    const double side = plot().width();
    Q_EMIT editingChanged(true);
    size_t held = 0;
    if (const auto near = CurveEditing::pointNear(m_points, position, side)) {
        held = *near;
        m_grab = position - CurveEditing::plotPosition(m_points[held], side);
    } else {
        held = CurveEditing::insert(m_points, CurveEditing::pointAt(position, side));
        m_grab = {};
        tellEdit();
    }
    m_dragging = held;
    setHovered(held);
    m_handles[held]->setFocus(Qt::MouseFocusReason);
    select(held);
}

void CurvePlot::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF position = inPlot(event->position());
    const double side = plot().width();
    if (!m_dragging) {
        setHovered(CurveEditing::pointNear(m_points, position, side));
        return;
    }
    m_isThrowing = CurveEditing::isInterior(m_points, *m_dragging)
        && CurveEditing::isThrownAway(position, side);
    update();
    movePoint(*m_dragging, CurveEditing::pointAt(position - m_grab, side));
}

void CurvePlot::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_dragging)
        return;
    if (CurveEditing::isThrownAway(inPlot(event->position()), plot().width()))
        removePoint(*m_dragging);
    endDrag();
}

void CurvePlot::endDrag()
{
    if (!m_dragging)
        return;
    m_dragging.reset();
    m_isThrowing = false;
    update();
    Q_EMIT editingChanged(false);
}

void CurvePlot::hideEvent(QHideEvent*)
{
    endDrag(); // no release will come
}

void CurvePlot::leaveEvent(QEvent*)
{
    if (!m_dragging)
        setHovered({});
}

void CurvePlot::setHovered(std::optional<size_t> index)
{
    if (m_hovered == index)
        return;
    m_hovered = index;
    setCursor(index ? Qt::PointingHandCursor : Qt::CrossCursor);
    update();
}

} // namespace orvane
