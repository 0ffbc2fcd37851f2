#include "ProcessSignals.h"

#include <csignal>

namespace orvane {

void ignoreSignals()
{
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace orvane
