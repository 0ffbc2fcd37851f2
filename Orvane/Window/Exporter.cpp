#include "Exporter.h"

#include <QtConcurrent>

namespace orvane {

namespace {

Exporter::End written(const Exporter::Job& job, const CancellationToken& token)
{
    // What throws here is memory alone. A future that holds an exception would never call back.
    try {
        const CIImage finished = finishedImage(job.source, job.state, {});
        const Result<void> result =
            exportFile(finished, job.options, job.target, {.cancellation = &token});
        if (result)
            return {.isWritten = true};
        return {.failure = token.isCancelled() ? std::string() : result.error().message};
    } catch (const std::exception&) {
        return {.failure = "There is not enough memory to export the picture. Close other "
                           "programs, or choose a smaller size."};
    }
}

} // namespace

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
        return written(job, *token);
    }).then(this, [this](const End& end) {
        m_token.reset();
        Q_EMIT finished(end);
    });
}

void Exporter::cancel()
{
    if (m_token)
        m_token->cancel();
}

} // namespace orvane
