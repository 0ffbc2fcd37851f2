#include "HeldMouse.h"

#include <QGuiApplication>
#include <QTimer>

namespace orvane {

bool isMouseHeld()
{
    return QGuiApplication::mouseButtons() != Qt::NoButton;
}

void whenMouseIsFree(QObject* context, std::function<void()> then)
{
    if (!isMouseHeld()) {
        then();
        return;
    }
    constexpr std::chrono::milliseconds again(30);
    QTimer::singleShot(again, context, [context, then = std::move(then)]() mutable {
        whenMouseIsFree(context, std::move(then));
    });
}

} // namespace orvane
