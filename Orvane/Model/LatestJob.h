#pragma once

#include "CIContext.h"

#include <QMetaObject>
#include <QObject>
#include <QThreadPool>

#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace orvane {

/// Background work of one kind, of which only the newest counts: starting another cancels the one
/// that runs and drops its result. The result comes back as one message to the thread that this
/// object lives on, through its event loop.
class LatestJob {
public:
    LatestJob();
    /// Cancels what runs and waits for it to let go.
    ~LatestJob();
    LatestJob(const LatestJob&) = delete;
    LatestJob& operator=(const LatestJob&) = delete;

    /// `work(token)` runs in the background and owns all it reads; `done(&result)` runs here,
    /// unless another start() or a cancel() came first. It gets null when the work threw, as it
    /// does without memory.
    template <class Work, class Done> void start(Work work, Done done)
    {
        cancel();
        m_token = std::make_shared<CancellationToken>();
        m_pool.start([this, token = m_token, work = std::move(work), done = std::move(done)] {
            if (token->isCancelled())
                return;
            std::optional<decltype(work(*token))> result;
            try {
                result = work(*token);
            } catch (const std::exception&) {
                result.reset();
            }
            auto deliver = [this, token, done, result = std::move(result)] {
                if (token != m_token)
                    return;
                m_token.reset();
                done(result ? &*result : nullptr);
            };
            QMetaObject::invokeMethod(&m_receiver, std::move(deliver), Qt::QueuedConnection);
        });
    }
    void cancel();
    bool isRunning() const { return m_token != nullptr; }

private:
    QObject m_receiver;
    std::shared_ptr<CancellationToken> m_token; ///< of the newest job until it is delivered
    QThreadPool m_pool; ///< of one thread
};

} // namespace orvane
