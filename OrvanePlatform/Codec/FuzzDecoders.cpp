// orvane-fuzz-decoders SECONDS FILE...
// Damages the files in ever new ways and decodes each in this process, best built with sanitizers.
// What is about to be decoded lies in "fuzz-last" in the working directory, so that a crash leaves
// its input behind. Ends with the counts of pictures and of refusals.
#include "PictureDecoder.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

using File = std::vector<uint8_t>;
using Random = std::mt19937_64;

size_t below(Random& random, size_t limit)
{
    return limit == 0 ? 0 : size_t(random() % limit);
}

/// A number as headers hold them, of one, two or four bytes, becomes one of the awkward ones.
void editNumber(File& file, Random& random)
{
    constexpr uint32_t awkward[] = {0,          1,          2,          0x7f,      0x80,
                                    0xff,       0x7fff,     0x8000,     0xffff,    0x10000,
                                    0x7fffffff, 0x80000000, 0xfffffffe, 0xffffffff};
    const size_t width = size_t(1) << below(random, 3);
    if (file.size() < width)
        return;
    const size_t at =
        below(random,
              std::min(file.size() - width + 1, below(random, 2) == 0 ? size_t(512) : file.size()));
    const uint32_t value = awkward[below(random, std::size(awkward))];
    const bool bigEndian = below(random, 2) == 0;
    for (size_t i = 0; i < width; ++i)
        file[at + i] = uint8_t(value >> 8 * (bigEndian ? width - 1 - i : i));
}

void splice(File& file, const File& other, Random& random)
{
    if (other.empty())
        return;
    const size_t from = below(random, other.size());
    const size_t length = 1 + below(random, std::min<size_t>(other.size() - from, 256));
    const size_t at = below(random, file.size() + 1);
    const auto first = other.begin() + ptrdiff_t(from);
    if (below(random, 2) == 0)
        file.insert(file.begin() + ptrdiff_t(at), first, first + ptrdiff_t(length));
    else
        std::copy_n(first, std::min(length, file.size() - at), file.begin() + ptrdiff_t(at));
}

File damaged(const std::vector<File>& seeds, Random& random)
{
    File file = seeds[below(random, seeds.size())];
    for (size_t changes = 1 + below(random, 6); changes > 0; --changes) {
        switch (below(random, 8)) {
        case 0:
            file.resize(below(random, file.size() + 1));
            break;
        case 1:
            splice(file, seeds[below(random, seeds.size())], random);
            break;
        case 2:
            splice(file, File(file), random);
            break;
        case 3:
        case 4:
            if (!file.empty())
                file[below(random, file.size())] ^= uint8_t(1u << below(random, 8));
            break;
        default:
            editNumber(file, random);
        }
    }
    return file;
}

/// Every byte of the picture is read, so that what was never written is noticed by the checkers.
uint64_t sumOf(const orvane::Bitmap& bitmap)
{
    uint64_t sum = 0;
    for (int y = 0; y < bitmap.height(); ++y)
        for (size_t i = 0; i < bitmap.rowBytes(); ++i)
            sum = sum * 31 + bitmap.row(y)[i];
    return sum;
}

} // namespace

int main(int count, char** arguments)
{
    int seconds = 0;
    std::vector<File> seeds;
    if (count > 2)
        std::from_chars(arguments[1], arguments[1] + std::strlen(arguments[1]), seconds);
    for (int i = 2; i < count; ++i) {
        std::ifstream stream(arguments[i], std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(stream),
                           std::istreambuf_iterator<char>());
    }
    if (seconds <= 0 || seeds.empty()) {
        std::fputs("usage: orvane-fuzz-decoders SECONDS FILE...\n", stderr);
        return 2;
    }
    const uint64_t seed = std::random_device()();
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    Random random(seed);
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    std::map<std::string, size_t> refusals;
    size_t pictures = 0;
    uint64_t sum = 0;
    double slowest = 0;
    while (Clock::now() < end) {
        const File file = damaged(seeds, random);
        std::ofstream("fuzz-last", std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), std::streamsize(file.size()));
        const auto start = Clock::now();
        const auto picture = orvane::decodePicture(file);
        const double taken = std::chrono::duration<double>(Clock::now() - start).count();
        if (taken > slowest) {
            slowest = taken;
            std::ofstream("fuzz-slowest", std::ios::binary)
                .write(reinterpret_cast<const char*>(file.data()), std::streamsize(file.size()));
        }
        if (picture) {
            ++pictures;
            sum += sumOf(*picture->bitmap);
        } else
            ++refusals[picture.error().message];
    }
    std::printf("%zu pictures (sum %llu), slowest %.2f s\n", pictures,
                static_cast<unsigned long long>(sum), slowest);
    for (const auto& [message, times] : refusals)
        std::printf("%8zu %s\n", times, message.c_str());
    return 0;
}
