// Stores in places where they cannot be written, or not in the usual way.

#include "JSONMapStore.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <functional>

#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* present = R"({"a":"1"})";
constexpr const char* previous = R"({"a":"0"})";
constexpr const char* updated = R"({"a":"1","b":"2"})";

class StorePlacesTest : public TemporaryFolder {
protected:
    StorePlacesTest() { prepare(); }
    ~StorePlacesTest() override { allow("", 0777); }

    /// A folder that anybody may change, with a store and its backup.
    void prepare() const
    {
        ::chmod(folder.c_str(), 0777);
        ::chmod((folder / "support").c_str(), 0777);
        fs::remove_all(folder / "support");
        fs::create_directory(folder / "support");
        put("support/s.json", present);
        put("support/s.json.bak", previous);
        allow("", 0777);
        allow("s.json", 0666);
        allow("s.json.bak", 0666);
    }
    void allow(const char* name, unsigned mode) const
    {
        ::chmod((folder / "support" / name).c_str(), mode);
    }
    std::string in(const char* name) const { return content(std::string("support/") + name); }

    /// What comes of setting "b".
    std::string saved(const std::string& value = "2") const
    {
        const Result<void> set = JSONMapStore<std::string>(url).set({{"b", value}});
        return set ? "saved" : set.error().message;
    }

    /// What a child process answers, which may change its rights and surroundings.
    static std::string inChild(const std::function<std::string()>& work)
    {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            const std::string answer = work();
            ::_exit(::write(ends[1], answer.data(), answer.size()) < 0 ? 1 : 0);
        }
        ::close(ends[1]);
        std::string answer(4096, '\0');
        answer.resize(size_t(std::max<ssize_t>(::read(ends[0], answer.data(), 4096), 0)));
        ::close(ends[0]);
        ::waitpid(child, nullptr, 0);
        return answer;
    }

    /// Of this process, in bytes.
    static rlim_t addressSpace()
    {
        const std::string pages = *readTextFile("/proc/self/statm", 1000);
        return rlim_t(std::stoull(pages)) * rlim_t(::sysconf(_SC_PAGESIZE));
    }

    fs::path url = folder / "support" / "s.json";
};

TEST_F(StorePlacesTest, WhatBelongsToOthersStaysAndOneMessageSaysWhy)
{
    const bool isRoot = ::geteuid() == 0;
    const struct {
        const char* what;
        const char* name; ///< whose mode is changed; empty for the folder
        unsigned mode;
        bool needsRoot; ///< only then does the file belong to somebody else
        const char* complaint;
    } cases[] = {
        {"a folder to read only", "", 0555, false, "have permission to write in the folder"},
        {"a store to read only", "s.json", 0444, false, "“s.json” couldn't be saved because the"},
        {"a backup to read only", "s.json.bak", 0444, false, "the file is locked against writing"},
        {"others' files in a folder of all", "", 01777, true, "have permission to write"},
        {"a folder that cannot be entered", "", 0000, false, "couldn't be read, so saving now"},
    };
    for (const auto& [what, name, mode, needsRoot, complaint] : cases) {
        if (needsRoot && !isRoot)
            continue;
        prepare();
        allow(name, mode);
        const std::string answer =
            inChild([&] { return isRoot && ::setuid(65534) != 0 ? "no other user" : saved(); });
        EXPECT_THAT(answer, HasSubstr(complaint)) << what;
        allow("", 0777);
        EXPECT_EQ(in("s.json"), present) << what;
        EXPECT_EQ(fs::exists(folder / "support/s.json.bak"), true) << what;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder / "support"), {}), 2) << what;
    }
    prepare();
    EXPECT_EQ(saved(), "saved");
}

TEST_F(StorePlacesTest, AStoreThatMayNotBeReadIsADamagedOne)
{
    allow("s.json", 0000);
    const std::string answer = inChild(
        [&] { return ::geteuid() == 0 && ::setuid(65534) != 0 ? "no other user" : saved(); });
    EXPECT_EQ(answer, "saved");
    EXPECT_EQ(in("s.json"), R"({"a":"0","b":"2"})");
    allow("s.json.corrupt", 0600);
    EXPECT_EQ(in("s.json.corrupt"), present);
}

TEST_F(StorePlacesTest, AFullDiskLosesNothing)
{
    const std::string answer = inChild([&] {
        const std::string place = (folder / "support").string();
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("", "/", "", MS_REC | MS_PRIVATE, nullptr) != 0
            || ::mount("tmpfs", place.c_str(), "tmpfs", 0, "size=64k") != 0)
            return std::string("not permitted");
        put("support/s.json", present);
        std::string report = saved(std::string(100'000, 'x')) + "\n" + in("s.json");
        // A recovery that is cut short by the disk is found again.
        put("support/s.json", "{");
        report += "\n" + saved(std::string(100'000, 'x'));
        const auto value = JSONMapStore<std::string>(url).find("a");
        report += "\n" + value.value_or("lost") + " " + in("s.json.corrupt");
        report += "\n" + saved();
        return report + " " + in("s.json");
    });
    if (answer == "not permitted")
        GTEST_SKIP();
    const std::string full =
        "“s.json” couldn't be saved because there is no space left in the folder “"
        + (folder / "support").string() + "”.\n";
    EXPECT_EQ(answer, full + present + "\n" + full + "1 {\nsaved " + updated);
}

TEST_F(StorePlacesTest, ALimitOnFilesLosesNothing)
{
    const std::string answer = inChild([&] {
        const struct rlimit limit = {1000, 1000};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return saved(std::string(5000, 'x'));
    });
    EXPECT_THAT(answer, HasSubstr("larger than the disk in use allows"));
    EXPECT_EQ(in("s.json"), present);
    EXPECT_EQ(saved(), "saved");
    EXPECT_EQ(in("s.json"), updated);
}

TEST_F(StorePlacesTest, AShortageIsNoDamage)
{
    // More than the allocator keeps for itself, so that it asks the system.
    const std::string large = R"({"a":")" + std::string(40'000'000, 'x') + "\"}";
    const struct {
        const char* what;
        std::string text;
        decltype(RLIMIT_AS) resource;
        const char* complaint;
    } cases[] = {
        {"descriptors", present, RLIMIT_NOFILE,
         "“s.json” couldn't be opened because the system reported “Too many open files”."},
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        {"memory", large, RLIMIT_AS,
         "“s.json” couldn't be opened because there is not enough memory."},
#endif
    };
    for (const auto& [what, text, resource, complaint] : cases) {
        prepare();
        put("support/s.json", text);
        // Only then may a store believe that the files are still the same.
        while (!FileIdentity::of(url)->isSettled())
            ::usleep(10'000);
        const std::string answer = inChild([&] {
            struct rlimit usual;
            ::getrlimit(resource, &usual);
            const rlim_t atMost = resource == RLIMIT_AS ? addressSpace() + 16'000'000 : 0;
            const struct rlimit lowered = {atMost, usual.rlim_max};
            ::setrlimit(resource, &lowered);
            JSONMapStore<std::string> store(url);
            std::string report = store.find("a") ? "found" : "absent";
            const Result<void> set = JSONMapStore<std::string>(url).set({{"b", "2"}});
            ::setrlimit(resource, &usual);
            report += store.find("a") ? ", found: " : ", absent: ";
            return report + (set ? "saved" : set.error().message);
        });
        EXPECT_EQ(answer, std::string("absent, found: ") + complaint) << what;
        EXPECT_TRUE(in("s.json") == text) << what;
        EXPECT_EQ(in("s.json.bak"), previous) << what;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder / "support"), {}), 2) << what;
        EXPECT_EQ(saved(), "saved") << what;
    }
}

TEST_F(StorePlacesTest, AFolderInTheStoresPlaceIsMovedAside)
{
    const auto makeFolder = [&](const char* name) {
        fs::remove_all(folder / "support" / name);
        fs::create_directory(folder / "support" / name);
        put(std::string("support/") + name + "/kept", "x");
    };
    makeFolder("s.json");
    EXPECT_EQ(saved(), "saved");
    EXPECT_EQ(in("s.json"), R"({"a":"0","b":"2"})");
    EXPECT_EQ(in("s.json.corrupt/kept"), "x");

    // The place aside is taken by a folder that is not empty, which is never removed.
    put("support/s.json", "{");
    EXPECT_THAT(saved(), HasSubstr("the folder “s.json.corrupt” is in the way"));
    EXPECT_EQ(in("s.json"), "{");
    EXPECT_EQ(in("s.json.corrupt/kept"), "x");
    fs::remove(folder / "support/s.json.corrupt/kept");
    EXPECT_EQ(saved(), "saved");
    EXPECT_EQ(in("s.json.corrupt"), "{");

    makeFolder("s.json.bak");
    EXPECT_THAT(saved("3"), HasSubstr("a folder of that name is in the way"));
    EXPECT_EQ(in("s.json"), R"({"a":"0","b":"2"})");
    makeFolder("s.json");
    EXPECT_THAT(saved(), HasSubstr("couldn't be read"));
    EXPECT_EQ(in("s.json.corrupt/kept"), "x");
}

TEST_F(StorePlacesTest, ALinkStaysAndItsTargetIsWritten)
{
    std::string pattern = "/dev/shm/orvane-test-XXXXXX"; // another disk, where there is one
    const char* const otherDisk = ::mkdtemp(pattern.data());
    const fs::path places[] = {folder, otherDisk ? fs::path(otherDisk) : folder};
    for (const fs::path& place : places) {
        prepare();
        const fs::path target = place / "target.json";
        ASSERT_TRUE(writeFile(target, present));
        fs::remove(url);
        fs::create_symlink(target, url);

        const auto targetText = [&] { return *readTextFile(target, 1000); };
        EXPECT_EQ(saved(), "saved");
        EXPECT_EQ(targetText(), updated);
        EXPECT_EQ(in("s.json.bak"), present);

        ASSERT_TRUE(writeFile(target, "{"));
        EXPECT_EQ(saved("3"), "saved");
        EXPECT_EQ(targetText(), R"({"a":"1","b":"3"})");
        EXPECT_FALSE(fs::is_symlink(folder / "support/s.json.corrupt"));
        EXPECT_EQ(in("s.json.corrupt"), "{");

        fs::remove(target);
        fs::remove(folder / "support/s.json.bak");
        EXPECT_EQ(saved("4"), "saved");
        EXPECT_EQ(targetText(), R"({"b":"4"})");
        EXPECT_TRUE(fs::is_symlink(url));
    }
    if (otherDisk)
        fs::remove_all(otherDisk);

    fs::remove(url);
    fs::create_symlink("s.json", url);
    EXPECT_THAT(saved(), HasSubstr("couldn't be read"));
    EXPECT_EQ(saved(), "saved");
}

} // namespace
} // namespace orvane
