#include "RenderScheduler.h"

#include "DraftPace.h"
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
    return {.picture = image, .scale = number > 100 ? 0.5 : 1};
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

/// Drafts have numbers from 101 on.
TEST_F(RenderSchedulerTest, DraftsFollowADragOneAtATimeAndTheFinishedPictureFollowsThem)
{
    QSemaphore running;
    QSemaphore mayEnd;
    const auto held = [&](int number) {
        return [&, number](const CancellationToken&) {
            running.release();
            mayEnd.acquire();
            return pictureOf(number);
        };
    };
    scheduler.request(key(1), counted(1), Start::Debounced, held(101));
    running.acquire(); // without the pause
    scheduler.request(key(2), counted(2), Start::Debounced, counted(102));
    scheduler.request(key(3), counted(3), Start::Debounced, counted(103));
    mayEnd.release();
    waitUntilShown(3);
    EXPECT_EQ(shown, (std::vector{101, 103, 3})) << "the newest after the one in the making";
    EXPECT_EQ(started, 2);

    // The finished picture in the making gives way to the next drag's draft.
    scheduler.request(key(4), held(4), Start::AtOnce);
    running.acquire();
    scheduler.request(key(5), counted(5), Start::Debounced, counted(105));
    waitUntilShown(5);
    mayEnd.release();
    pool.waitForDone(); // nobody else may take what it waits for
    EXPECT_EQ(shown, (std::vector{101, 103, 3, 105, 5}));

    // What needs no draft is not kept waiting by one, nor overtaken.
    scheduler.request(key(6), counted(6), Start::Debounced, held(106));
    running.acquire();
    scheduler.request(key(3), counted(9), Start::Debounced, counted(109));
    EXPECT_EQ(shown.back(), 3) << "kept";
    mayEnd.release();
    pool.waitForDone();
    scheduler.request(key(7), counted(7), Start::AtOnce);
    waitUntilShown(7);
    EXPECT_EQ(shown, (std::vector{101, 103, 3, 105, 5, 3, 7}));
}

TEST_F(RenderSchedulerTest, AnAnswerMayAskForMoreWhetherItComesAtOnceOrLater)
{
    QObject::connect(&scheduler, &RenderScheduler::rendered, [this] {
        const int number = shown.back();
        if (number < 10)
            scheduler.request(key(number + 1), counted(number + 1), Start::AtOnce);
    });
    scheduler.request(key(8), counted(8), Start::AtOnce);
    waitUntilShown(3);
    EXPECT_EQ(shown, (std::vector{8, 9, 10}));
    scheduler.request(key(9), counted(99), Start::AtOnce); // kept, and so is the one it asks for
    EXPECT_EQ(shown, (std::vector{8, 9, 10, 9, 10}));
    EXPECT_EQ(started, 3);
}

TEST_F(RenderSchedulerTest, ADraftOfTheWholePictureIsTheFinishedOneAfterThePause)
{
    std::vector<bool> drafts;
    QObject::connect(&scheduler, &RenderScheduler::rendered,
                     [&](const RenderedPicture& picture) { drafts.push_back(picture.isDraft); });
    scheduler.request(key(1), counted(9), Start::Debounced, counted(1));
    waitUntilShown(2);
    EXPECT_EQ(shown, (std::vector{1, 1}));
    EXPECT_EQ(drafts, (std::vector{true, false}));
    EXPECT_EQ(started, 1) << "it is not drawn again";

    // One that has become stale by then is not.
    QSemaphore running;
    QSemaphore mayEnd;
    scheduler.request(key(2), counted(9), Start::Debounced, [&](const CancellationToken&) {
        running.release();
        mayEnd.acquire();
        return pictureOf(2);
    });
    running.acquire();
    scheduler.request(key(3), counted(4), Start::Debounced, [&](const CancellationToken&) {
        RenderedPicture smaller = pictureOf(3);
        smaller.scale = 0.5;
        return smaller;
    });
    mayEnd.release();
    waitUntilShown(5);
    EXPECT_EQ(shown, (std::vector{1, 1, 2, 3, 4}));
}

/// By what a draft costs: what all share, and what grows with the pixels.
TEST(DraftPace, SettlesWhereTheTimeIsRight)
{
    struct Row {
        double base;
        double whole;
        double picture;
        double screen;
        double from;
        double to;
    };
    const Row rows[] = {
        {5, 20, 2560, 3840, 1, 1}, // the whole picture comes soon enough
        {5, 20, 2560, 900, 0.35, 0.4}, // no more than is seen
        {5, 90, 2560, 3840, 0.5, 0.8},
        {10, 1000, 2560, 1600, 0.25, 0.25}, // never less than an edge of 640
        {500, 0, 2560, 1600, 0.25, 0.25},
        {5, 60, 500, 1600, 1, 1}, // a small picture
    };
    DraftPace pace; // what was learnt of one edit is the start for the next
    for (const Row& row : rows) {
        double scale = 0;
        double before = 0;
        for (int i = 0; i < 30; ++i) {
            before = std::exchange(scale, pace.scale(row.picture, row.screen));
            const double first = scale == before ? 0 : 30;
            pace.drew(scale, row.base + first + row.whole * scale * scale);
        }
        EXPECT_EQ(scale, before) << "settled";
        EXPECT_GE(scale, row.from) << row.base << " ms and " << row.whole;
        EXPECT_LE(scale, row.to) << row.base << " ms and " << row.whole;
    }
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
