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
        QWidget* const dialog = QApplication::activeModalWidget();
        // A dialog takes keys only once it is the active window.
        if (!open && dialog && dialog->isActiveWindow())
            open = dialog;
        if (!open)
            return;
        watch->stop();
        watch->deleteLater();
        act(open);
    });
    watch->start(1);
}

} // namespace orvane
