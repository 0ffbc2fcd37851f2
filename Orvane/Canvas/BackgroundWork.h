#pragma once

#include <QFutureWatcher>
#include <QtConcurrentRun>

#include <type_traits>
#include <utility>

namespace orvane {

/// Runs `work` in the pool and, in the context's thread, hands what it returns to `then`; always
/// later, and never when the context is gone. `work` throws nothing. By a watcher: the
/// continuations of Qt 6.4's futures crash now and then when the work ends in the moment in which
/// they are attached.
template <class Work, class Then>
void runInBackground(QThreadPool& pool, QObject& context, Work work, Then then)
{
    using Watcher = QFutureWatcher<std::invoke_result_t<Work>>;
    auto* const watcher = new Watcher(&context);
    QObject::connect(watcher, &Watcher::finished, &context,
                     [watcher, then = std::move(then)]() mutable {
                         watcher->deleteLater();
                         then(watcher->result());
                     });
    watcher->setFuture(QtConcurrent::run(&pool, std::move(work)));
}

} // namespace orvane
