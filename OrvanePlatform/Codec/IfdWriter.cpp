#include "IfdWriter.h"

#include <algorithm>

namespace orvane {

static void put(std::vector<uint8_t>& bytes, uint64_t value, int size)
{
    for (int i = 0; i < size; ++i)
        bytes.push_back(uint8_t(value >> (8 * i)));
}

// Classic: count (2), entries of 12, next (4). Big: count (8), entries of 20, next (8). A value
// that fits the entry's last field (4 or 8 bytes) lies there; others follow the directory at even
// offsets.
std::optional<uint64_t> appendIfd(ByteSink& sink, std::vector<IfdEntry> entries, TiffKind kind)
{
    const int word = kind == TiffKind::Big ? 8 : 4;
    const size_t entrySize = size_t(4 + 2 * word);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const IfdEntry& a, const IfdEntry& b) { return a.tag < b.tag; });

    const uint64_t start = (sink.size() + 1) & ~uint64_t(1);
    const size_t countSize = kind == TiffKind::Big ? 8 : 2;
    const uint64_t valuesStart = start + countSize + entries.size() * entrySize + size_t(word);
    std::vector<uint8_t> directory(size_t(start - sink.size()));
    std::vector<uint8_t> values;
    put(directory, entries.size(), int(countSize));
    for (const IfdEntry& entry : entries) {
        put(directory, entry.tag, 2);
        put(directory, entry.type, 2);
        put(directory, entry.count, word);
        if (entry.value.size() <= size_t(word)) {
            directory.insert(directory.end(), entry.value.begin(), entry.value.end());
            directory.resize(directory.size() + size_t(word) - entry.value.size());
        } else {
            put(directory, valuesStart + values.size(), word);
            values.insert(values.end(), entry.value.begin(), entry.value.end());
            values.resize((values.size() + 1) & ~size_t(1));
        }
    }
    put(directory, 0, word);
    directory.insert(directory.end(), values.begin(), values.end());
    if (!sink.seek(sink.size()) || !sink.write(directory.data(), directory.size()))
        return std::nullopt;
    return start;
}

} // namespace orvane
