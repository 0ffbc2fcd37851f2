#include "StartTrace.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace orvane::StartTrace {

namespace {

/// Seconds after the machine's start at which this process began: the 22nd field of proc's "stat",
/// in clock ticks. The fields are counted after the name, which may hold spaces.
double processStart()
{
    std::ifstream file("/proc/self/stat");
    std::string line;
    std::getline(file, line);
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string field;
    for (int number = 3; number <= 22; ++number)
        fields >> field;
    return double(std::atoll(field.c_str())) / double(sysconf(_SC_CLK_TCK));
}

} // namespace

void report(const char* what)
{
    if (!std::getenv("ORVANE_TRACE_START"))
        return;
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const double seconds = double(now.tv_sec) + double(now.tv_nsec) * 1e-9 - processStart();
    std::fprintf(stderr, "orvane: %s after %.0f ms\n", what, seconds * 1000);
}

} // namespace orvane::StartTrace
