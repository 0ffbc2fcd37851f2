#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// What a later start says to the first: "ORV1", the length of what follows as four bytes, least
/// first, then each path ended by a zero byte. The answer is the one byte `taken`.
namespace orvane::InstanceMessage {

inline constexpr size_t headerBytes = 8;
/// The kernel passes less than this on any command line.
inline constexpr size_t largestBody = size_t(8) << 20;
inline constexpr char taken = 'K';

std::string encoded(const std::vector<std::filesystem::path>& files);

enum class State { Incomplete, Complete, Broken };
struct Decoded {
    State state = State::Incomplete;
    std::vector<std::filesystem::path> files = {};
};
/// Of all bytes that came so far. A path that is not absolute breaks the message, as does anything
/// after its end.
Decoded decoded(std::string_view bytes);

} // namespace orvane::InstanceMessage
