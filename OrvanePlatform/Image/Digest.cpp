#include "Digest.h"

#include <cstring>

namespace orvane {

namespace {

// The finaliser of SplitMix64 (Steele, Lea, Flood: "Fast splittable pseudorandom number
// generators").
uint64_t mixed(uint64_t x)
{
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31);
}

} // namespace

DigestBuilder& DigestBuilder::add(const void* data, size_t size)
{
    const auto* bytes = static_cast<const uint8_t*>(data);
    m_length += size;
    while (size > 0) {
        uint64_t word = 0;
        const size_t step = size < 8 ? size : 8;
        std::memcpy(&word, bytes, step);
        m_a = mixed(m_a ^ word) + m_b;
        m_b = mixed(m_b + word * 0x9e3779b97f4a7c15ULL);
        bytes += step;
        size -= step;
    }
    return *this;
}

Digest DigestBuilder::digest() const
{
    return {mixed(m_a ^ m_length), mixed(m_b + m_length)};
}

} // namespace orvane
