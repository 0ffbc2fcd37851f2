#include "StolenTime.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace orvane {

StolenTime::StolenTime()
    : m_start(now())
{
}

StolenTime::Ticks StolenTime::now()
{
    // proc(5): user, nice, system, idle, iowait, irq, softirq, steal.
    std::ifstream file("/proc/stat");
    std::string cpu;
    double ticks[8] = {};
    file >> cpu;
    for (double& tick : ticks)
        file >> tick;
    return {ticks[0] + ticks[1] + ticks[2] + ticks[5] + ticks[6] + ticks[7], ticks[7]};
}

double StolenTime::share() const
{
    const Ticks end = now();
    const double working = end.working - m_start.working;
    return working > 0 ? (end.stolen - m_start.stolen) / working : 0;
}

void StolenTime::print() const
{
    std::printf("  (the host took %.0f %% of the working time)\n", 100 * share());
}

} // namespace orvane
