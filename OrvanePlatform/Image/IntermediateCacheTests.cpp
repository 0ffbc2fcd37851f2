// What previews keep, the memory that goes from one to the next, and the fresh memory of sources.

#include "IntermediateCache.h"
#include "PagesAhead.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sys/mman.h>
#include <thread>
#include <vector>

namespace orvane {
namespace {

constexpr size_t megabyte = size_t(1) << 20;

TEST(SpareMemory, HandsOutWhatFitsAndForgetsNobody)
{
    auto spares = std::make_shared<SpareMemory>(10 * megabyte);
    const auto addressOf = [&](size_t bytes) { return PixelMemory(bytes, spares).data(); };
    const uint8_t* const first = addressOf(4 * megabyte);
    EXPECT_EQ(addressOf(4 * megabyte - 5000), first);
    {
        const PixelMemory held(4 * megabyte, spares);
        EXPECT_EQ(held.data(), first);
        const PixelMemory other(4 * megabyte, spares);
        EXPECT_NE(other.data(), first);
        // Written to its end while another of the same size is: nothing overlaps.
        std::fill_n(held.data(), 4 * megabyte, uint8_t(1));
        std::fill_n(other.data(), 4 * megabyte, uint8_t(2));
        EXPECT_EQ(held.data()[4 * megabyte - 1], 1);
        // Far larger than what is wanted: memory that nobody could use meanwhile.
        const PixelMemory small(2 * megabyte, spares);
        EXPECT_NE(small.data(), first);
    }
    // What outlives the spares goes to the system.
    PixelMemory last(4 * megabyte, spares);
    spares.reset();
    last = PixelMemory();
    EXPECT_EQ(last.data(), nullptr);
}

/// Of this process, mapped by whatever means.
size_t addressSpaceBytes()
{
    std::ifstream statistics("/proc/self/statm");
    size_t pages = 0;
    statistics >> pages;
    return pages * 4096;
}

TEST(SpareMemory, GivesAllBeyondItsLimitToTheSystem)
{
    const size_t before = addressSpaceBytes();
    auto spares = std::make_shared<SpareMemory>(0);
    {
        std::vector<PixelMemory> many;
        for (int i = 0; i < 64; ++i)
            many.emplace_back(4 * megabyte + size_t(i) * 4096, spares);
        EXPECT_GE(addressSpaceBytes(), before + 256 * megabyte);
    }
    spares.reset(); // waits for what is on its way
    EXPECT_LT(addressSpaceBytes(), before + 128 * megabyte);
}

TEST(PagesAhead, StayALittleAheadAndChangeNothing)
{
    constexpr size_t bytes = 4 * PagesAhead::leadBytes;
    constexpr size_t step = PagesAhead::leadBytes / 8;
    const PixelMemory memory(bytes);
    const auto residentBytes = [&] {
        std::vector<unsigned char> pages(bytes / 4096);
        mincore(memory.data(), bytes, pages.data());
        return size_t(std::count(pages.begin(), pages.end(), 1)) * 4096;
    };
    if (madvise(memory.data(), 4096, MADV_POPULATE_WRITE) != 0)
        GTEST_SKIP() << "This system hands pages over as they are written.";
    {
        PagesAhead pages(memory.data(), bytes);
        for (int i = 0; i < 1000 && residentBytes() < PagesAhead::leadBytes / 2; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_GE(residentBytes(), PagesAhead::leadBytes / 2);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_LE(residentBytes(), PagesAhead::leadBytes);
        pages.filled(bytes / 2);
        for (int i = 0; i < 1000 && residentBytes() <= PagesAhead::leadBytes; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_GT(residentBytes(), PagesAhead::leadBytes) << "it has not been told";
        for (size_t filled = 0; filled < bytes; filled += step) {
            std::fill_n(memory.data() + filled, step, uint8_t(filled / step + 1));
            pages.filled(filled + step);
        }
    }
    for (size_t filled = 0; filled < bytes; filled += step)
        EXPECT_EQ(std::count(memory.data() + filled, memory.data() + filled + step,
                             uint8_t(filled / step + 1)),
                  step);
    // Left before it has begun, and too little to begin at all.
    PagesAhead(memory.data(), bytes);
    PagesAhead(memory.data(), 100).filled(100);
}

TEST(IntermediateCache, KeepsTheLastTwoOfARoleAndStaysWithinItsBudget)
{
    const auto digest = [](uint64_t n) { return DigestBuilder().add(n).digest(); };
    const PixelRect rect{0, 0, 64, 64};
    const auto image = [&] {
        return std::make_shared<StoredImage>(rect, true, StoredFormat::Compact);
    };
    const size_t each = image()->byteSize();
    IntermediateCache cache(4 * each);
    cache.keep(digest(100), digest(2), image());
    for (uint64_t n = 1; n <= 3; ++n)
        cache.keep(digest(n), digest(1), image());
    EXPECT_FALSE(cache.find(digest(1), rect));
    EXPECT_TRUE(cache.find(digest(2), rect));
    EXPECT_TRUE(cache.find(digest(3), rect));
    EXPECT_TRUE(cache.find(digest(100), rect));
    EXPECT_FALSE(cache.find(digest(100), rect.grown(1)));
    // The same again takes the other's place. Then the one longest unused goes.
    cache.keep(digest(3), digest(1), image());
    for (uint64_t n = 200; n < 202; ++n)
        cache.keep(digest(n), digest(n), image());
    EXPECT_FALSE(cache.find(digest(2), rect));
    for (const uint64_t n : {3, 100, 200, 201})
        EXPECT_TRUE(cache.find(digest(n), rect)) << n;
    auto huge =
        std::make_shared<StoredImage>(PixelRect{0, 0, 64, 1000}, true, StoredFormat::Compact);
    cache.keep(digest(9), digest(9), huge);
    EXPECT_FALSE(cache.find(digest(9), rect));
    EXPECT_TRUE(cache.find(digest(201), rect));
}

} // namespace
} // namespace orvane
