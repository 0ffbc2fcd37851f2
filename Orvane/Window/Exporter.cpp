#include "Exporter.h"

#include <QtConcurrent>

namespace orvane {

Exporter::Exporter(QThreadPool& pool)
    : m_pool(pool)
{
}

Exporter::~Exporter()
{
    cancel();
}

void Exporter::start(Job job)
{
    m_token = std::make_shared<CancellationToken>();
    QtConcurrent::run(&m_pool, [job = std::move(job), token = m_token] {
        const CIImage finished = finishedImage(job.source, job.state, {});
        const Result<void> written =
            exportFile(finished, job.options, job.target, {.cancellation = token.get()});
        return written || token->isCancelled() ? std::string() : written.error().message;
    }).then(this, [this](const std::string& failure) {
        m_token.reset();
        Q_EMIT finished(failure);
    });
}

void Exporter::cancel()
{
    if (m_token)
        m_token->cancel();
}

} // namespace orvane
