#include "FieldWatch.h"
#include "TestWaiting.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

class FieldWatchTest : public testing::Test {
protected:
    FieldWatchTest() { makeTestApplication(); }
};

TEST_F(FieldWatchTest, ManyChangesOfATurnAreOneRefreshThatSeesThemAll)
{
    QProperty<int> a{1};
    QProperty<int> b{1};
    std::vector<int> seen;
    FieldWatch watch([&] { seen.push_back(a.value() * 10 + b.value()); });
    watch.watch(a, b);
    a = 2;
    b = 3;
    a = 4;
    EXPECT_TRUE(seen.empty());
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, std::vector({43}));
    a = 4; // no change
    QCoreApplication::processEvents();
    EXPECT_EQ(seen.size(), 1u);
}

TEST_F(FieldWatchTest, ARefreshInPlaceReplacesTheOneThatIsDueAndMayChangeFieldsItself)
{
    QProperty<int> a{0};
    int count = 0;
    FieldWatch watch([&] {
        ++count;
        if (a.value() < 3)
            a = a.value() + 1;
    });
    watch.watch(a);
    watch.refresh(); // sets a, which schedules the next
    EXPECT_EQ(count, 1);
    for (int i = 0; i < 8; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(a.value(), 3);
    EXPECT_EQ(count, 4);
}

TEST_F(FieldWatchTest, AGoneWatchIsNotToldOfWhatWasDue)
{
    QProperty<int> a{0};
    int count = 0;
    {
        FieldWatch watch([&] { ++count; });
        watch.watch(a);
        a = 1;
    }
    a = 2;
    QCoreApplication::processEvents();
    EXPECT_EQ(count, 0);
}

} // namespace
} // namespace orvane
