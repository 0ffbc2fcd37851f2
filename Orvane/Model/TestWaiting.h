#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <functional>
#include <stdexcept>

namespace orvane {

/// For tests: an event loop needs an application; tests of widgets have made their own, larger one.
inline void makeTestApplication()
{
    if (QCoreApplication::instance())
        return;
    static int count = 1;
    static char name[] = "tests";
    static char* arguments[] = {name, nullptr};
    static QCoreApplication application(count, arguments);
}

/// For tests: handles events until the condition holds. Throws after a minute, which no working
/// program takes here, so that a test that waits in vain fails by itself.
inline void waitFor(const std::function<bool()>& condition)
{
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(60'000);
    while (!condition()) {
        if (!deadline.isActive())
            throw std::runtime_error("What the test waits for has not come within a minute.");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

} // namespace orvane
