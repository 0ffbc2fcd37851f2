#pragma once

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace orvane {

/// Calls act() once with the modal dialog or the menu that is shown next, from its own event loop.
inline void whenOpen(std::function<void(QWidget*)> act)
{
    auto* watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, [watch, act = std::move(act)] {
        QWidget* open = QApplication::activePopupWidget();
        if (!open)
            open = QApplication::activeModalWidget();
        if (!open || !open->isVisible())
            return;
        watch->stop();
        watch->deleteLater();
        act(open);
    });
    watch->start(1);
}

} // namespace orvane
