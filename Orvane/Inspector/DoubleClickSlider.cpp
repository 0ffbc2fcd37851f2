#include "DoubleClickSlider.h"

#include "SpokenSlider.h"
#include "Theme.h"

#include <QHoverEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr int rowHeight = 26;
constexpr int trackHeight = 3;
constexpr int knobSize = 12;
constexpr int knobReach = 24; ///< what counts as on the knob, across
constexpr double notch = 120; ///< of a wheel, as Qt counts

/// What the mouse moves by: whole numbers where the range is wide enough, since less would only be
/// noise, and otherwise a power of ten of at most a hundredth of the range.
double mouseGrain(const SliderRange& range)
{
    const double width = range.maximum - range.minimum;
    return width >= 20 ? 1 : std::pow(10, std::floor(std::log10(width / 100)));
}

/// Steps that a key asks for; 0 for other keys.
double stepsOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return -1;
    case Qt::Key_Right:
    case Qt::Key_Up:
        return 1;
    case Qt::Key_PageDown:
        return -10;
    case Qt::Key_PageUp:
        return 10;
    default:
        return 0;
    }
}

} // namespace

DoubleClickSlider::DoubleClickSlider(const SliderRange& range, QWidget* parent)
    : QWidget(parent)
    , m_range(range)
    , m_number(range.rest)
{
    SpokenSlider::install();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setMinimumWidth(60);
    setFixedHeight(rowHeight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void DoubleClickSlider::setNumber(double number)
{
    const double held = std::clamp(number, m_range.minimum, m_range.maximum);
    if (held == m_number)
        return;
    m_number = held;
    update();
    SpokenSlider::tellChange(*this);
}

QSize DoubleClickSlider::sizeHint() const
{
    return {120, rowHeight};
}

void DoubleClickSlider::moveTo(double number)
{
    const double before = m_number;
    setNumber(number);
    if (m_number != before)
        Q_EMIT numberChanged(m_number);
}

void DoubleClickSlider::stepBy(double steps)
{
    // A sum of tenths is rounded, or the ends of the way would miss the numbers they started from.
    constexpr double digits = 1e6;
    moveTo(std::round((m_number + steps * m_range.keyStep()) * digits) / digits);
}

// ---- Places ----

double DoubleClickSlider::centreOf(double number) const
{
    const double length = width() - knobSize;
    const double fraction = (number - m_range.minimum) / (m_range.maximum - m_range.minimum);
    return knobSize / 2.0 + length * fraction;
}

QPointF DoubleClickSlider::knobCentre() const
{
    return {centreOf(m_number), height() / 2.0};
}

double DoubleClickSlider::numberAt(double x) const
{
    const double fraction = (x - knobSize / 2.0) / (width() - knobSize);
    const double exact = m_range.minimum + fraction * (m_range.maximum - m_range.minimum);
    const double grain = mouseGrain(m_range);
    return std::clamp(std::round(exact / grain) * grain, m_range.minimum, m_range.maximum);
}

bool DoubleClickSlider::isOnKnob(const QPointF& position) const
{
    return std::abs(position.x() - knobCentre().x()) <= knobReach / 2.0;
}

// ---- Looks ----

//   ────────────┬═══════●──────────     filled from the rest value to the knob
void DoubleClickSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double middle = height() / 2.0;
    const QRectF track(knobSize / 2.0, middle - trackHeight / 2.0, width() - knobSize, trackHeight);
    painter.setBrush(Theme::border);
    painter.drawRoundedRect(track, 1.5, 1.5);

    const double from = centreOf(std::clamp(m_range.rest, m_range.minimum, m_range.maximum));
    const double knob = knobCentre().x();
    painter.setBrush(isEnabled() ? QColor(0x84, 0x84, 0x84) : Theme::raised);
    painter.drawRect(QRectF(std::min(from, knob), track.top(), std::abs(knob - from), trackHeight));

    const QColor resting = isEnabled() ? QColor(0xb4, 0xb4, 0xb4) : Theme::disabledText;
    painter.setBrush(isEnabled() && (underMouse() || m_isDown) ? Theme::text : resting);
    if (hasFocus())
        painter.setPen(QPen(Theme::accent, 2));
    const double radius = knobSize / 2.0 - (hasFocus() ? 1 : 0);
    painter.drawEllipse(QPointF(knob, middle), radius, radius);
}

// ---- Hands ----

bool DoubleClickSlider::event(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        setDown(false);
    return QWidget::event(event);
}

void DoubleClickSlider::hideEvent(QHideEvent*)
{
    setDown(false); // no release will come
}

void DoubleClickSlider::keyPressEvent(QKeyEvent* event)
{
    const auto others = event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    const double steps = stepsOf(event->key());
    if (others != Qt::NoModifier)
        QWidget::keyPressEvent(event);
    else if (steps != 0)
        stepBy(event->modifiers() & Qt::ShiftModifier ? steps / 10 : steps);
    else if (event->key() == Qt::Key_Home)
        moveTo(m_range.minimum);
    else if (event->key() == Qt::Key_End)
        moveTo(m_range.maximum);
    else
        QWidget::keyPressEvent(event);
}

void DoubleClickSlider::wheelEvent(QWheelEvent* event)
{
    const int turned = event->angleDelta().y();
    if (!hasFocus() || turned == 0) {
        event->ignore();
        return;
    }
    event->accept();
    // A touchpad sends small parts of a notch.
    m_turned += turned / notch;
    const double whole = std::trunc(m_turned);
    m_turned -= whole;
    stepBy(event->modifiers() & Qt::ShiftModifier ? whole / 10 : whole);
}

void DoubleClickSlider::setDown(bool isDown)
{
    if (isDown == m_isDown)
        return;
    m_isDown = isDown;
    update();
    Q_EMIT pressChanged(isDown);
}

void DoubleClickSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_tookKnob = isOnKnob(event->position());
    m_grab = m_tookKnob ? event->position().x() - knobCentre().x() : 0;
    setDown(true);
    if (!m_tookKnob)
        moveTo(numberAt(event->position().x()));
}

void DoubleClickSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (m_isDown)
        moveTo(numberAt(event->position().x() - m_grab));
}

void DoubleClickSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        setDown(false);
}

void DoubleClickSlider::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // A first press beside the knob has brought it here: the second one takes it then.
    if (m_tookKnob && isOnKnob(event->position()))
        Q_EMIT resetAsked();
    else
        mousePressEvent(event);
}

} // namespace orvane
