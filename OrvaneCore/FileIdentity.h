#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane {

/// What tells one state of a file from another without reading it. Times are nanoseconds since
/// 1970. A change within the same tick of the file system's clock (some milliseconds) that keeps
/// the size cannot be told; see isSettled().
struct FileIdentity {
    uint64_t device = 0;
    uint64_t inode = 0;
    int64_t size = 0;
    int64_t modified = 0;
    int64_t changed = 0;

    /// Of the file at the end of a path; absent when nothing is there or it cannot be looked at.
    static std::optional<FileIdentity> of(const std::filesystem::path& path);

    /// Whether the last change lies so far back that a later one must have another time.
    bool isSettled() const;

    bool operator==(const FileIdentity&) const = default;
};

} // namespace orvane
