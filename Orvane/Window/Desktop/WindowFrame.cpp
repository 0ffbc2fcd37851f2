#include "WindowFrame.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace orvane {

namespace {

constexpr const char* frameKey = "kq4.window.frame";
constexpr const char* columnsKey = "kq4.sidebar"; ///< widths from left to right, 0 for collapsed
constexpr int savingDelay = 400; ///< milliseconds

QList<QRect> usableScreens()
{
    QList<QRect> found;
    for (const QScreen* screen : QGuiApplication::screens())
        found << screen->availableGeometry();
    return found;
}

/// As many widths as there are columns; empty for anything else.
QList<int> widthsOfText(const QString& text, int count)
{
    QList<int> widths;
    for (const QString& part : text.split(' ')) {
        bool isNumber = false;
        const int width = part.toInt(&isNumber);
        if (!isNumber || width < 0)
            return {};
        widths << width;
    }
    return widths.size() == count ? widths : QList<int>();
}

} // namespace

WindowFrame::WindowFrame(QMainWindow& window, QSplitter& columns, QSettings& defaults)
    : m_window(&window)
    , m_columns(&columns)
    , m_defaults(defaults)
{
    restore();
    m_saving.setSingleShot(true);
    m_saving.setInterval(savingDelay);
    connect(&m_saving, &QTimer::timeout, this, &WindowFrame::save);
    connect(&columns, &QSplitter::splitterMoved, &m_saving, qOverload<>(&QTimer::start));
    window.installEventFilter(this);
}

void WindowFrame::restore()
{
    const auto kept = placeOfText(m_defaults.value(frameKey).toString());
    const QRect geometry =
        inSight(kept.value_or(WindowPlace{m_window->geometry(), {}, false}), usableScreens());
    if (kept)
        m_window->setGeometry(geometry);
    else
        m_window->resize(geometry.size());
    if (kept && kept->isMaximized)
        m_window->setWindowState(m_window->windowState() | Qt::WindowMaximized);
    const QList<int> widths =
        widthsOfText(m_defaults.value(columnsKey).toString(), m_columns->count());
    if (!widths.isEmpty())
        m_columns->setSizes(widths);
}

/// A column that is hidden has no width now: it keeps the one that it was given last.
QList<int> WindowFrame::columnWidths() const
{
    const QList<int> last =
        widthsOfText(m_defaults.value(columnsKey).toString(), m_columns->count());
    QList<int> widths = m_columns->sizes();
    for (int i = 0; i < widths.size(); ++i) {
        const QWidget& column = *m_columns->widget(i);
        const int wanted = column.sizeHint().isValid() ? column.sizeHint().width() : column.width();
        if (column.isHidden())
            widths[i] = last.isEmpty() ? wanted : last[i];
    }
    return widths;
}

void WindowFrame::save()
{
    m_saving.stop();
    if (!m_window || !m_columns || !m_window->isVisible())
        return;
    WindowPlace place;
    const bool isPlain = !(m_window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen));
    place.isMaximized = m_window->isMaximized();
    place.geometry = isPlain ? m_window->geometry() : m_window->normalGeometry();
    const QRect inner = m_window->geometry();
    const QRect outer = m_window->frameGeometry();
    place.frame = QMargins(inner.left() - outer.left(), inner.top() - outer.top(),
                           outer.right() - inner.right(), outer.bottom() - inner.bottom());
    if (!place.geometry.isEmpty())
        m_defaults.setValue(frameKey, textOfPlace(place));
    QStringList widths;
    for (const int width : columnWidths())
        widths << QString::number(width);
    m_defaults.setValue(columnsKey, widths.join(' '));
}

bool WindowFrame::eventFilter(QObject* window, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowStateChange:
        m_saving.start();
        break;
    case QEvent::Close:
        save();
        break;
    default:
        break;
    }
    return QObject::eventFilter(window, event);
}

} // namespace orvane
