#include "JSONStore.h"

#include "FileSystem.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::JSONStore {

namespace {

namespace fs = std::filesystem;

/// Far beyond any store that a person fills; a file of this size would not fit into memory decoded.
constexpr size_t largestStore = 1'000'000'000;

fs::path beside(const fs::path& url, const char* suffix)
{
    return fs::path(url) += suffix;
}

/// Whether nothing is at the end of the path. What cannot be looked at counts as something.
bool isMissing(const fs::path& url)
{
    struct stat status;
    return ::stat(url.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

Error moveError(const fs::path& url, int code)
{
    const bool isBlocked = code == EISDIR || code == ENOTEMPTY || code == EEXIST;
    const fs::path aside = beside(url.filename(), ".corrupt");
    return {
        quoted(url.filename()) + " couldn't be moved aside because "
        + (isBlocked ? "the folder " + quoted(aside) + " is in the way" : writeReason(code, url))
        + "."};
}

/// Leaves the mark of a recovery on disk; 0 or an errno.
int leaveMark(const fs::path& mark)
{
    const int descriptor = ::open(mark.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return errno;
    ::close(descriptor);
    return syncFolder(folderOf(mark));
}

/// Renames over whatever has the new name, but a folder that holds something; 0 or an errno.
int replaced(const fs::path& from, const fs::path& to)
{
    if (::rename(from.c_str(), to.c_str()) == 0)
        return 0;
    const int code = errno;
    const bool cleared = (code == EISDIR && ::rmdir(to.c_str()) == 0)
        || (code == ENOTDIR && ::unlink(to.c_str()) == 0);
    return cleared && ::rename(from.c_str(), to.c_str()) == 0 ? 0 : code;
}

/// Moves a file to a name on another disk.
Result<void> carried(const fs::path& from, const fs::path& to)
{
    const Result<std::string> bytes = readTextFile(from, largestStore);
    if (!bytes)
        return bytes.error();
    if (Result<void> written = writeFile(to, *bytes); !written)
        return written;
    if (::unlink(from.c_str()) != 0)
        return moveError(from, errno);
    return {};
}

/// The bytes of the store as its backup, which nobody may read who may not read the store.
Result<void> keepBackup(const fs::path& url)
{
    const Result<std::string> old = readTextFile(url, largestStore);
    if (!old)
        return old.error();
    Result<AtomicFile> backup = AtomicFile::create(backupOf(url));
    if (!backup)
        return backup.error();
    struct stat status;
    if (::stat(url.c_str(), &status) == 0)
        ::fchmod(backup->descriptor(), status.st_mode & 0777);
    if (Result<void> written = backup->write(old->data(), old->size()); !written)
        return written;
    return backup->commit();
}

} // namespace

Error wouldOverwriteUnreadable(const fs::path& url)
{
    const fs::path file = url.filename();
    return {quoted(file)
            + " is on disk but couldn't be read, so saving now would replace it and lose what it "
              "holds. A copy is kept as "
            + quoted(beside(file, ".corrupt")) + "."};
}

Error notEnoughMemory(const fs::path& url)
{
    return {"There is not enough memory to read or write " + quoted(url.filename()) + "."};
}

Load<std::string> readText(const fs::path& url)
{
    if (isMissing(url))
        return {};
    ReadFault fault = ReadFault::File;
    Result<std::string> text = readTextFile(url, largestStore, &fault);
    if (!text)
        return {LoadKind::Unreadable, {}, text.error(), fault};
    return {LoadKind::Ok, std::move(*text), {}};
}

bool isRecovering(const fs::path& url)
{
    return !isMissing(markOf(url));
}

fs::path markOf(const fs::path& url)
{
    return beside(url, ".moved");
}

fs::path backupOf(const fs::path& url)
{
    return beside(url, ".bak");
}

Result<void> moveAside(const fs::path& url, MoveReason reason)
{
    if (isMissing(url))
        return {};
    // Without the mark, a crash before the save would leave a store that seems never to have been.
    if (reason == MoveReason::Recovering) {
        if (const int code = leaveMark(markOf(url)); code != 0)
            return moveError(url, code);
        fileStep("recovery marked");
    }
    const Result<fs::path> file = linksFollowed(url);
    const fs::path from = file ? *file : url;
    const fs::path to = beside(url, ".corrupt");
    const int code = replaced(from, to);
    if (code == EXDEV) {
        if (Result<void> moved = carried(from, to); !moved)
            return moved;
    } else if (code != 0) {
        return moveError(url, code);
    }
    fileStep("moved aside");
    syncFolder(folderOf(to));
    return {};
}

Result<void> saveText(std::string_view text, const fs::path& url)
{
    if (!isMissing(url)) {
        if (Result<void> kept = keepBackup(url); !kept)
            return kept;
    }
    if (Result<void> written = writeFile(url, text); !written)
        return written;
    ::unlink(markOf(url).c_str());
    fileStep("mark removed");
    removeAbandonedTemporaries(folderOf(url));
    return {};
}

} // namespace orvane::JSONStore
