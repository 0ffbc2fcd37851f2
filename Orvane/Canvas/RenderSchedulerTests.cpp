#include "RenderScheduler.h"

#include "TestWaiting.h"

#include <QSemaphore>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <atomic>
#include <new>

namespace orvane {
namespace {

/// Pictures of one pixel whose colour tells which request they answer.
RenderedPicture pictureOf(int number)
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(QColor(number, 0, 0));
    return {image, {}};
}

class RenderSchedulerTest : public testing::Test {
protected:
    RenderSchedulerTest()
    {
        QObject::connect(
            &scheduler, &RenderScheduler::rendered, [this](const RenderedPicture& picture) {
                shown.push_back(picture.picture.isNull() ? failed
                                                         : picture.picture.pixelColor(0, 0).red());
            });
    }
    ~RenderSchedulerTest() override { pool.waitForDone(); }

    static RenderKey key(int number)
    {
        RenderKey key;
        key.adjust["exposure"] = number;
        return key;
    }
    RenderScheduler::Render counted(int number)
    {
        return [this, number](const CancellationToken&) {
            ++started;
            return pictureOf(number);
        };
    }
    void waitUntilShown(size_t count)
    {
        waitFor([&] { return shown.size() >= count; });
    }

    using Start = RenderScheduler::Start;
    static constexpr int failed = -1;
    std::atomic<int> started = 0;
    std::vector<int> shown;
    QThreadPool pool;
    // No pause: the timer still fires only after the requests of one turn of the event loop.
    RenderScheduler scheduler{pool, std::chrono::milliseconds(0)};
};

TEST_F(RenderSchedulerTest, ChangesWithinThePauseRenderOnce)
{
    scheduler.request(key(1), counted(1), Start::Debounced);
    scheduler.request(key(2), counted(2), Start::Debounced);
    scheduler.request(key(2), counted(3), Start::Debounced); // no change
    waitUntilShown(1);
    EXPECT_EQ(shown, std::vector{2});
    EXPECT_EQ(started, 1);
}

TEST_F(RenderSchedulerTest, AStaleRenderIsCancelledAndNeverShown)
{
    QSemaphore running;
    QSemaphore mayEnd;
    std::atomic<bool> wasCancelled = false;
    scheduler.request(
        key(1),
        [&](const CancellationToken& token) {
            running.release();
            mayEnd.acquire();
            wasCancelled = token.isCancelled();
            return pictureOf(1);
        },
        Start::AtOnce);
    running.acquire();
    scheduler.request(key(2), counted(2), Start::AtOnce);
    waitUntilShown(1);
    mayEnd.release(); // the stale one ends after the newer one was shown
    pool.waitForDone();
    scheduler.request(key(3), counted(3), Start::AtOnce);
    waitUntilShown(2);
    EXPECT_TRUE(wasCancelled);
    EXPECT_EQ(shown, (std::vector{2, 3}));
}

TEST_F(RenderSchedulerTest, APictureShownBeforeComesBackWithoutARender)
{
    for (const int number : {1, 2}) {
        scheduler.request(key(number), counted(number), Start::AtOnce);
        waitUntilShown(size_t(number));
    }
    scheduler.request(key(1), counted(9), Start::Debounced);
    EXPECT_EQ(shown, (std::vector{1, 2, 1})) << "at once, without the event loop";
    EXPECT_EQ(started, 2);

    scheduler.clear();
    scheduler.request(key(1), counted(1), Start::AtOnce);
    waitUntilShown(4);
    EXPECT_EQ(started, 3) << "forgotten with the picture they came from";
}

TEST_F(RenderSchedulerTest, AFailedRenderIsToldAndDoneAnewWhenAskedAgain)
{
    scheduler.request(
        key(1), [](const CancellationToken&) -> RenderedPicture { throw std::bad_alloc(); },
        Start::AtOnce);
    waitUntilShown(1);
    scheduler.request(key(1), counted(1), Start::AtOnce);
    waitUntilShown(2);
    EXPECT_EQ(shown, (std::vector{failed, 1}));
}

std::optional<LUT> anyTable()
{
    return LUT::fromRGB(2, std::vector<float>(24, 0.5F));
}

TEST(RenderKeyTest, HoldsWhatChangesThePictureAndOnlyThat)
{
    struct Row {
        const char* what;
        void (*change)(CanvasContent&);
        bool changesGrade;
        bool changesComparison;
    };
    const Row rows[] = {
        {"another source", [](CanvasContent& c) { c.version = 2; }, true, true},
        {"a slider", [](CanvasContent& c) { c.state.adjust["tint"] = 4; }, true, false},
        {"a heal spot", [](CanvasContent& c) { c.state.healSpots.emplace_back(); }, true, false},
        {"a text", [](CanvasContent& c) { c.state.texts.emplace_back(); }, true, false},
        {"a turn", [](CanvasContent& c) { c.state.rotation = 1; }, true, true},
        {"a crop",
         [](CanvasContent& c) {
             c.state.crop = {0, 0, 0.5, 1};
         },
         true, true},
        {"a table that was missing", [](CanvasContent& c) { c.lut = anyTable(); }, true, false},
        {"the canvas's colour", [](CanvasContent& c) { c.state.canvasColor = "#fff"; }, true, true},
        {"an unapplied strength", [](CanvasContent& c) { c.state.lookStrength = 3; }, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        for (const bool comparing : {false, true}) {
            CanvasContent content;
            content.comparing = comparing;
            const RenderKey before = RenderKey::of(content);
            row.change(content);
            EXPECT_EQ(RenderKey::of(content) != before,
                      comparing ? row.changesComparison : row.changesGrade);
        }
    }
}

} // namespace
} // namespace orvane
