#include "StateStore.h"

#include "TemporaryFolder.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane {
namespace {

using StateStoreTest = TemporaryFolder;

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST_F(StateStoreTest, ReadsWhenItIsAskedWhereNoThreadCanBeHad)
{
    const std::filesystem::path url = folder / "edits.json";
    EditState turned;
    turned.rotation = 5;
    // Not through a StateStore: the stack of a thread that ended is kept for the next.
    ASSERT_TRUE(JSONMapStore<EditState>(url).set({{"file:/a", turned}}));

    const pid_t child = ::fork();
    if (child == 0) {
        // Less than the stack of a thread.
        const std::string pages = *readTextFile("/proc/self/statm", 1000);
        const rlim_t used = rlim_t(std::stoull(pages)) * rlim_t(::sysconf(_SC_PAGESIZE));
        const struct rlimit limit = {used + 2'000'000, RLIM_INFINITY};
        ::setrlimit(RLIMIT_AS, &limit);
        try {
            StateStore store(url);
            const bool isFound = store.state("file:/a") == turned;
            ::_exit(isFound && store.save({{"file:/b", turned}}) ? 0 : 1);
        } catch (const std::exception&) {
            ::_exit(2);
        }
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(StateStore(url).state("file:/b") == turned);
}

#endif

} // namespace
} // namespace orvane
