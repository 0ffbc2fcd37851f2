#include "InstanceMessage.h"
#include "SingleInstance.h"
#include "TemporaryFolder.h"
#include "TestWaiting.h"

#include <QTimer>

#include <gmock/gmock.h>

#include <atomic>
#include <cstring>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using Files = std::vector<fs::path>;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string huge("ORV1\xff\xff\xff\x7f/", 9);
const std::string half("ORV1\x05\0\0\0/a", 10);

TEST(InstanceMessage, TakesOnlyWhatIsWhole)
{
    using State = InstanceMessage::State;
    const struct {
        std::string bytes;
        State state;
    } cases[] = {
        {"", State::Incomplete},
        {"OR", State::Incomplete},
        {"ORV1\x04", State::Incomplete},
        {half, State::Incomplete},
        {"GET / HTTP/1.1", State::Broken},
        {huge, State::Broken},
        {{"ORV1\x02\0\0\0/a", 10}, State::Broken}, // not ended
        {{"ORV1\x02\0\0\0a\0", 10}, State::Broken}, // not absolute
        {{"ORV1\x01\0\0\0\0", 9}, State::Broken}, // no path at all
        {{"ORV1\0\0\0\0more", 12}, State::Broken},
        {{"ORV1\0\0\0\0", 8}, State::Complete},
    };
    for (const auto& c : cases)
        EXPECT_EQ(InstanceMessage::decoded(c.bytes).state, c.state) << c.bytes;
    const Files files = {"/a\nb", "/caf\xe9 \xff", "/日本"};
    EXPECT_EQ(InstanceMessage::decoded(InstanceMessage::encoded(files)).files, files);
}

class Instances : public TemporaryFolder {
protected:
    Instances()
    {
        runtime = folder / "run";
        fs::create_directories(runtime);
        fs::permissions(runtime, fs::perms::owner_all);
        ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    }
    ~Instances() override { ::unsetenv("XDG_RUNTIME_DIR"); }

    SingleInstance::OnFiles keep()
    {
        return [this](const Files& files) { taken.push_back(files); };
    }
    /// In a thread of its own, as it waits, while the first one's events are handled here.
    static bool handedOver(const SingleInstance& later, const Files& files)
    {
        std::atomic<int> answer = -1;
        std::thread sender([&] { answer = later.handOver(files); });
        waitFor([&] {
            QTimer::singleShot(1, [] {}); // the thread's end is no event
            return answer >= 0;
        });
        sender.join();
        return answer == 1;
    }
    /// A connection to the first one that has said `bytes`.
    int said(const std::string& bytes) const
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        for (const auto& entry : fs::directory_iterator(runtime)) {
            if (entry.path().extension() == ".socket")
                std::strcpy(address.sun_path, entry.path().c_str());
        }
        const int connection = ::socket(AF_UNIX, SOCK_STREAM, 0);
        EXPECT_EQ(::connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  ssize_t(bytes.size()));
        return connection;
    }

    fs::path runtime;
    std::vector<Files> taken;
};

TEST_F(Instances, TheSecondHandsItsFilesToTheFirst)
{
    SingleInstance first("/data");
    ASSERT_TRUE(first.isFirst());
    const SingleInstance elsewhere("/other data");
    EXPECT_TRUE(elsewhere.isFirst());
    const SingleInstance second("/data");
    ASSERT_FALSE(second.isFirst());
    first.listen(keep());
    EXPECT_TRUE(handedOver(second, {"/a\nb/caf\xe9.jpg", "relative.jpg"}));
    EXPECT_TRUE(handedOver(second, {}));
    EXPECT_THAT(taken,
                ElementsAre(ElementsAre("/a\nb/caf\xe9.jpg", fs::current_path() / "relative.jpg"),
                            IsEmpty()));
    for (const auto& entry : fs::directory_iterator(runtime))
        EXPECT_EQ(entry.status().permissions() & (fs::perms::group_all | fs::perms::others_all),
                  fs::perms::none)
            << entry.path();
}

TEST_F(Instances, WhatACrashLeavesIsTakenOver)
{
    const pid_t crashing = ::fork();
    if (crashing == 0) {
        SingleInstance first("/data");
        first.listen({});
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(crashing, &status, 0), crashing);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(std::distance(fs::directory_iterator(runtime), {}), 2); // lock and socket are left

    SingleInstance first("/data");
    ASSERT_TRUE(first.isFirst());
    first.listen(keep());
    EXPECT_TRUE(handedOver(SingleInstance("/data"), {"/a.jpg"}));
    EXPECT_THAT(taken, ElementsAre(ElementsAre("/a.jpg")));
}

TEST_F(Instances, OneThatHangsIsNotWaitedForAndOpensNothingLater)
{
    SingleInstance first("/data");
    first.listen(keep());
    EXPECT_FALSE(SingleInstance("/data").handOver({"/a.jpg"})); // no events are handled here
    // What was given up is not opened twice, and the next one is heard again.
    EXPECT_TRUE(handedOver(SingleInstance("/data"), {"/b.jpg"}));
    EXPECT_THAT(taken, ElementsAre(ElementsAre("/b.jpg")));
}

TEST_F(Instances, HostileBytesHurtNobody)
{
    SingleInstance first("/data");
    first.listen(keep());
    const SingleInstance second("/data");
    std::vector<int> open;
    for (const std::string& bytes : {huge, half, std::string("OR"), std::string(1 << 16, '\0'),
                                     std::string("ORV1\x02\0\0\0a\0", 10)}) {
        ::close(said(bytes));
        open.push_back(said(bytes));
        EXPECT_TRUE(handedOver(second, {"/good.jpg"}));
    }
    EXPECT_THAT(taken, testing::Each(ElementsAre("/good.jpg")));
    EXPECT_EQ(taken.size(), 5u);
    for (const int connection : open)
        ::close(connection);
}

TEST_F(Instances, WithoutAFolderOfItsOwnEachStandsAlone)
{
    ::setenv("XDG_RUNTIME_DIR", "/nowhere", 1);
    ::setenv("TMPDIR", (folder / "none").c_str(), 1);
    SingleInstance first("/data");
    SingleInstance second("/data");
    EXPECT_TRUE(first.isFirst() && second.isFirst());
    second.listen(keep());
    EXPECT_FALSE(second.handOver({"/a"}));
    ::unsetenv("TMPDIR");
}

} // namespace
} // namespace orvane
