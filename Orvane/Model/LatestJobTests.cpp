#include "LatestJob.h"

#include "TestWaiting.h"

#include <gtest/gtest.h>

#include <QSemaphore>

#include <atomic>
#include <memory>
#include <new>
#include <vector>

namespace orvane {
namespace {

/// Jobs behind a gate: the first to run stays in its work until the test lets it go.
class LatestJobTest : public testing::Test {
protected:
    LatestJobTest() { makeTestApplication(); }
    void startBehindGate(int result)
    {
        job.start(
            [this, result](const CancellationToken&) {
                entered.release();
                gate.acquire();
                return result;
            },
            [this](const int* done) { delivered.push_back(done ? *done : -1); });
    }

    QSemaphore entered;
    QSemaphore gate;
    std::vector<int> delivered; ///< -1 for work that threw
    LatestJob job; ///< last: it waits for what uses the others
};

TEST_F(LatestJobTest, DeliversTheNewestAlone)
{
    startBehindGate(1);
    entered.acquire();
    // What waits its turn goes at once when another comes, with what it holds.
    std::atomic<bool> hasRun = false;
    auto held = std::make_shared<int>(2);
    const std::weak_ptr<int> watched = held;
    job.start(
        [held = std::move(held), &hasRun](const CancellationToken&) {
            hasRun = true;
            return *held;
        },
        [this](const int*) { delivered.push_back(2); });
    EXPECT_FALSE(watched.expired());
    startBehindGate(3);
    EXPECT_TRUE(watched.expired());
    gate.release(2);
    waitFor([&] { return !job.isRunning(); });
    EXPECT_EQ(delivered, std::vector<int>{3});
    EXPECT_FALSE(hasRun);
}

TEST_F(LatestJobTest, DeliversNothingAfterACancel)
{
    startBehindGate(1);
    entered.acquire();
    job.cancel();
    EXPECT_FALSE(job.isRunning());
    gate.release(2);
    // A later job comes after whatever the cancelled one might have sent.
    startBehindGate(2);
    waitFor([&] { return !job.isRunning(); });
    EXPECT_EQ(delivered, std::vector<int>{2});
}

TEST_F(LatestJobTest, TellsOfWorkThatThrew)
{
    job.start([](const CancellationToken&) -> int { throw std::bad_alloc(); },
              [this](const int* done) { delivered.push_back(done ? *done : -1); });
    waitFor([&] { return !job.isRunning(); });
    EXPECT_EQ(delivered, std::vector<int>{-1});
}

} // namespace
} // namespace orvane
