#pragma once

#include "Result.h"

#include <filesystem>
#include <string>
#include <string_view>

// What the writers of files share.

namespace orvane {

/// “name”
std::string quoted(const std::filesystem::path& path);

/// The folder that a path lies in, "." for a bare name.
std::filesystem::path folderOf(const std::filesystem::path& path);

/// "“name” couldn't be saved because {reason}."
Error saveError(const std::filesystem::path& target, std::string_view reason);

/// An errno from changing something in a target's folder, as a reason that a person can do
/// something about.
std::string writeReason(int code, const std::filesystem::path& target);

/// An errno that a person can do nothing about, as a reason.
std::string systemReason(int code);

/// The end of a chain of symbolic links; it need not exist. Fails for a chain that has no end.
Result<std::filesystem::path> linksFollowed(const std::filesystem::path& target);

/// Brings the names in a folder to the disk, and answers 0 or an errno.
int syncFolder(const std::filesystem::path& folder);

/// Called after each step that changes something on disk. Only tests set it: they end the process
/// there, to see what a crash leaves.
extern void (*fileStepHook)(const char* step);

inline void fileStep(const char* step)
{
    if (fileStepHook)
        fileStepHook(step);
}

} // namespace orvane
