#include "Bitmap.h"
#include "RecentDrawings.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

Digest key(uint64_t n)
{
    return DigestBuilder().add(n).digest();
}

PlacedBitmap drawing(int bytes)
{
    return {std::make_shared<Bitmap>(bytes, 1, 1, SampleType::U8, AlphaKind::None), 3, 4};
}

struct Counted {
    RecentDrawings recent{10000};
    int draws = 0;

    PlacedBitmap ask(uint64_t n, int bytes = 2000)
    {
        return recent.drawing(key(n), [&] {
            ++draws;
            return drawing(bytes);
        });
    }
};

TEST(RecentDrawings, GivesTheSameBitmapAndPlaceAgain)
{
    Counted counted;
    const PlacedBitmap first = counted.ask(1);
    const PlacedBitmap again = counted.ask(1);
    EXPECT_EQ(counted.draws, 1);
    EXPECT_EQ(again.bitmap, first.bitmap);
    EXPECT_EQ(again.x, 3);
    EXPECT_EQ(again.y, 4);
    EXPECT_NE(counted.ask(2).bitmap, first.bitmap);
}

TEST(RecentDrawings, LetsGoOfTheOneUnusedLongest)
{
    Counted counted;
    for (const uint64_t n : {1, 2, 3, 4})
        counted.ask(n);
    counted.ask(1); // used again: 2 is the oldest now
    std::weak_ptr<const Bitmap> second = counted.ask(2).bitmap;
    EXPECT_FALSE(second.expired());
    counted.ask(1);
    EXPECT_EQ(counted.draws, 4);
    for (const uint64_t n : {5, 6, 7})
        counted.ask(n);
    EXPECT_TRUE(counted.ask(1).bitmap);
    EXPECT_EQ(counted.draws, 7) << "1 was used more lately than 2, 3 and 4";
    counted.ask(3);
    EXPECT_EQ(counted.draws, 8);
}

TEST(RecentDrawings, DoesNotHoldWhatTakesMoreThanHalf)
{
    Counted counted;
    counted.ask(1);
    std::weak_ptr<const Bitmap> large = counted.ask(2, 6000).bitmap;
    EXPECT_TRUE(large.expired());
    counted.ask(1);
    EXPECT_EQ(counted.draws, 2) << "the small one stayed";
}

} // namespace
} // namespace orvane
