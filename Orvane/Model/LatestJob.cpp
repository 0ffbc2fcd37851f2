#include "LatestJob.h"

namespace orvane {

LatestJob::LatestJob()
{
    m_pool.setMaxThreadCount(1);
}

LatestJob::~LatestJob()
{
    cancel();
    m_pool.waitForDone();
}

void LatestJob::cancel()
{
    if (m_token)
        m_token->cancel();
    m_token.reset();
    // What has not begun goes with all that it holds, such as a whole picture.
    m_pool.clear();
}

} // namespace orvane
