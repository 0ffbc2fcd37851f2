#include "PlotHandle.h"

#include <QAccessibleWidget>
#include <QKeyEvent>

namespace orvane {

namespace {

/// A screen reader says a handle as it says a slider: name, role, value.
class SpokenHandle final : public QAccessibleWidget {
public:
    explicit SpokenHandle(PlotHandle* handle)
        : QAccessibleWidget(handle, QAccessible::Slider)
    {
    }
    QString text(QAccessible::Text which) const override
    {
        return QAccessibleWidget::text(which == QAccessible::Value ? QAccessible::Description
                                                                   : which);
    }
};

QAccessibleInterface* spokenHandle(const QString&, QObject* object)
{
    auto* handle = qobject_cast<PlotHandle*>(object);
    return handle ? new SpokenHandle(handle) : nullptr;
}

QPoint direction(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, 1};
    case Qt::Key_Down:
        return {0, -1};
    default:
        return {};
    }
}

} // namespace

PlotHandle::PlotHandle(QWidget* plot)
    : QWidget(plot)
{
    [[maybe_unused]] static const bool isInstalled =
        (QAccessible::installFactory(spokenHandle), true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    resize(extent, extent);
}

void PlotHandle::describe(const QString& name, const QString& value)
{
    setAccessibleName(name);
    setAccessibleDescription(value);
}

void PlotHandle::place(const QPointF& position)
{
    QWidget::move((position - QPointF(extent, extent) / 2).toPoint());
}

void PlotHandle::keyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    const QPoint steps = direction(event->key());
    if (modifiers == Qt::NoModifier && !steps.isNull())
        Q_EMIT stepped(steps * (event->modifiers() & Qt::ShiftModifier ? 10 : 1));
    else if (modifiers == Qt::NoModifier
             && (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace))
        Q_EMIT removeAsked();
    else
        QWidget::keyPressEvent(event);
}

void PlotHandle::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    Q_EMIT focusChanged(true);
}

void PlotHandle::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    Q_EMIT focusChanged(false);
}

} // namespace orvane
