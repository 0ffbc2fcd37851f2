#include "AtomicFile.h"

#include "FileSystem.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <iterator>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view temporaryPrefix = ".orvane-";

/// Takes the lock that tells a temporary file from an abandoned one. It is held until the file is
/// closed, also by a crash. False when another process is just cleaning up and came between the
/// making of the file and its lock: then the name is gone, or about to go.
bool isClaimed(int descriptor, const fs::path& temporary)
{
    // Not every file system has locks; where none is, no file is ever taken for abandoned.
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return false;
    struct stat status;
    return ::lstat(temporary.c_str(), &status) == 0 || errno != ENOENT;
}

/// Gives a file its place; false with errno.
bool exchange(const fs::path& temporary, const fs::path& target, AtomicFile::Existing existing)
{
    if (existing == AtomicFile::Existing::Respected) {
        if (::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE)
            == 0)
            return true;
        // Some file systems cannot; there a look beforehand must do.
        if (errno != EINVAL && errno != ENOSYS)
            return false;
        struct stat status;
        if (::lstat(target.c_str(), &status) == 0) {
            errno = EEXIST;
            return false;
        }
    }
    return ::rename(temporary.c_str(), target.c_str()) == 0;
}

/// Whether a file has a name as temporary files are given: the prefix, two numbers, a dash between.
bool isTemporaryName(std::string_view name)
{
    if (!name.starts_with(temporaryPrefix))
        return false;
    name.remove_prefix(temporaryPrefix.size());
    const size_t dash = name.find('-');
    const auto isNumber = [](std::string_view text) {
        return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
    };
    return dash != std::string_view::npos && isNumber(name.substr(0, dash))
        && isNumber(name.substr(dash + 1));
}

/// Creates a file of a fresh name beside the target and answers its descriptor, or -1 with errno.
/// The name is short, so that a target with a name of the greatest length has room for it too.
int openTemporary(const fs::path& target, fs::path& temporary)
{
    static std::atomic<unsigned> counter = std::random_device()();
    while (true) {
        const std::string name = std::string(temporaryPrefix) + std::to_string(::getpid()) + "-"
            + std::to_string(counter++);
        temporary = folderOf(target) / name;
        const int descriptor =
            ::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor < 0) {
            if (errno == EEXIST || errno == EINTR)
                continue;
            return -1;
        }
        fileStep("temporary file named");
        if (isClaimed(descriptor, temporary))
            return descriptor;
        ::close(descriptor);
        ::unlink(temporary.c_str());
    }
}

} // namespace

Result<AtomicFile> AtomicFile::create(const fs::path& target)
{
    const Result<fs::path> end = linksFollowed(target);
    if (!end)
        return end.error();

    struct stat old;
    const bool replaces = ::stat(end->c_str(), &old) == 0;
    if (replaces && S_ISDIR(old.st_mode))
        return saveError(target, "a folder of that name is in the way");
    if (replaces && !S_ISREG(old.st_mode))
        return saveError(target, "something other than a regular file is in the way");
    // A rename needs no permission on the file that it replaces; a locked file stays locked all the
    // same.
    if (replaces && ::access(end->c_str(), W_OK) != 0)
        return saveError(target, "the file is locked against writing");

    AtomicFile file;
    file.m_target = *end;
    file.m_descriptor = openTemporary(*end, file.m_temporary);
    if (file.m_descriptor < 0)
        return file.failure(errno);
    // Some file systems keep no bits: a failure here is no reason to lose the content.
    if (replaces)
        ::fchmod(file.m_descriptor, old.st_mode & 0777);
    fileStep("temporary file made");
    return file;
}

AtomicFile::AtomicFile(AtomicFile&& other) noexcept
    : m_target(std::move(other.m_target))
    , m_temporary(std::move(other.m_temporary))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

AtomicFile& AtomicFile::operator=(AtomicFile&& other) noexcept
{
    std::swap(m_target, other.m_target);
    std::swap(m_temporary, other.m_temporary);
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

AtomicFile::~AtomicFile()
{
    cancel();
}

Error AtomicFile::failure(int code) const
{
    return saveError(m_target, writeReason(code, m_target));
}

Result<void> AtomicFile::write(const void* data, size_t size)
{
    const char* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = ::write(m_descriptor, bytes, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return failure(errno);
        bytes += written;
        size -= size_t(written);
        fileStep("bytes written");
    }
    return {};
}

Result<void> AtomicFile::sync()
{
    // A file system tells a descriptor of a failed write once. Were this one forgotten, a later
    // sync would say that all is well.
    if (::fsync(m_descriptor) == 0)
        return {};
    const Error error = failure(errno);
    cancel();
    return error;
}

Result<void> AtomicFile::commit(Existing existing)
{
    // Without it the rename could reach the disk before the bytes do.
    if (const Result<void> synced = sync(); !synced)
        return synced;
    fileStep("bytes on disk");
    // Some file systems over a network report a failed write only to a close. It is a copy that is
    // closed: the lock has to last until the temporary name is gone.
    const int copy = ::fcntl(m_descriptor, F_DUPFD_CLOEXEC, 0);
    if (copy < 0 || ::close(copy) != 0) {
        const Error error = failure(errno);
        cancel();
        return error;
    }
    fileStep("bytes accepted");
    if (!exchange(m_temporary, m_target, existing)) {
        const Error error = failure(errno);
        cancel();
        return error;
    }
    ::close(std::exchange(m_descriptor, -1));
    fileStep("exchanged");
    if (const int code = syncFolder(folderOf(m_target)); code != 0)
        return failure(code);
    fileStep("exchange on disk");
    return {};
}

void AtomicFile::cancel()
{
    if (m_descriptor < 0)
        return;
    ::close(std::exchange(m_descriptor, -1));
    ::unlink(m_temporary.c_str());
}

Result<void> writeFile(const fs::path& target, std::string_view bytes)
{
    Result<AtomicFile> file = AtomicFile::create(target);
    if (!file)
        return file.error();
    if (Result<void> written = file->write(bytes.data(), bytes.size()); !written)
        return written;
    return file->commit();
}

namespace {

std::string readReason(int code)
{
    switch (code) {
    case ENOENT:
    case ENOTDIR:
        return "it isn't there any more";
    case EACCES:
    case EPERM:
        return "you don't have permission to read it";
    case EIO:
        return "its disk reported an error";
    default:
        return systemReason(code);
    }
}

/// Whether the same call may succeed a little later, with nothing changed about the file.
bool isPassing(int code)
{
    constexpr int codes[] = {EAGAIN, EINTR, EMFILE, ENFILE, ENOBUFS, ENOMEM, ESTALE, ETIMEDOUT};
    return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

/// As file managers show sizes, in steps of a thousand; rounded down, so that what is larger than
/// the bytes is larger than the text says.
std::string sizeText(size_t bytes)
{
    constexpr size_t megabyte = 1'000'000;
    return bytes < megabyte ? std::to_string(bytes) + " bytes"
                            : std::to_string(bytes / megabyte) + " MB";
}

Error openError(const fs::path& path, const std::string& reason)
{
    return {quoted(path.filename()) + " couldn't be opened because " + reason + "."};
}

template <class Bytes>
Result<Bytes> contentInMemory(const fs::path& path, size_t maxBytes, ReadFault& fault)
{
    const auto failure = [&](const std::string& reason) { return openError(path, reason); };
    const auto failed = [&](int code) {
        fault = isPassing(code) ? ReadFault::System : ReadFault::File;
        return failure(readReason(code));
    };
    fault = ReadFault::File;
    // Not blocking: opening a pipe would otherwise wait for its other end.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return failed(errno);
    struct Closer {
        int descriptor;
        ~Closer() { ::close(descriptor); }
    } const closer{descriptor};

    struct stat status;
    if (::fstat(descriptor, &status) != 0)
        return failed(errno);
    if (!S_ISREG(status.st_mode))
        return failure(S_ISDIR(status.st_mode) ? "it is a folder" : "it isn't a regular file");
    const Error tooLarge = failure("it is larger than " + sizeText(maxBytes));
    if (uint64_t(status.st_size) > maxBytes)
        return tooLarge;

    // One byte more than the stated size, so that the end is seen; a file may grow meanwhile.
    Bytes bytes(size_t(status.st_size) + 1, 0);
    size_t filled = 0;
    while (true) {
        const ssize_t got = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return failed(errno);
        filled += size_t(got);
        if (filled > maxBytes)
            return tooLarge;
        if (got == 0)
            break;
        if (filled == bytes.size())
            bytes.resize(bytes.size() + std::max<size_t>(bytes.size() / 2, 4096));
    }
    bytes.resize(filled);
    return bytes;
}

template <class Bytes>
Result<Bytes> contentOf(const fs::path& path, size_t maxBytes, ReadFault* fault)
{
    ReadFault unasked;
    ReadFault& found = fault ? *fault : unasked;
    try {
        return contentInMemory<Bytes>(path, maxBytes, found);
    } catch (const std::exception&) {
        // bad_alloc, or length_error for a size that no block of memory can have.
        found = ReadFault::System;
        return openError(path, "there is not enough memory");
    }
}

} // namespace

Result<std::vector<uint8_t>> readFile(const fs::path& path, size_t maxBytes, ReadFault* fault)
{
    return contentOf<std::vector<uint8_t>>(path, maxBytes, fault);
}

Result<std::string> readTextFile(const fs::path& path, size_t maxBytes, ReadFault* fault)
{
    return contentOf<std::string>(path, maxBytes, fault);
}

void removeAbandonedTemporaries(const fs::path& folder)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const fs::path& path = entry->path();
        if (!isTemporaryName(path.filename().native()))
            continue;
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
        if (descriptor < 0)
            continue;
        struct stat status;
        const bool ours = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
            && status.st_uid == ::geteuid();
        if (ours && ::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
            ::unlink(path.c_str());
        ::close(descriptor);
    }
}

} // namespace orvane
