#include "LatestJob.h"

namespace orvane {

LatestJob::LatestJob()
{
    m_pool.setMaxThreadCount(1);
}

LatestJob::~LatestJob()
{
    cancel();
    m_pool.clear();
    m_pool.waitForDone();
}

void LatestJob::cancel()
{
    if (m_token)
        m_token->cancel();
    m_token.reset();
}

} // namespace orvane
