#include "AtomicFile.h"

#include "FileSystem.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class AtomicFileTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "orvane-atomic-XXXXXX";
        folder = ::mkdtemp(pattern.data());
        ASSERT_TRUE(writeFile(folder / "old", "old bytes"));
    }
    void TearDown() override { fs::remove_all(folder); }

    static std::string content(const fs::path& path)
    {
        const auto bytes = readFile(path, 1000);
        return bytes ? std::string(bytes->begin(), bytes->end()) : bytes.error().message;
    }
    size_t entries() const
    {
        return size_t(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
    static unsigned modeOf(const fs::path& path)
    {
        return unsigned(fs::status(path).permissions());
    }

    fs::path folder;
};

TEST_F(AtomicFileTest, ReplacesOnlyAtTheCommit)
{
    ASSERT_EQ(::chmod((folder / "old").c_str(), 0640), 0);
    Result<AtomicFile> file = AtomicFile::create(folder / "old");
    ASSERT_TRUE(file);
    ASSERT_TRUE(file->write("new bytes", 9));
    // An encoder may seek back and read what it wrote.
    char first = 0;
    ASSERT_EQ(::pread(file->descriptor(), &first, 1, 0), 1);
    ASSERT_EQ(::pwrite(file->descriptor(), "N", 1, 0), 1);
    EXPECT_EQ(content(folder / "old"), "old bytes");

    ASSERT_TRUE(file->commit());
    EXPECT_EQ(first, 'n');
    EXPECT_EQ(content(folder / "old"), "New bytes");
    EXPECT_EQ(modeOf(folder / "old"), 0640u);
    EXPECT_EQ(entries(), 1u);
}

TEST_F(AtomicFileTest, LeavesTheOldFileWhenNotCommitted)
{
    {
        Result<AtomicFile> dropped = AtomicFile::create(folder / "old");
        ASSERT_TRUE(dropped && dropped->write("x", 1));
        Result<AtomicFile> cancelled = AtomicFile::create(folder / "new");
        ASSERT_TRUE(cancelled);
        EXPECT_EQ(entries(), 3u);
        cancelled->cancel();
        EXPECT_EQ(entries(), 2u);
        // A moved file has one owner: the first one's end must not remove it.
        AtomicFile owner = std::move(*dropped);
        {
            const Result<AtomicFile> emptied = std::move(dropped);
        }
        EXPECT_EQ(entries(), 2u);
    }
    EXPECT_EQ(entries(), 1u);
    EXPECT_EQ(content(folder / "old"), "old bytes");
}

TEST_F(AtomicFileTest, FollowsLinksAndKeepsThem)
{
    fs::create_directory(folder / "deep");
    fs::create_symlink("../old", folder / "deep" / "second");
    fs::create_symlink("deep/second", folder / "first");
    ASSERT_TRUE(writeFile(folder / "first", "through"));
    EXPECT_EQ(content(folder / "old"), "through");
    EXPECT_TRUE(fs::is_symlink(folder / "first"));
    EXPECT_TRUE(fs::is_symlink(folder / "deep" / "second"));

    fs::create_symlink("nowhere yet", folder / "dangling");
    ASSERT_TRUE(writeFile(folder / "dangling", "made"));
    EXPECT_EQ(content(folder / "nowhere yet"), "made");
    EXPECT_TRUE(fs::is_symlink(folder / "dangling"));
}

TEST_F(AtomicFileTest, GivesNewFilesTheModeOfTheUmask)
{
    const mode_t umask = ::umask(027);
    const Result<void> written = writeFile(folder / std::string(255, 'n'), "");
    ::umask(umask);
    ASSERT_TRUE(written) << written.error().message;
    EXPECT_EQ(modeOf(folder / std::string(255, 'n')), 0640u);
}

fs::path cleaned;
int cleaner = -1;

TEST_F(AtomicFileTest, AnotherProcessThatCleansUpTakesNothing)
{
    const auto expectSaved = [&](const char* bytes) {
        const Result<void> written = writeFile(folder / "old", bytes);
        fileStepHook = nullptr;
        EXPECT_TRUE(written) << written.error().message;
        EXPECT_EQ(content(folder / "old"), bytes);
        EXPECT_EQ(entries(), 1u);
    };
    cleaned = folder;
    // At every step. The first time the file has no lock yet, and goes.
    fileStepHook = [](const char* step) {
        static bool isFirst = true;
        if (std::exchange(isFirst, false) || step != std::string_view("temporary file named"))
            removeAbandonedTemporaries(cleaned);
    };
    expectSaved("at every step");

    // The other process holds the lock, and removes the file a step later.
    fileStepHook = [](const char*) {
        static fs::path found;
        if (cleaner >= 0) {
            fs::remove(found);
            return;
        }
        for (const fs::path& path : fs::directory_iterator(cleaned)) {
            if (path.filename().native().starts_with(".orvane-"))
                found = path;
        }
        cleaner = ::open(found.c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(::flock(cleaner, LOCK_EX | LOCK_NB), 0);
    };
    expectSaved("while the lock is held");
    ::close(cleaner);

    // What a killed process left has no lock.
    std::ofstream(folder / ".orvane-1-1") << "half";
    removeAbandonedTemporaries(folder);
    EXPECT_EQ(entries(), 1u);

    // A name that only begins like one is somebody else's.
    for (const char* name : {".orvane-presets", ".orvane-1-1.bak", ".orvane--1", ".orvane-1"})
        std::ofstream(folder / name) << "theirs";
    removeAbandonedTemporaries(folder);
    EXPECT_EQ(entries(), 5u);
}

TEST_F(AtomicFileTest, LeavesAFileThatItMustNotReplace)
{
    const fs::path target = folder / "new.jpg";
    for (const char* bytes : {"first", "second"}) {
        Result<AtomicFile> file = AtomicFile::create(target);
        ASSERT_TRUE(file);
        ASSERT_TRUE(file->write(bytes, 5));
        EXPECT_EQ(bool(file->commit(AtomicFile::Existing::Respected)), bytes[0] == 'f');
    }
    EXPECT_EQ(*readTextFile(target, 100), "first");
    EXPECT_EQ(entries(), 2u); // the other is the fixture's
}

TEST_F(AtomicFileTest, SaysWhyItCannotWrite)
{
    fs::create_directory(folder / "pictures");
    fs::create_symlink("circle", folder / "circle");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const struct {
        fs::path target;
        const char* complaint;
    } cases[] = {
        {folder / "pictures",
         "“pictures” couldn't be saved because a folder of that name is in the way."},
        {folder / "missing" / "a.jpg", "missing” doesn't exist."},
        {folder / "old" / "a.jpg", "old” doesn't exist."},
        {folder / "pipe", "something other than a regular file is in the way."},
        {folder / "circle", "lead in a circle."},
        {folder / std::string(256, 'n'), "name is too long."},
    };
    const size_t before = entries();
    for (const auto& [target, complaint] : cases) {
        const Result<void> written = writeFile(target, "bytes");
        ASSERT_FALSE(written) << target;
        EXPECT_THAT(written.error().message, HasSubstr(complaint));
        EXPECT_EQ(entries(), before) << target;
    }
}

TEST_F(AtomicFileTest, ReportsAFullDisk)
{
    // The one device whose writes always fail for want of space.
    if (!fs::exists("/dev/full"))
        GTEST_SKIP();
    Result<AtomicFile> file = AtomicFile::create(folder / "old");
    ASSERT_TRUE(file);
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    ASSERT_GE(::dup2(full, file->descriptor()), 0);
    ::close(full);
    const Result<void> written = file->write("x", 1);
    ASSERT_FALSE(written);
    EXPECT_THAT(written.error().message, HasSubstr("there is no space left"));
    file->cancel();
    EXPECT_EQ(content(folder / "old"), "old bytes");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(AtomicFileTest, ReadsWithinBounds)
{
    EXPECT_EQ(readFile(folder / "old", 9)->size(), 9u);
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    ASSERT_TRUE(writeFile(folder / "large", ""));
    fs::resize_file(folder / "large", 2'000'000);
    const struct {
        const char* name;
        size_t maxBytes;
        const char* reason;
    } cases[] = {
        {"old", 8, "it is larger than 8 bytes"},
        {"large", 1'600'000, "it is larger than 1 MB"},
        {".", 8, "it is a folder"},
        {"pipe", 8, "it isn't a regular file"},
        {"none", 8, "it isn't there any more"},
    };
    for (const auto& [name, maxBytes, reason] : cases) {
        EXPECT_EQ(readFile(folder / name, maxBytes).error().message,
                  std::string("“") + name + "” couldn't be opened because " + reason + ".");
    }
    // Files that state no size are read to their end all the same.
    EXPECT_GT(readFile("/proc/self/status", 1 << 20)->size(), 0u);
    EXPECT_FALSE(readFile("/proc/self/status", 10));
}

} // namespace
} // namespace orvane
