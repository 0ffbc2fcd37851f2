#include "FileSystem.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace orvane {

namespace fs = std::filesystem;

void (*fileStepHook)(const char* step) = nullptr;

std::string quoted(const fs::path& path)
{
    return "“" + path.string() + "”";
}

fs::path folderOf(const fs::path& path)
{
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

Error saveError(const fs::path& target, std::string_view reason)
{
    return {quoted(target.filename()) + " couldn't be saved because " + std::string(reason) + "."};
}

std::string writeReason(int code, const fs::path& target)
{
    const std::string folder = quoted(folderOf(target));
    switch (code) {
    case ENOSPC:
    case EDQUOT:
        return "there is no space left in the folder " + folder;
    case EACCES:
    case EPERM:
        return "you don't have permission to write in the folder " + folder;
    case EROFS:
        return "the folder " + folder + " is on a disk that can only be read";
    case ENOENT:
    case ENOTDIR:
        return "the folder " + folder + " doesn't exist";
    case ENAMETOOLONG:
        return "its name is too long";
    case EFBIG:
        return "the file would be larger than the disk in use allows";
    case EIO:
        return "the disk of the folder " + folder + " reported an error";
    default:
        return systemReason(code);
    }
}

std::string systemReason(int code)
{
    return "the system reported “" + std::generic_category().message(code) + "”";
}

Result<fs::path> linksFollowed(const fs::path& target)
{
    fs::path path = target;
    std::error_code none;
    for (int links = 0; fs::is_symlink(fs::symlink_status(path, none)); ++links) {
        // 40 is the length at which the kernel itself gives up.
        if (links == 40)
            return saveError(target, "its links lead in a circle");
        const fs::path next = fs::read_symlink(path, none);
        path = next.is_absolute() ? next : folderOf(path) / next;
    }
    return path;
}

int syncFolder(const fs::path& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return errno == EACCES ? 0 : errno;
    // File systems that cannot do this for a folder say EINVAL.
    const int code = ::fsync(descriptor) == 0 || errno == EINVAL ? 0 : errno;
    ::close(descriptor);
    return code;
}

} // namespace orvane
