#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace orvane {

/// A 128-bit key of a recipe's structure. Not meant to withstand forgery.
struct Digest {
    uint64_t high = 0;
    uint64_t low = 0;

    bool operator==(const Digest&) const = default;
};

/// Collects bytes and digests into one Digest; the order matters.
class DigestBuilder {
public:
    DigestBuilder& add(const void* data, size_t size);
    DigestBuilder& add(uint64_t value) { return add(&value, sizeof value); }
    DigestBuilder& add(const Digest& digest) { return add(digest.high).add(digest.low); }
    Digest digest() const;

private:
    uint64_t m_a = 0x9ae16a3b2f90404fULL;
    uint64_t m_b = 0xc3a5c85c97cb3127ULL;
    uint64_t m_length = 0;
};

} // namespace orvane

template <> struct std::hash<orvane::Digest> {
    size_t operator()(const orvane::Digest& digest) const noexcept { return size_t(digest.low); }
};
