#include "ProcessSignals.h"
#include "TemporaryFolder.h"

#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane {
namespace {

/// Runs in a process of its own: 0 when each write fails as it should, and does not end it.
int writeWhereItFails(const std::filesystem::path& file)
{
    ignoreSignals();
    int ends[2];
    if (::pipe(ends) != 0)
        return 1;
    ::close(ends[0]);
    if (::write(ends[1], "x", 1) >= 0 || errno != EPIPE)
        return 2;
    const rlimit small{10, 10};
    ::setrlimit(RLIMIT_FSIZE, &small);
    const int target = ::open(file.c_str(), O_CREAT | O_WRONLY, 0600);
    const std::vector<char> bytes(20);
    if (::write(target, bytes.data(), bytes.size()) != 10) // what has room
        return 3;
    return ::write(target, bytes.data(), 1) < 0 && errno == EFBIG ? 0 : 4;
}

TEST_F(TemporaryFolder, AWriteWithNobodyToReadItOrPastALimitFailsAndNoMore)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(writeWhereItFails(folder / "target"));
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
} // namespace orvane
