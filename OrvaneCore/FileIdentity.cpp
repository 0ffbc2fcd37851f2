#include "FileIdentity.h"

#include <ctime>

#include <sys/stat.h>

namespace orvane {

namespace {

int64_t nanoseconds(const timespec& time)
{
    return int64_t(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

} // namespace

std::optional<FileIdentity> FileIdentity::of(const std::filesystem::path& path)
{
    struct stat status;
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
                        nanoseconds(status.st_ctim)};
}

bool FileIdentity::isSettled() const
{
    // Ten ticks of the slowest kernel clock. A file from the future is never settled.
    constexpr int64_t tick = 10'000'000;
    timespec now;
    ::clock_gettime(CLOCK_REALTIME, &now);
    return nanoseconds(now) - changed > 10 * tick;
}

} // namespace orvane
